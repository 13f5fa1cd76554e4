// The EVENT_LIST section: (Entry) opens an event, and all up to the next (Entry) belongs to it.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ADL/AES31Project.h"
#include "Base/LargePages.h"
#include "Base/PagesAhead.h"
#include "Base/Text.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

/// The values of one entry; those that it lacks are null or 0.
class Values {
 public:
  explicit Values(const EntryLine& line) : line_(line) {}
  const char* Text(std::size_t i) const { return line_.texts[i]; }
  std::int32_t Int(std::size_t i) const { return ToInt32(Text(i)); }
  double Double(std::size_t i) const { return ToDouble(Text(i)); }
  std::size_t Count() const { return line_.valueCount; }

 private:
  const EntryLine& line_;
};

void FillCut(AES31Event& event, const Values& values) {
  event.cut = {.sourceType = values.Text(0),
               .sourceIn = values.Text(4),
               .destIn = values.Text(5),
               .destOut = values.Text(6),
               .cutTail = values.Text(7),
               .sourceIndex = values.Int(1),
               .sourceChannel = values.Int(2),
               .destChannel = values.Int(3),
               .cutMark1 = 1,
               .cutMark2 = 1};
}

void FillSilence(AES31Event& event, const Values& values) {
  event.silence = {.silenceText1 = values.Text(1),
                   .silenceText2 = values.Text(2),
                   .silenceText3 = values.Text(3),
                   .silenceNumber = values.Int(0),
                   .silenceMark = 1};
}

void FillVid(AES31Event& event, const Values& values) {
  event.vid = {values.Text(0), values.Text(1), values.Text(2), values.Text(3)};
}

void FillAlt(AES31Event& event, const Values& values) {
  event.alt = {.altType = values.Text(0),
               .altTime = values.Text(3),
               .altIndex = values.Int(1),
               .altChannel = values.Int(2),
               .altMark = 1};
}

/// A later line wins field by field, so values 5 to 7 of an earlier one can stay.
void FillFade(AES31Fade& fade, const Values& values, bool withTail) {
  fade.present = true;
  fade.length = values.Text(0);
  fade.fadeText1 = values.Text(1);
  fade.fadeParam2 = values.Double(2);
  fade.fadeParam3 = values.Double(3);
  fade.fadeParam4 = values.Double(4);
  if (!withTail) return;
  fade.fadeText5 = values.Text(5);
  fade.fadeNumber6 = values.Int(6);
  fade.fadeText7 = values.Text(7);
}

void FillCrossfade(AES31Event& event, const Values& values) {
  event.xfade = {.present = true,
                 .xfadeText1 = values.Text(1),
                 .xfadeText2 = values.Text(2),
                 .xfadeText3 = values.Text(3),
                 .xfadeText5 = values.Text(5),
                 .xfadeNumber0 = values.Int(0),
                 .xfadeNumber4 = values.Int(4)};
}

void FillGain(AES31Event& event, const Values& values) {
  event.gain = {.present = true, .gainNumber = values.Int(0), .gainDb = values.Double(1)};
}

enum class LineKind { Entry, Cut, Silence, Vid, Alt, Infade, Outfade, Xfade, Gain, Rem, Unknown };

struct LineForm {
  const char* label;
  LineKind kind;
  std::size_t needs;  ///< least number of values
  bool isEdit;        ///< refused once the event has its edit
};

constexpr LineForm kEntry = {"Entry", LineKind::Entry, 0, false};
constexpr LineForm kCut = {"Cut", LineKind::Cut, 8, true};
constexpr LineForm kSilence = {"Silence", LineKind::Silence, 4, true};
constexpr LineForm kAux = {"Aux", LineKind::Silence, 4, true};
constexpr LineForm kVid = {"Vid", LineKind::Vid, 4, true};
constexpr LineForm kAlt = {"Alt", LineKind::Alt, 4, true};
constexpr LineForm kInfade = {"Infade", LineKind::Infade, 5, false};
constexpr LineForm kOutfade = {"Outfade", LineKind::Outfade, 5, false};
constexpr LineForm kXfade = {"Xfade", LineKind::Xfade, 6, false};
constexpr LineForm kGain = {"Gain", LineKind::Gain, 2, false};
constexpr LineForm kRem = {"Rem", LineKind::Rem, 0, false};
constexpr LineForm kUnknown = {"", LineKind::Unknown, 0, false};

