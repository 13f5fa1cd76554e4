#include "Prepare/Plan.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "Base/FileNames.h"
#include "Media/Conversion.h"
#include "Media/Locations.h"
#include "Prepare/ChangeWords.h"
#include "Prepare/LostWords.h"
#include "Prepare/MediaNames.h"
#include "Prepare/PlanCuts.h"

namespace velmora::prepare {
namespace {

/// Audio bytes of one written file: the system counts in 32 bits, header and later chunks included.
constexpr std::int64_t kMostAudioBytes = (std::int64_t{1} << 31) - (std::int64_t{1} << 20);
/// Entry numbers further apart than this are given anew: the system walks through all between.
constexpr std::int64_t kWidestNumbers = 1'000'000;

constexpr std::int32_t kAllChannels = 0;

/// Where in a file the cuts play, in samples at the project's rate.
struct UsedRange {
  std::int64_t first = std::numeric_limits<std::int64_t>::max();
  std::int64_t end = 0;
  void Add(std::int64_t from, std::int64_t to) {
    first = std::min(first, from);
    end = std::max(end, to);
  }
};

/// The file that a name leads to, so that two names of one file are seen to be one.
std::string RealPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  return error ? path : real.string();
}

class Planner {
 public:
  Planner(const check::CheckedProject& checked, const PrepareOptions& options, StampForm form)
      : checked_(checked), project_(*checked.project), options_(options) {
    plan_.form = form;
  }

  Plan Run() {
    RoughCuts rough = PlanCuts(checked_, options_);
    plan_.lost = std::move(rough.lost);
    for (const field::Source& source : project_.sources) takenIndices_.insert(source.index);
    for (const field::Event& event : project_.events) {
      if (event.sourceIndex) takenIndices_.insert(*event.sourceIndex);
    }
    FindRealPaths();
    NoteUses(rough.cuts);
    PlanSources();
    PlaceCuts(rough.cuts);
    AddOtherEvents();
    NumberEvents();
    NameLostMedia();
    plan_.changes = WriteChanges(checked_, options_, plan_, rough.shortened);
    return std::move(plan_);
  }

 private:
  using FileAndChannel = std::pair<std::string, std::int32_t>;
  using SourceAndChannel = std::pair<std::size_t, std::int32_t>;

  static std::int32_t ChannelOf(const RoughCut& cut) {
    return cut.whole ? kAllChannels : cut.channel;
  }

  void FindRealPaths() {
    realPaths_.resize(project_.sources.size());
    for (std::size_t i = 0; i < project_.sources.size(); ++i) {
      const media::Located& located = checked_.media[i].located;
      if (located.result == media::SearchResult::Found) {
        realPaths_[i] = RealPath(located.path);
      } else {
        // Nothing in the prepared folder may be mistaken for it.
        for (const std::string& name : media::DecodeLocation(project_.sources[i].location).names) {
          names_.Reserve(name);
        }
      }
    }
  }

  void NoteUses(const std::vector<RoughCut>& cuts) {
    for (const RoughCut& cut : cuts) {
      const field::Event& event = project_.events[cut.event];
      if (!event.source) continue;
      const std::int32_t channel = ChannelOf(cut);
      usedChannels_[*event.source].insert(channel);
      usedRanges_[{realPaths_[*event.source], channel}].Add(
          cut.offset, cut.offset + cut.cut.end - cut.cut.position);
    }
  }

  void PlanSources() {
    for (std::size_t i = 0; i < project_.sources.size(); ++i) {
      std::set<std::int32_t> channels = usedChannels_[i];
      if (channels.empty()) channels.insert(kAllChannels);  // unused, but part of the project
      for (const std::int32_t channel : channels) {
        PlannedSource source;
        source.origin = i;
        const bool first = channel == *channels.begin();
        const std::int32_t index = project_.sources[i].index;
        // The system takes -1 for "no source".
        source.index = first && index >= 0 ? index : FreeIndex();
        source.fileStart = project_.sources[i].fileStart;
        if (!realPaths_[i].empty()) AttachFile(source, channel);
        sourceOf_[{i, channel}] = plan_.sources.size();
        plan_.sources.push_back(source);
      }
    }
  }

