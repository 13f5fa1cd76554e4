// Texts that end the system's reading, or that it takes for values and labels. What the system
// itself makes of the bytes decides, not the look of a text.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

constexpr const char* kStops = "The system stops reading here and loses all cuts after it.";
constexpr const char* kRemedy = "Take the text out; velmora prepare does it.";

bool IsBlank(char byte) {
  return static_cast<signed char>(byte) <= ' ';
}

/// Whether a comment holds a word that begins with an angle bracket: that ends a list of values,
/// and the section with it.
bool HasTag(std::string_view comment) {
  for (std::size_t i = 0; i < comment.size(); ++i) {
    if (comment[i] == '<' && (i == 0 || IsBlank(comment[i - 1]))) return true;
  }
  return false;
}

bool HasBytesBeyondAscii(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<signed char>(c) < 0; });
}

/// Comments and brackets among values: they may be harmless.
bool StandsInLine(const field::Stray& stray) {
  return stray.kind == field::StrayKind::Comment || stray.kind == field::StrayKind::Bracket;
}

/// What of a project a stray text can do harm to.
class Harm {
 public:
  Harm(const Case& c, Findings& findings) : c_(c), findings_(findings) {
    for (const field::Stray& stray : c.project.tree.strays) {
      if (StandsInLine(stray)) inLines_.push_back(&stray);
    }
    FindUnseenLines();
  }

  void TellEnds();
  void TellDamage();
  void TellLabelsInComments();

 private:
  void FindUnseenLines();
  void Unseen(std::size_t offset);
  void Tell(std::size_t offset, std::string text, std::string effect);
  void CheckLine(field::EntryPlace place, std::initializer_list<std::size_t> values);
  void CheckSource(const field::Source& source);
  void CheckEvent(const field::Event& event);
  [[nodiscard]] const field::Stray* CommentIn(std::size_t begin, std::size_t end) const;
  [[nodiscard]] std::size_t EndOf(field::EntryPlace place) const;

  const Case& c_;
  Findings& findings_;
  std::vector<const field::Stray*> inLines_;  ///< comments and brackets, in file order
  std::unordered_set<std::size_t> told_;      ///< offsets
  // Lines of live cuts and of their sources that the system does not come to.
  std::optional<std::size_t> firstUnseen_;
  std::size_t lastUnseen_ = 0;
};

void Harm::Unseen(std::size_t offset) {
  firstUnseen_ = std::min(firstUnseen_.value_or(offset), offset);
  lastUnseen_ = std::max(lastUnseen_, offset);
}

void Harm::FindUnseenLines() {
  for (const field::Event& event : c_.project.events) {
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    for (const field::EntryPlace place : {event.place, *event.edit}) {
      if (c_.System(place) == nullptr) Unseen(c_.LabelOffset(place));
    }
  }
  for (std::size_t i = 0; i < c_.project.sources.size(); ++i) {
    const field::Source& source = c_.project.sources[i];
    if (!c_.IsUsed(i)) continue;
    for (const field::EntryPlace place : {source.place, source.fPlace.value_or(source.place)}) {
      if (c_.System(place) == nullptr) Unseen(c_.LabelOffset(place));
    }
  }
}

void Harm::Tell(std::size_t offset, std::string text, std::string effect) {
  if (!told_.insert(offset).second) return;
  findings_.Add(Code::StrayText, Severity::Lost, {.offset = offset},
                {std::move(text), std::move(effect), kRemedy});
}

/// Each text that would end the reading is told, not the first alone: once that is gone, the next
/// one counts.
void Harm::TellEnds() {
  if (!firstUnseen_) return;
  bool explained = false;
  const field::Stray* nearest = nullptr;  // of those that may be harmless
  for (const field::Stray& stray : c_.project.tree.strays) {
    const std::size_t offset = c_.project.tree.OffsetOf(stray.text);
    if (offset > lastUnseen_) break;
    if (StandsInLine(stray)) {
      nearest = offset <= *firstUnseen_ ? &stray : nearest;
      if (stray.kind == field::StrayKind::Bracket || !HasTag(stray.text)) continue;
    }
    const bool isMark = stray.kind == field::StrayKind::ByteOrderMark;
    const bool isBlank = std::all_of(stray.text.begin(), stray.text.end(), IsBlank);
    Tell(offset,
         isMark    ? "a byte order mark"
         : isBlank ? "blanks before <ADL>"
                   : c_.Show(stray.text),
         isMark || stray.kind == field::StrayKind::BeforeTag
             ? "The system reads nothing: <ADL> must be the very first bytes of the file."
             : kStops);
    explained = explained || offset <= *firstUnseen_;
  }
  if (explained) return;
  if (nearest != nullptr) {
    Tell(c_.project.tree.OffsetOf(nearest->text), c_.Show(nearest->text), kStops);
  } else if (!c_.project.tree.hasOpeningTag) {
    Tell(0, "no <ADL>",
         "The system reads nothing: <ADL> must be the very first bytes of the file.");
  } else {
    const std::size_t line = *firstUnseen_;
    Tell(line, c_.Show(c_.project.tree.file.substr(line, 40)),
         "The system does not come to this line: what stands before it ends its reading.");
  }
}