/// The one form that a label which begins so can have.
const LineForm& FormThatBeginsLike(const char* label) {
  switch (LowerCase(label[0])) {
    case 'e':
      return kEntry;
    case 'c':
      return kCut;
    case 's':
      return kSilence;
    case 'a':
      return LowerCase(label[1]) == 'l' ? kAlt : kAux;
    case 'v':
      return kVid;
    case 'i':
      return kInfade;
    case 'o':
      return kOutfade;
    case 'x':
      return kXfade;
    case 'g':
      return kGain;
    case 'r':
      return kRem;
    default:
      return kUnknown;
  }
}

/// One comparison for each label, where a walk over all of them takes five on average.
const LineForm& FormOf(const char* label) {
  if (label == nullptr) return kUnknown;
  const LineForm& form = FormThatBeginsLike(label);
  return EqualsIgnoringCase(label, form.label) ? form : kUnknown;
}

constexpr std::size_t kWholeFade = 8;

bool IsFade(LineKind kind) {
  return kind == LineKind::Infade || kind == LineKind::Outfade;
}

/// Takes a line into its event.
void Take(AES31Event& event, const EntryLine& line, const LineForm& form, bool checked) {
  const Values values(line);
  const bool withFadeTail = !checked || values.Count() >= kWholeFade;
  switch (form.kind) {
    case LineKind::Cut:
      FillCut(event, values);
      break;
    case LineKind::Silence:
      FillSilence(event, values);
      break;
    case LineKind::Vid:
      FillVid(event, values);
      break;
    case LineKind::Alt:
      FillAlt(event, values);
      break;
    case LineKind::Infade:
      FillFade(event.infade, values, withFadeTail);
      break;
    case LineKind::Outfade:
      FillFade(event.outfade, values, withFadeTail);
      break;
    case LineKind::Xfade:
      FillCrossfade(event, values);
      break;
    case LineKind::Gain:
      FillGain(event, values);
      break;
    case LineKind::Entry:
    case LineKind::Rem:
    case LineKind::Unknown:
      break;
  }
}

/// The events of one section, in the order of its entries. Room is made for all of them when the
/// first have shown how many entries an event has: an array that doubles would move 300 MB for a
/// million events, and hold them twice meanwhile. Room that stays empty costs no memory.
class EventStore {
 public:
  explicit EventStore(std::size_t entries) : entriesLeft_(entries) {}

  /// To be called for each entry of the section.
  void CountEntry() {
    ++entriesRead_;
    --entriesLeft_;
  }
  void Open(std::int32_t number) {
    if (!events_.empty() && number <= events_.back().entryNumber) rising_ = false;
    if (events_.size() == events_.capacity()) MakeRoom();
    events_.emplace_back().entryNumber = number;
    pages_.Filled(events_.size() * sizeof(AES31Event));
  }
  bool IsEmpty() const { return events_.empty(); }
  AES31Event& Last() { return events_.back(); }

  /// By rising number; of those with one number the last.
  std::vector<AES31Event> ByNumber() && {
    pages_.Stop();
    return rising_ ? std::move(events_) : std::move(*this).Sorted();
  }

 private:
  /// The events move into memory that was told to be large before any of it was touched: told
  /// afterwards, it has been handed out in small pages as far as the move went.
  void MakeRoom() {
    constexpr std::size_t kFirstRoom = 4096;
    constexpr std::size_t kLargestStep = 256;  // in a section that does not go on as it began
    const std::size_t size = events_.size();
    const std::size_t most = size + entriesLeft_ + 1;
    const double eventsForEntry = static_cast<double>(size) / static_cast<double>(entriesRead_);
    const auto further =
        static_cast<std::size_t>(static_cast<double>(entriesLeft_) * eventsForEntry);
    const std::size_t likely = (size + further) / 16 * 17 + kFirstRoom;
    std::vector<AES31Event> roomier;
    // More than a list may have is more than there is memory for, and told as that.
    roomier.reserve(std::min(
        {std::max(likely, size * 2), size * kLargestStep + kFirstRoom, most, events_.max_size()}));
    AdviseLargePages(roomier.data(), roomier.capacity() * sizeof(AES31Event));
    roomier.insert(roomier.end(), events_.begin(), events_.end());
    pages_.Stop();  // the memory that it knows goes
    events_ = std::move(roomier);
    pages_.Start(events_.data(), std::min(size + further, events_.capacity()) * sizeof(AES31Event));
  }