  void AttachFile(PlannedSource& source, std::int32_t channel) {
    const FileAndChannel key = {realPaths_[source.origin], channel};
    const auto known = fileOf_.find(key);
    if (known != fileOf_.end()) {
      source.file = known->second;
    } else {
      fileOf_[key] = plan_.files.size();
      source.file = plan_.files.size();
      plan_.files.push_back(MakeFile(source.origin, channel, key));
    }
    const PlannedFile& file = plan_.files[*source.file];
    if (file.frameCount) {
      source.fileStart += OffsetOfFirstFrame(source.origin, file);
      source.ownLength = true;
    }
  }

  /// Where a file that holds a part of its original begins in that, at the project's rate.
  std::int64_t OffsetOfFirstFrame(std::size_t source, const PlannedFile& file) const {
    if (!HasOtherRate(checked_, source)) return file.firstFrame;
    return field::AtRate(file.firstFrame, checked_.media[source].facts->sampleRate,
                         project_.rates.sampleRate);
  }

  PlannedFile MakeFile(std::size_t source, std::int32_t channel, const FileAndChannel& key) {
    const check::SourceMedia& media = checked_.media[source];
    PlannedFile file;
    file.from = media.located.path;
    const std::string fileName = FileNameOf(media.located.path);
    const bool used = usedRanges_.contains(key);
    const bool resampled = options_.resample && HasOtherRate(checked_, source);
    const bool readable = media.facts && (media.obstacle == media::Obstacle::None ||
                                          media.obstacle == media::Obstacle::Kind ||
                                          media.obstacle == media::Obstacle::Chunks);
    const bool asItIs =
        channel == kAllChannels && media.obstacle == media::Obstacle::None && !resampled;
    // What nothing reads as audio may be anything that the project names: its bytes stay where they
    // are.
    file.how = options_.copyMedia && readable ? HowMade::Copied : HowMade::Linked;
    file.frames = FramesAtProjectRate(checked_, source);
    const bool made = used && readable && !asItIs;
    file.tooLong = made && !LimitToRange(file, source, channel, key, resampled);
    if (made && !file.tooLong) {
      if (channel != kAllChannels) file.channel = channel - 1;
      if (resampled)
        file.sampleRate = static_cast<std::int32_t>(std::lround(project_.rates.sampleRate));
      file.how =
          resampled ? HowMade::Resampled : (file.channel ? HowMade::Split : HowMade::Converted);
      const std::string suffix = file.channel ? "_ch" + std::to_string(channel) : "";
      file.name = names_.NameFor(fileName, suffix, ".wav");
    } else {
      file.name = names_.NameFor(fileName, "", "");
    }
    return file;
  }

  /// Takes from a file that is too long for the system only what the cuts use; false if even that
  /// is too long.
  bool LimitToRange(PlannedFile& file, std::size_t source, std::int32_t channel,
                    const FileAndChannel& key, bool resampled) const {
    const check::SourceMedia& media = checked_.media[source];
    const media::AudioFacts& facts = *media.facts;
    const double projectRate = project_.rates.sampleRate;
    media::ConversionJob job;
    job.from = media.located.path;
    if (channel != kAllChannels) job.channel = channel - 1;
    if (resampled) job.sampleRate = static_cast<std::int32_t>(std::lround(projectRate));
    const std::int64_t bytes = media::AudioBytesOf(job).value_or(0);
    file.bytes = bytes;
    if (bytes <= kMostAudioBytes) return true;
    const auto mostFrames = static_cast<std::int64_t>(
        static_cast<double>(facts.frames) *
        (static_cast<double>(kMostAudioBytes) / static_cast<double>(bytes)));

    const UsedRange& used = usedRanges_.at(key);
    std::int64_t first = used.first;
    std::int64_t end = used.end;
    if (HasOtherRate(checked_, source)) {
      // Both rates have a sample here, so that the new file begins on one of the project's.
      const auto whole = static_cast<std::int64_t>(std::lround(projectRate));
      const std::int64_t step = whole / std::gcd(whole, std::int64_t{facts.sampleRate});
      first = field::AtRate(first / step * step, projectRate, facts.sampleRate);
      end = std::min(field::AtRate(end, projectRate, facts.sampleRate) + 1, facts.frames);
    }
    if (end - first > mostFrames) return false;
    file.firstFrame = first;
    file.frameCount = end - first;
    file.frames = used.end - used.first;
    file.bytes = bytes / std::max<std::int64_t>(1, facts.frames / *file.frameCount);
    return true;
  }

