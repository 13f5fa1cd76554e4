#include "Program/SpotNotes.h"

#include "BWF/AES31BWF.h"
#include "Base/Wrapping.h"
#include "Session/SessionClock.h"
#include "Spot/SpotWorker.h"
#include "Timecode/AdlTime.h"

namespace velmora::program {
namespace {

/// The earliest of the cuts that the spot places, null if all are left out.
const AES31Event* EarliestLiveCut(const ViewModel& model) {
  const AES31Event* earliest = nullptr;
  for (const AES31Event& event : model.project->events) {
    if (!IsLive(event) || event.sourceFile == nullptr) continue;
    if (earliest == nullptr || AdlDifference(earliest->cut.destIn, event.cut.destIn) < 0) {
      earliest = &event;
    }
  }
  return earliest;
}

std::string MoveText(std::int64_t samples, const SpotOptions& options) {
  std::string text = "The project's timestamps read in the session's timebase are " +
                     std::to_string(samples) + " samples away from their own";
  const bool applies = options.positionMode != PositionFromFirst;
  return text + (applies ? ": everything moves by that." : ", which this position leaves out.");
}

}  // namespace

std::vector<std::string> SpotNotes(const ViewModel& model, const host::SessionRates& session,
                                   const SpotOptions& options) {
  std::vector<std::string> notes;
  const double projectRate = AdlSampleRate(model.firstEvent);
  const double sessionRate = session.sampleRate;
  if (projectRate != sessionRate && static_cast<float>(projectRate) == session.sampleRate) {
    notes.push_back("The session's rate is the project's, as closely as a host tells it.");
  } else if (projectRate != sessionRate) {
    notes.push_back("The project is at " +
                    (projectRate > 0 ? host::SampleRateName(projectRate) : "no known sample rate") +
                    ", the session at " + host::SampleRateName(sessionRate) + ".");
  }
  const std::int64_t moved = Compensation(options, model.firstEvent);
  if (moved != 0) notes.push_back(MoveText(moved, options));
  const AES31Event* const first = EarliestLiveCut(model);
  if (!notes.empty() && first != nullptr) {
    const std::int64_t position = WrapAdd(AdlToSamples(first->cut.destIn), options.timelineOffset);
    const host::SessionClock clock(session);
    notes.push_back("The first region lands at sample " + std::to_string(position) + ", " +
                    clock.Timecode(position) + ".");
  }
  return notes;
}

void FindSilentCuts(const ViewModel& model, LeftOut& leftOut) {
  for (std::int32_t i = 0; i < model.numEvents; ++i) {
    const AES31Event& event = *model.project->GetEvent(i);
    if (!IsLive(event) || event.sourceFile == nullptr || !event.sourceFile->IsValid()) continue;
    if (event.sourceFile->GetFormat()->formatTag != kIntegerPcm) leftOut.NotPcm(i);
  }
}

}  // namespace velmora::program
