#include "Prepare/PlanCuts.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "Base/Text.h"
#include "Prepare/LostWords.h"

namespace velmora::prepare {
namespace {

/// Hosts number tracks in 16 bits; a run of more is a slip of the pen, or made to fill memory.
constexpr std::int32_t kMostTracksOfACut = 1024;

/// One source channel on one track.
struct Pair {
  std::int32_t channel;
  std::int32_t track;
};

/// Turns the cuts of one project into rough cuts.
class CutPlanner {
 public:
  CutPlanner(const check::CheckedProject& checked, const PrepareOptions& options)
      : checked_(checked), project_(*checked.project), options_(options), lostWords_(checked) {}

  RoughCuts Run() {
    for (std::size_t i = 0; i < project_.events.size(); ++i) {
      const field::Event& event = project_.events[i];
      if (event.kind == field::EventKind::Cut && (options_.keepOff || !event.IsOff())) Take(i);
    }
    return std::move(result_);
  }

 private:
  const media::AudioFacts* FactsOf(const field::Event& event) const {
    if (!event.source) return nullptr;
    const check::SourceMedia& media = checked_.media[*event.source];
    return media.facts ? &*media.facts : nullptr;
  }

  void Take(std::size_t place) {
    const field::Event& event = project_.events[place];
    if (!event.complete) {
      Lose(place, CodeOfIncomplete(event), "The cut is not complete: it is left out.");
      return;
    }
    if (event.end <= event.position) return;  // plays nothing
    const media::AudioFacts* const facts = FactsOf(event);
    RoughCut cut = FirstDraft(place);
    if (!Shorten(cut)) return;
    LimitFades(cut.cut);
    if (StaysWhole(event, facts)) {
      cut.cut.sourceChannels = event.sourceChannels;
      cut.cut.tracks = event.tracks;
      cut.cut.whole = true;
      cut.cut.gainDb = event.GainOf(event.tracks.first);
      cut.cut.keepsGainLines = !HasOneGain(event);
      result_.cuts.push_back(std::move(cut));
      return;
    }
    for (const Pair& pair : PairsOf(place, facts)) {
      RoughCut mono = cut;
      mono.whole = facts == nullptr || facts->channels == 1;
      mono.channel = pair.channel;
      // Of a file that is split, each channel is the first of a file of its own.
      const std::int32_t channel = facts == nullptr ? pair.channel : 1;
      mono.cut.sourceChannels = {channel, channel};
      mono.cut.tracks = {pair.track, pair.track};
      mono.cut.gainDb = event.GainOf(pair.track);
      result_.cuts.push_back(std::move(mono));
    }
  }

  /// The code under which a check tells of a cut without its times.
  check::Code CodeOfIncomplete(const field::Event& event) const {
    constexpr std::uint32_t kValuesOfACut = 8;
    const std::vector<field::Entry>& entries = project_.tree.entries;
    const bool isShort = !event.edit || entries[*event.edit].valueCount < kValuesOfACut;
    if (!isShort) return check::Code::EventEmpty;
    const bool last = event.edit && *event.edit + 1 == entries.size();
    return project_.tree.cutOff && last ? check::Code::TextCutOff : check::Code::ValuesMissing;
  }

  RoughCut FirstDraft(std::size_t place) const {
    const field::Event& event = project_.events[place];
    RoughCut rough;
    rough.event = place;
    rough.cut.sourceIn = event.sourceIn;
    rough.cut.position = event.position;
    rough.cut.end = event.end;
    rough.cut.sourceIndex = event.sourceIndex.value_or(0);
    if (event.fadeIn) rough.cut.fadeIn = event.fadeIn->length;
    if (event.fadeOut) rough.cut.fadeOut = event.fadeOut->length;
    rough.offset = project_.FileOffset(event).value_or(0);
    return rough;
  }

  /// Takes away what lies before and after the file's audio; false if nothing is left.
  bool Shorten(RoughCut& rough) {
    const field::Event& event = project_.events[rough.event];
    if (!event.source) return true;
    const std::optional<std::int64_t> frames = FramesAtProjectRate(checked_, *event.source);
    if (!frames) return true;
    PlannedCut& cut = rough.cut;
    const std::int64_t before = std::max<std::int64_t>(0, -rough.offset);
    const std::int64_t length = cut.end - cut.position;
    const std::int64_t after = std::max<std::int64_t>(0, rough.offset + length - *frames);
    if (before == 0 && after == 0) return true;
    if (before >= length || after >= length || before + after >= length) {
      Lose(rough.event, check::Code::CutOutsideFile,
           "Nothing of the cut lies in its file: it is left out.");
      return false;
    }
    rough.offset += before;
    cut.sourceIn += before;
    cut.position += before;
    cut.end -= after;
    result_.shortened.push_back(rough.event);
    return true;
  }