  std::int32_t FreeIndex() {
    constexpr std::int32_t kHighest = 1'000'000'000;
    while (nextIndex_ == 0 || takenIndices_.contains(nextIndex_)) {
      const bool start = nextIndex_ == 0 && !takenIndices_.empty() && *takenIndices_.rbegin() > 0 &&
                         *takenIndices_.rbegin() < kHighest;
      nextIndex_ = start ? *takenIndices_.rbegin() + 1 : nextIndex_ + 1;
    }
    takenIndices_.insert(nextIndex_);
    return nextIndex_;
  }

  void PlaceCuts(std::vector<RoughCut>& cuts) {
    for (RoughCut& rough : cuts) {
      const field::Event& event = project_.events[rough.event];
      PlannedCut& cut = rough.cut;
      if (event.source) {
        cut.source = sourceOf_.at({*event.source, ChannelOf(rough)});
        PlannedSource& source = plan_.sources[*cut.source];
        cut.sourceIndex = source.index;
        cut.sourceIn = source.fileStart + rough.offset;
        if (source.file && plan_.files[*source.file].frameCount) {
          cut.sourceIn -= OffsetOfFirstFrame(*event.source, plan_.files[*source.file]);
        }
        if (!rough.whole && !(source.file && plan_.files[*source.file].channel)) {
          cut.sourceChannels = {rough.channel, rough.channel};  // its file could not be split
        }
      } else if (!event.sourceIndex) {
        // A file name that no source has: a number that none has says the same.
        if (indexOfNone_ == 0) indexOfNone_ = FreeIndex();
        cut.sourceIndex = indexOfNone_;
      }
      plan_.events.push_back({rough.event, event.number, cut});
    }
    RebaseSources();
    std::erase_if(plan_.events, [&](const PlannedEvent& event) { return !CanBeWritten(event); });
  }

  /// A file start that no timestamp can hold, such as a broken time reference, gives way to 0 with
  /// all that counts from it.
  void RebaseSources() {
    const auto fits = [&](std::int64_t samples) {
      return WriteStamp(samples, plan_.form).has_value();
    };
    std::vector<bool> rebased(plan_.sources.size());
    for (std::size_t i = 0; i < rebased.size(); ++i) rebased[i] = !fits(plan_.sources[i].fileStart);
    for (const PlannedEvent& event : plan_.events) {
      if (event.cut->source && !fits(event.cut->sourceIn)) rebased[*event.cut->source] = true;
    }
    for (PlannedEvent& event : plan_.events) {
      const std::optional<std::size_t> source = event.cut->source;
      if (source && rebased[*source]) event.cut->sourceIn -= plan_.sources[*source].fileStart;
    }
    for (std::size_t i = 0; i < rebased.size(); ++i) {
      if (rebased[i]) plan_.sources[i].fileStart = 0;
    }
  }

  /// False, and named, for a cut whose times no timestamp can hold.
  bool CanBeWritten(const PlannedEvent& event) {
    for (const std::int64_t time : {event.cut->sourceIn, event.cut->position, event.cut->end}) {
      if (WriteStamp(time, plan_.form)) continue;
      plan_.lost.push_back(LostWords(checked_).Of(event.origin, check::Code::ValuesMissing,
                                                  "No timestamp can hold the cut's times: it is "
                                                  "left out."));
      return false;
    }
    return true;
  }