  std::vector<AES31Event> Sorted() && {
    std::vector<std::pair<std::int32_t, std::size_t>> order;
    order.reserve(events_.size());
    for (std::size_t i = 0; i < events_.size(); ++i) order.emplace_back(events_[i].entryNumber, i);
    std::sort(order.begin(), order.end());
    std::vector<AES31Event> sorted;
    sorted.reserve(order.size());
    AdviseLargePages(sorted.data(), sorted.capacity() * sizeof(AES31Event));
    for (std::size_t i = 0; i < order.size(); ++i) {
      const bool isReplaced = i + 1 < order.size() && order[i].first == order[i + 1].first;
      if (!isReplaced) sorted.push_back(events_[order[i].second]);
    }
    return sorted;
  }

  std::vector<AES31Event> events_;
  PagesAhead pages_;  ///< of that array
  std::size_t entriesRead_ = 0;
  std::size_t entriesLeft_;
  bool rising_ = true;
};

struct Complaint {
  LoadFailureCode code;
  std::string reason;
};

/// Tells a fade length that only has another separator before its frames from any other text.
LoadFailureCode FadeFault(const char* length) {
  constexpr std::size_t kSeparatorAt = 8;
  if (length == nullptr) return LoadFailureCode::FadeForm;
  std::string text(length, strnlen(length, kTimestampLength));
  if (text.size() < kTimestampLength) return LoadFailureCode::FadeForm;
  text[kSeparatorAt] = ';';
  return AdlIsTimestamp(text.c_str()) ? LoadFailureCode::FadeSeparator : LoadFailureCode::FadeForm;
}

/// What is wrong with a line.
std::optional<Complaint> ComplaintAbout(const EntryLine& line, const LineForm& form) {
  if (line.valueCount < form.needs) {
    return Complaint{LoadFailureCode::ValuesMissing, std::string(form.label) + " needs at least " +
                                                         std::to_string(form.needs) + " values"};
  }
  if (IsFade(form.kind) && !AdlIsTimestamp(line.texts[0])) {
    return Complaint{FadeFault(line.texts[0]),
                     std::string(form.label) +
                         " has a length that is no timestamp with \";\" or \",\" for its frames"};
  }
  return std::nullopt;
}

}  // namespace

bool AES31Project::CheckEventList(const AES31Section& section) {
  return WalkEventList(section, Checks::On);
}

void AES31Project::ReadEventList(const AES31Section& section) {
  WalkEventList(section, Checks::Off);
}

bool AES31Project::WalkEventList(const AES31Section& section, Checks checks) {
  const bool checked = checks == Checks::On;
  EventStore store(section.entries.size());
  bool editSeen = false;

  EntryLines lines(section.entries);
  for (EntryLine line; lines.Next(line);) {
    store.CountEntry();
    const LineForm* form = &FormOf(line.label);
    if (form->kind == LineKind::Entry) {
      if (checked && line.valueCount == 0) {
        return FailAt(LoadFailureCode::IndexMissing, section, line.label, "Entry has no number");
      }
      store.Open(ToInt32(line.texts[0]));
      editSeen = false;
      continue;
    }
    if (store.IsEmpty()) {
      Tolerate(LoadDiagnosticCode::UnexpectedEntry, line.label,
               std::string("Found unexpected entry: ") + TextOrNull(line.label));
      continue;
    }
    if (form->isEdit && editSeen) form = &kUnknown;
    if (checked) {
      std::optional<Complaint> complaint = ComplaintAbout(line, *form);
      if (complaint) {
        return FailAt(complaint->code, section, line.label, std::move(complaint->reason));
      }
    }
    if (form->kind == LineKind::Unknown) {
      Tolerate(LoadDiagnosticCode::UnexpectedLabel, line.label,
               std::string("Encountered unexpected label: ") + TextOrNull(line.label));
    }
    Take(store.Last(), line, *form, checked);
    // An alternative is no edit in its own right: it gives no label, and an edit may replace it.
    if (form->isEdit && form->kind != LineKind::Alt) {
      editSeen = true;
      store.Last().label = line.label;
    }
  }

  std::vector<AES31Event> read = std::move(store).ByNumber();
  if (events.empty()) {
    events = std::move(read);
  } else {
    events.insert(events.end(), read.begin(), read.end());
  }
  return true;
}

}  // namespace velmora