  static void LimitFades(PlannedCut& cut) {
    const std::int64_t length = cut.end - cut.position;
    for (std::optional<std::int64_t>* const fade : {&cut.fadeIn, &cut.fadeOut}) {
      if (*fade) *fade = std::min(**fade, length);
      if (*fade && **fade <= 0) fade->reset();
    }
  }

  /// True if the gain of all its channels is the same.
  static bool HasOneGain(const field::Event& event) {
    const std::optional<double> gain = event.GainOf(event.tracks.first);
    const std::int32_t last = std::min(event.tracks.last, event.tracks.first + kMostTracksOfACut);
    for (std::int32_t track = event.tracks.first; track <= last; ++track) {
      if (event.GainOf(track) != gain) return false;
    }
    return true;
  }

  bool StaysWhole(const field::Event& event, const media::AudioFacts* facts) const {
    return options_.keepStereo && facts != nullptr && facts->channels > 1 &&
           event.sourceChannels == field::ChannelRun{1, facts->channels};
  }

  /// Which channel goes to which track. Names what has no partner or is not in the file.
  std::vector<Pair> PairsOf(std::size_t place, const media::AudioFacts* facts) {
    const field::Event& event = project_.events[place];
    const std::int64_t channels = RunLength(event.sourceChannels);
    const std::int64_t tracks = RunLength(event.tracks);
    const bool repeated = channels == 1;  // one channel on several tracks
    const std::int64_t partners = repeated ? tracks : std::min(channels, tracks);
    std::int64_t lost = repeated ? 0 : std::max(channels, tracks) - partners;
    std::vector<Pair> pairs;
    for (std::int64_t i = 0; i < std::min<std::int64_t>(partners, kMostTracksOfACut); ++i) {
      const auto step = static_cast<std::int32_t>(i);
      const Pair pair = {event.sourceChannels.first + (repeated ? 0 : step),
                         event.tracks.first + step};
      const bool inFile =
          facts == nullptr || (pair.channel >= 1 && pair.channel <= facts->channels);
      if (inFile) {
        pairs.push_back(pair);
      } else {
        ++lost;
      }
    }
    lost += std::max<std::int64_t>(0, partners - kMostTracksOfACut);
    if (lost > 0) {
      Lose(place, check::Code::Channels,
           Counted(static_cast<std::size_t>(lost), "channel") +
               " of the cut without a partner, or not in the file: left out.");
    }
    return pairs;
  }

  static std::int64_t RunLength(const field::ChannelRun& run) {
    return std::max<std::int64_t>(1, std::int64_t{run.last} - run.first + 1);
  }

  void Lose(std::size_t place, check::Code code, const std::string& effect) {
    result_.lost.push_back(lostWords_.Of(place, code, effect));
  }

  const check::CheckedProject& checked_;
  const field::Project& project_;
  const PrepareOptions& options_;
  LostWords lostWords_;
  RoughCuts result_;
};

}  // namespace

bool HasOtherRate(const check::CheckedProject& checked, std::size_t source) {
  const std::optional<media::AudioFacts>& facts = checked.media[source].facts;
  // A file's header tells whole numbers; the project's rate may be a pulled one.
  return facts && facts->sampleRate != std::lround(checked.project->rates.sampleRate);
}

std::optional<std::int64_t> FramesAtProjectRate(const check::CheckedProject& checked,
                                                std::size_t source) {
  const std::optional<media::AudioFacts>& facts = checked.media[source].facts;
  if (!facts) return std::nullopt;
  if (!HasOtherRate(checked, source)) return facts->frames;
  return field::AtRate(facts->frames, facts->sampleRate, checked.project->rates.sampleRate);
}

RoughCuts PlanCuts(const check::CheckedProject& checked, const PrepareOptions& options) {
  return CutPlanner(checked, options).Run();
}

}  // namespace velmora::prepare
