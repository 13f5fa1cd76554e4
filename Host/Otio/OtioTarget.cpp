#include "Otio/OtioTarget.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ostream>
#include <vector>

#include "Media/FactsByPath.h"
#include "Otio/TimelineWriter.h"
#include "Session/FileBuffer.h"
#include "Session/RegionLabel.h"
#include "Session/SessionClock.h"
#include "Session/StagedFile.h"

namespace velmora::otio {
namespace {

/// Names the regions whose files are not what the clips say of them.
void TellOfFiles(const host::TargetInput& input, media::FactsByPath& media,
                 host::TargetOutcome& outcome) {
  const long sessionRate = std::lround(host::SessionClock(input.rates).SampleRate());
  const std::vector<host::SessionRegion>& regions = input.session.Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    const host::SessionRegion& region = regions[i];
    const auto label = [&] { return host::RegionLabel(input, i) + ": "; };
    if (region.Length() <= 0) {
      outcome.notes.push_back(label() + host::kHasNoLength);
      continue;
    }
    const media::FactsOrTrouble& file = media.Of(region.path);
    if (!file.facts) {
      outcome.leftOut.push_back(label() + region.path + " cannot be read: " + file.trouble +
                                "; its clip refers to it all the same");
      continue;
    }
    if (file.facts->sampleRate != sessionRate) {
      outcome.notes.push_back(label() +
                              host::OfAnotherRate(region, file.facts->sampleRate, sessionRate) +
                              "; its samples are counted at the session's rate");
    }
    for (const std::string& odd :
         host::OddAbout(region, file.facts->frames, file.facts->IsWaveOf8Bits())) {
      outcome.notes.push_back(label() + odd);
    }
  }
  for (const host::Remark& remark : input.heard.Remarks()) {
    outcome.notes.push_back(host::RegionLabel(input, remark.region) + ": " + remark.text);
  }
  const bool hasGain = std::any_of(regions.begin(), regions.end(),
                                   [](const auto& region) { return region.shape.gainDb != 0; });
  if (hasGain) {
    outcome.notes.push_back(
        "Gain stands in the metadata of the clips (velmora, gainDb); other programs do not apply "
        "it.");
  }
}

}  // namespace

host::TargetOutcome OtioTarget::Write(const host::TargetInput& input,
                                      const host::TargetProgress& progress) {
  const auto fails = [](std::string trouble) {
    return host::TargetOutcome{std::move(trouble), {}, {}};
  };
  media::FactsByPath media;
  host::TargetOutcome outcome;
  TellOfFiles(input, media, outcome);

  host::StagedFile file(path_);
  if (!file.Create()) return fails(file.Trouble(errno));
  host::FileBuffer buffer(file.Stream());
  std::ostream out(&buffer);
  errno = 0;
  const Writing writing = WriteTimeline(input, media, out, outcome, progress);
  int error = writing != Writing::Failed ? 0 : errno != 0 ? errno : EIO;
  if (writing == Writing::Cancelled) return fails(path_ + " is not written: it was cancelled");
  const int closing = file.Close();
  if (error == 0) error = closing;
  if (error == 0) error = file.Publish();
  if (error != 0) return fails(file.Trouble(error));
  return outcome;
}

}  // namespace velmora::otio