std::size_t Harm::EndOf(field::EntryPlace place) const {
  const field::Tree& tree = c_.project.tree;
  const field::EntryPlace next = place + 1;
  return next < tree.entries.size() ? tree.OffsetOf(tree.entries[next].label) : tree.file.size();
}

const field::Stray* Harm::CommentIn(std::size_t begin, std::size_t end) const {
  const auto at = std::lower_bound(inLines_.begin(), inLines_.end(), begin,
                                   [this](const field::Stray* stray, std::size_t offset) {
                                     return c_.project.tree.OffsetOf(stray->text) < offset;
                                   });
  return at != inLines_.end() && c_.project.tree.OffsetOf((*at)->text) < end ? *at : nullptr;
}

/// Tells of a line whose values the system has otherwise.
void Harm::CheckLine(field::EntryPlace place, std::initializer_list<std::size_t> values) {
  if (c_.System(place) == nullptr) return;
  const bool isWhole = std::all_of(values.begin(), values.end(),
                                   [&](std::size_t i) { return c_.SeesValue(place, i); });
  if (isWhole) return;
  const std::size_t begin = c_.OffsetOf(place);
  const std::size_t end = EndOf(place);
  const std::string_view text = c_.project.tree.file.substr(begin, end > begin ? end - begin : 0);
  if (const field::Stray* const comment = CommentIn(begin, end)) {
    Tell(c_.project.tree.OffsetOf(comment->text), c_.Show(comment->text),
         "The system takes these words for values of (" + c_.Show(c_.Line(place).label) +
             "), and misreads the line.");
  } else if (HasBytesBeyondAscii(text)) {
    findings_.Add(
        Code::TextEncoding, Severity::Lost, c_.AtLine(place),
        {c_.Show(place),
         "The system ends a value without quotation marks at each character beyond ASCII, "
         "and misreads the line.",
         "Put the value in quotation marks; velmora prepare does it."});
  } else {
    Tell(c_.LabelOffset(place), c_.Show(place), "The system reads other values on this line.");
  }
}

void Harm::CheckSource(const field::Source& source) {
  CheckLine(source.place, {0});
  if (source.fPlace) CheckLine(*source.fPlace, {0, 2});
}

void Harm::CheckEvent(const field::Event& event) {
  if (!Case::IsLive(event) || !event.edit) return;
  CheckLine(event.place, {0});
  if (c_.Line(*event.edit).valueCount >= ValuesNeeded("Cut")) {
    CheckLine(*event.edit, {0, 1, 2, 3, 4, 5, 6, 7});
  }
  if (event.fadeInPlace) CheckLine(*event.fadeInPlace, {0});
  if (event.fadeOutPlace) CheckLine(*event.fadeOutPlace, {0});
  if (!event.gains.empty()) CheckLine(event.gains.back().place, {1});
}

void Harm::TellDamage() {
  for (std::size_t i = 0; i < c_.project.sources.size(); ++i) {
    if (c_.IsUsed(i)) CheckSource(c_.project.sources[i]);
  }
  for (const field::Event& event : c_.project.events) CheckEvent(event);
}

/// Words in parentheses inside a comment are labels to the system. Those that change an event or a
/// source count.
void Harm::TellLabelsInComments() {
  if (inLines_.empty()) return;
  std::unordered_set<const AES31Entry*> counting;
  for (const SystemEvent& event : c_.system.Events()) {
    counting.insert({event.entry, event.edit, event.infade, event.outfade, event.gain});
  }
  for (const SystemSource& source : c_.system.Sources()) {
    counting.insert({source.index, source.file});
  }
  for (field::EntryPlace i = 0; i < c_.project.tree.entries.size(); ++i)
    counting.erase(c_.System(i));
  counting.erase(nullptr);
  for (const AES31Entry* const line : counting) {
    const std::size_t at = c_.system.OffsetOf(line->label);
    const auto next = std::upper_bound(inLines_.begin(), inLines_.end(), at,
                                       [this](std::size_t offset, const field::Stray* stray) {
                                         return offset < c_.project.tree.OffsetOf(stray->text);
                                       });
    const std::size_t offset =
        next != inLines_.begin() ? c_.project.tree.OffsetOf((*(next - 1))->text) : at;
    Tell(offset, c_.Show(next != inLines_.begin() ? (*(next - 1))->text : line->label),
         "The system takes this for a label of the project.");
  }
}

}  // namespace

void JudgeStrayTexts(const Case& c, Findings& findings) {
  Harm harm(c, findings);
  harm.TellEnds();
  harm.TellDamage();
  harm.TellLabelsInComments();
}

}  // namespace velmora::check
