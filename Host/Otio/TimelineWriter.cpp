#include "Otio/TimelineWriter.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/ProjectConstants.h"
#include "Base/Wrapping.h"
#include "Otio/OtioObjects.h"
#include "Session/HeardClips.h"
#include "Session/RegionLabel.h"

namespace velmora::otio {
namespace {

using host::JsonText;

constexpr std::size_t kClipsBetweenReports = 4096;

/// Elements of a JSON array, one a line.
class ArrayWriter {
 public:
  explicit ArrayWriter(std::ostream& out) : out_(out) {}
  void Add(const Json& element) {
    out_ << separator_ << ObjectText(element);
    separator_ = ",\n";
  }

 private:
  std::ostream& out_;
  std::string_view separator_ = "\n";
};

class TimelineWriter {
 public:
  TimelineWriter(const host::TargetInput& input, media::FactsByPath& media, std::ostream& out,
                 host::TargetOutcome& outcome, const host::TargetProgress& progress)
      : input_(input),
        media_(media),
        out_(out),
        outcome_(outcome),
        progress_(progress),
        objects_(input.rates),
        origin_(std::min<std::int64_t>(input.session.Summary().first, 0)) {}

  Writing Write() {
    out_ << "{\"OTIO_SCHEMA\": \"Timeline.1\",\n\"name\": " << JsonText(input_.record.title)
         << ",\n\"metadata\": " << JsonText(OtioObjects::Metadata(ProjectFacts()))
         << ",\n\"global_start_time\": " << JsonText(objects_.Time(origin_))
         << ",\n\"tracks\": {\"OTIO_SCHEMA\": \"Stack.1\", \"name\": \"tracks\", \"metadata\": {}, "
            "\"source_range\": null, \"effects\": [], \"enabled\": true,\n\"markers\": [";
    WriteMarkers();
    out_ << "],\n\"children\": [";
    std::string_view separator = "\n";
    for (const std::int64_t track : input_.session.Tracks()) {
      out_ << separator;
      if (!WriteTrack(track)) return Writing::Cancelled;
      separator = ",\n";
    }
    out_ << "]}}\n";
    return out_.flush() ? Writing::Done : Writing::Failed;
  }

 private:
  [[nodiscard]] Json ProjectFacts() const {
    Json constants = Json::object();
    for (std::size_t i = 0; i < kProjectConstants.size(); ++i) {
      const auto& text = input_.record.constants[i];
      constants[kProjectConstants[i].keyword] = text ? Json(*text) : Json();
    }
    return {{"project", input_.record.projectPath},
            {"frameRateCode", input_.rates.frameRate},
            {"constants", std::move(constants)}};
  }

  [[nodiscard]] Json TrackFacts(std::int64_t track) const {
    Json facts = Json::object();
    facts["track"] = input_.record.TrackNumber(track);
    return facts;
  }

  void WriteMarkers() {
    ArrayWriter markers(out_);
    for (const host::LeftOutPart& part : input_.record.leftOut) {
      markers.Add(objects_.Marker("Left out: " + part.text, WrapSubtract(part.position, origin_),
                                  {{"event", part.event},
                                   {"entry", part.entry},
                                   {"track", input_.record.TrackNumber(part.track)}}));
    }
  }

  bool WriteTrack(std::int64_t track) {
    const std::string name = "Track " + std::to_string(input_.record.TrackNumber(track));
    out_ << "{\"OTIO_SCHEMA\": \"Track.1\", \"name\": " << JsonText(name)
         << ", \"kind\": \"Audio\", \"metadata\": "
         << JsonText(OtioObjects::Metadata(TrackFacts(track)))
         << ", \"source_range\": null, \"effects\": [], \"markers\": [], \"enabled\": true,\n"
            "\"children\": [";
    host::HeardClips told = host::ClipsOf(input_.session, input_.heard, track);
    host::CutToFiles(
        input_.session, [this](const host::SessionRegion& region) { return FramesOf(region); },
        told.clips);
    for (const host::Remark& remark : told.remarks) {
      outcome_.notes.push_back(host::RegionLabel(input_, remark.region) + ": " + remark.text);
    }
    const bool isWhole = WriteClips(told.clips);
    out_ << "]}";
    return isWhole;
  }

  bool WriteClips(const std::vector<host::HeardClip>& clips) {
    ArrayWriter children(out_);
    std::int64_t end = origin_;  // of what is written
    for (std::size_t i = 0; i < clips.size(); ++i) {
      if (written_++ % kClipsBetweenReports == 0 && !Report()) return false;
      const host::HeardClip& clip = clips[i];
      const std::int64_t fadeOutBefore = i > 0 ? clips[i - 1].fadeOut : 0;
      // Two transitions may not stand side by side, so a gap parts two fades that meet.
      if (clip.position > end || fadeOutBefore > 0 || clip.fadeIn > 0) {
        children.Add(objects_.Gap(WrapSubtract(clip.position, end)));
      }
      if (clip.fadeIn > 0) children.Add(objects_.Transition("Fade-in", 0, clip.fadeIn));
      if (clip.crossfade > 0) children.Add(objects_.Transition("Crossfade", clip.crossfade, 0));
      children.Add(ClipObject(clip));
      if (clip.fadeOut > 0) children.Add(objects_.Transition("Fade-out", clip.fadeOut, 0));
      end = clip.end;
    }
    if (!clips.empty() && clips.back().fadeOut > 0) children.Add(objects_.Gap(0));
    return true;
  }

  [[nodiscard]] bool Report() const {
    const std::size_t all = std::max<std::size_t>(input_.session.Regions().size(), 1);
    return !progress_ ||
           progress_(std::min(1.0, static_cast<double>(written_) / static_cast<double>(all)));
  }

  [[nodiscard]] const Json& ClipObject(const host::HeardClip& clip) {
    const host::SessionRegion& region = input_.session.Regions()[clip.region];
    return objects_.Clip({clip.region, region, region.start + (clip.position - region.position),
                          clip.Length(), FramesOf(region)});
  }

  [[nodiscard]] std::optional<std::int64_t> FramesOf(const host::SessionRegion& region) {
    const media::FactsOrTrouble& file = media_.Of(region.path);
    return file.facts ? std::optional(file.facts->frames) : std::nullopt;
  }

  const host::TargetInput& input_;
  media::FactsByPath& media_;
  std::ostream& out_;
  host::TargetOutcome& outcome_;
  const host::TargetProgress& progress_;
  OtioObjects objects_;
  std::int64_t origin_;  ///< where the timeline begins, on the session's
  std::size_t written_ = 0;
};

}  // namespace

Writing WriteTimeline(const host::TargetInput& input, media::FactsByPath& media, std::ostream& out,
                      host::TargetOutcome& outcome, const host::TargetProgress& progress) {
  return TimelineWriter(input, media, out, outcome, progress).Write();
}

}  // namespace velmora::otio