  void AddOtherEvents() {
    for (std::size_t i = 0; i < project_.events.size(); ++i) {
      if (project_.events[i].kind == field::EventKind::Cut) continue;
      plan_.events.push_back({i, project_.events[i].number, std::nullopt});
    }
    // Stable: the cuts that one event was split into keep their order.
    std::stable_sort(
        plan_.events.begin(), plan_.events.end(),
        [](const PlannedEvent& a, const PlannedEvent& b) { return a.origin < b.origin; });
  }

  /// Keeps the numbers if they can stay, so that people find their events again.
  void NumberEvents() {
    std::vector<PlannedEvent>& events = plan_.events;
    const auto numberMissing = [&](const PlannedEvent& event) {
      return project_.events[event.origin].numberMissing;
    };
    const auto notRising = [](const PlannedEvent& a, const PlannedEvent& b) {
      return b.number <= a.number;
    };
    const bool stay =
        events.empty() ||
        (events.front().number >= 0 &&
         std::int64_t{events.back().number} - events.front().number < kWidestNumbers &&
         std::none_of(events.begin(), events.end(), numberMissing) &&
         std::adjacent_find(events.begin(), events.end(), notRising) == events.end());
    std::int32_t next = 0;
    for (PlannedEvent& event : events) {
      if (!stay) event.number = ++next;
    }
  }

  /// What the check of the prepared project cannot tell: that there are several candidates for a
  /// file, and that one could not be converted for its length.
  void NameLostMedia() {
    std::set<std::int32_t> tooLong;
    for (const PlannedSource& source : plan_.sources) {
      if (source.file && plan_.files[*source.file].tooLong) {
        tooLong.insert(project_.sources[source.origin].index);
      }
    }
    for (const check::Finding& finding : checked_.findings) {
      if (finding.code == check::Code::MediaAmbiguous) plan_.lost.push_back(finding);
      const bool isAudio =
          finding.code == check::Code::MediaKind || finding.code == check::Code::MediaChunks;
      if (!isAudio || !finding.source || !tooLong.contains(*finding.source)) continue;
      plan_.lost.push_back(finding);
      plan_.lost.back().effect =
          "The cuts use a stretch of this file of 2 GiB and more, which one file may not hold: it "
          "is not converted.";
      plan_.lost.back().remedy = "Give the far ends of the file sources of their own.";
    }
  }

  const check::CheckedProject& checked_;
  const field::Project& project_;
  const PrepareOptions& options_;
  Plan plan_;
  MediaNames names_;
  std::vector<std::string> realPaths_;  ///< by source; empty for a file that was not found
  std::map<std::size_t, std::set<std::int32_t>> usedChannels_;  ///< by source
  std::map<FileAndChannel, UsedRange> usedRanges_;
  std::map<FileAndChannel, std::size_t> fileOf_;      ///< position in Plan::files
  std::map<SourceAndChannel, std::size_t> sourceOf_;  ///< position in Plan::sources
  std::set<std::int32_t> takenIndices_;
  std::int32_t nextIndex_ = 0;
  std::int32_t indexOfNone_ = 0;
};

}  // namespace

std::optional<Plan> MakePlan(const check::CheckedProject& checked, const PrepareOptions& options) {
  const std::vector<field::Event>& events = checked.project->events;
  field::TimeRates rates = checked.project->rates;
  // Without a cut the rates are those of some other time, which may be the length of a fade: these
  // count as drop-frame whatever the project does.
  if (std::none_of(events.begin(), events.end(), [](const field::Event& event) {
        return event.kind == field::EventKind::Cut && event.complete;
      })) {
    rates.dropFrame = false;
  }
  const std::optional<StampForm> form = FormFor(rates, options.check.sessionFrameRate);
  if (!form) return std::nullopt;
  return Planner(checked, options, *form).Run();
}

}  // namespace velmora::prepare
