#include "Field/TreeReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "Field/Keyword.h"

namespace velmora::field {
namespace {

constexpr char kEscape = 0x1B;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
/// How many open sections a closing tag may close, and how many strays are kept: they bound the
/// work on hostile texts.
constexpr std::size_t kMostScopesClosed = 64;
constexpr std::size_t kMostStrays = 1'000'000;

std::string_view View(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

std::string_view Tree::RawText(const Value& value) const {
  if (!value.quoted) return value.text;
  const char* const end = value.text.data() + value.text.size();
  const bool closed = end != file.data() + file.size() && *end == '"';
  return View(value.text.data() - 1, closed ? end + 1 : end);
}

Tree ReadTree(std::string_view file) {
  return TreeReader(file).Read();
}

TreeReader::TreeReader(std::string_view file)
    : begin_(file.data()),
      end_(file.data() + file.size()),
      tokens_(end_),
      at_(begin_),
      noQuoteFrom_(end_),
      noCommentEndFrom_(end_) {
  tree_.file = file;
}

Tree TreeReader::Read() && {
  SkipByteOrderMark();
  if (FindStart()) {
    // About what projects come to. What is not used costs no memory, what grows is copied.
    tree_.values.reserve(tree_.file.size() / 9);
    tree_.entries.reserve(tree_.file.size() / 30);
    ReadOuter();
    tree_.cutOff = cutInside_ || (!outerClosed_ && (tree_.hasOpeningTag || !scopes_.empty()));
    PopTo(0);
    EndPiece();
    if (!tree_.cutOff) {
      tree_.cutEntry.reset();
      tree_.cutInsideValue = false;
    }
  }
  return std::move(tree_);
}

// The start of the text ------------------------------------------------------------------------

void TreeReader::SkipByteOrderMark() {
  if (!tokens_.StandsAt(at_, kByteOrderMark)) return;
  AddStray(at_, at_ + kByteOrderMark.size(), StrayKind::ByteOrderMark);
  at_ += kByteOrderMark.size();
}

/// Goes to the text that counts; false if there is none, so that noise of any size costs one
/// search.
bool TreeReader::FindStart() {
  const char* const tag = FindOpeningTag();
  if (tag == nullptr) {
    constexpr std::string_view kEventList = "<EVENT_LIST";
    const char* const found =
        std::search(at_, end_, kEventList.begin(), kEventList.end(),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
    return found != end_;
  }
  tree_.hasOpeningTag = true;
  if (tag != at_) AddStray(at_, tag, StrayKind::BeforeTag);
  Tag opening;
  (void)tokens_.ReadTag(tag, Among::Labels, opening);
  at_ = opening.end;
  // The system passes over what is glued to the tag.
  if (!opening.plain) AddStray(tag, tokens_.StrayEnd(tag), StrayKind::Bracket);
  return true;
}

/// The first <ADL>, one inside a comment only if there is no other.
const char* TreeReader::FindOpeningTag() const {
  constexpr std::string_view kOpeningTag = "<ADL>";
  constexpr std::string_view kCommentEnd = "*/";
  const char* inComment = nullptr;
  const char* commentEnd = at_;
  bool commentsEnd = true;
  for (const char* at = at_; at != end_; ++at) {
    at = std::find_if(at, end_, [](char c) { return c == '<' || c == '/'; });
    if (at == end_) break;
    if (commentsEnd && at >= commentEnd && tokens_.StandsAt(at, "/*")) {
      const char* const found = std::search(at + 2, end_, kCommentEnd.begin(), kCommentEnd.end());
      commentsEnd = found != end_;
      if (commentsEnd) commentEnd = found + kCommentEnd.size();
    } else if (tokens_.StandsAt(at, kOpeningTag)) {
      if (at >= commentEnd) return at;
      if (inComment == nullptr) inComment = at;
    }
  }
  return inComment;
}

// Sections -------------------------------------------------------------------------------------

void TreeReader::ReadOuter() {
  Tag tag;
  Label label;
  for (SkipBlanks(); at_ != end_; SkipBlanks()) {
    if (tokens_.StandsAt(at_, "/*")) {
      (void)TakeComment(false);
    } else if (*at_ == '<' && tokens_.ReadTag(at_, Among::Labels, tag)) {
      if (!TakeTag(tag)) return;
    } else if (*at_ == '(' && tokens_.ReadLabel(at_, Among::Labels, label)) {
      TakeEntry(label);
    } else {
      TakeStrayWord();
    }
  }
}

/// False at the end of what counts.
bool TreeReader::TakeTag(const Tag& tag) {
  const char* const begin = at_;
  if (tag.end == end_ && tag.end[-1] != '>') cutInside_ = true;
  if (!tag.plain && !Inside(ScopeKind::ReferenceList)) {
    AddStray(begin, std::max(tag.end, tokens_.StrayEnd(begin)), StrayKind::Bracket);
  }
  if (IsKeyword(tag.name, "ADL")) {
    if (tag.closes) {
      outerClosed_ = true;
      return false;
    }
    AddStray(begin, tag.end, StrayKind::WrongTag);
  } else if (tag.closes) {
    Close(tag);
  } else {
    Open(tag);
  }
  at_ = tag.end;
  return true;
}

void TreeReader::Open(const Tag& tag) {
  Scope scope;
  scope.name = tag.name;
  scope.inReferenceList = !scopes_.empty() && scopes_.back().inReferenceList;
  if (IsKeyword(tag.name, "REF_LIST")) {
    // One that nothing closes must not swallow a text that goes on to its proper end.
    if (ClosesLater(tag.end) && !StandsLater("</REF_LIST>", tag.end, lastListClosing_)) {
      AddStray(at_, tag.end, StrayKind::WrongTag);
      return;
    }
    scope.kind = ScopeKind::ReferenceList;
    scope.inReferenceList = true;
  } else if (Inside(ScopeKind::ReferenceList) && IsKeyword(tag.name, "REF")) {
    scope.kind = ScopeKind::Reference;
  }
  // The system knows no section inside a section: its reading ends there.
  if (Inside(ScopeKind::Section)) AddStray(at_, tag.end, StrayKind::WrongTag);
  EndPiece();
  scopes_.push_back(scope);
  if (scope.kind != ScopeKind::Section) return;
  OpenPiece(tag.name, false);
  scopes_.back().first = scopes_.back().current;
}

void TreeReader::Close(const Tag& tag) {
  const std::size_t lowest =
      scopes_.size() > kMostScopesClosed ? scopes_.size() - kMostScopesClosed : 0;
  std::size_t depth = scopes_.size();
  while (depth > lowest && !IsKeyword(scopes_[depth - 1].name, tag.name)) --depth;
  if (depth == lowest) {
    // As the system has it: </VERSIONS> closes <VERSION>.
    const bool closesLast = !scopes_.empty() && BeginsWithKeyword(tag.name, scopes_.back().name);
    if (!closesLast) {
      if (!Inside(ScopeKind::ReferenceList)) AddStray(at_, tag.end, StrayKind::WrongTag);
      return;
    }
    depth = scopes_.size();
  }
  const Scope& closed = scopes_[depth - 1];
  if (closed.first != kNoSection) tree_.sections[closed.first].closed = true;
  if (depth != scopes_.size() && !Inside(ScopeKind::ReferenceList)) {
    AddStray(at_, tag.end, StrayKind::WrongTag);
  }
  PopTo(depth - 1);
}

/// Ends the piece of a section that takes entries.
void TreeReader::EndPiece() {
  std::uint32_t& piece = scopes_.empty() ? outside_ : scopes_.back().current;
  if (piece == kNoSection) return;
  Section& section = tree_.sections[piece];
  section.entryCount = static_cast<std::uint32_t>(tree_.entries.size()) - section.firstEntry;
  piece = kNoSection;
}

void TreeReader::PopTo(std::size_t depth) {
  for (; scopes_.size() > depth; scopes_.pop_back()) EndPiece();
}

void TreeReader::OpenPiece(std::string_view name, bool resumed) {
  std::uint32_t& piece = scopes_.empty() ? outside_ : scopes_.back().current;
  piece = static_cast<std::uint32_t>(tree_.sections.size());
  tree_.sections.push_back({.name = name,
                            .firstEntry = static_cast<std::uint32_t>(tree_.entries.size()),
                            .inReferenceList = !scopes_.empty() && scopes_.back().inReferenceList,
                            .resumed = resumed});
}

// Entries --------------------------------------------------------------------------------------

void TreeReader::TakeEntry(const Label& label) {
  const bool inSection = Inside(ScopeKind::Section);
  const bool passedOver = Inside(ScopeKind::ReferenceList);
  if (!inSection && !passedOver) AddStray(at_, label.end, StrayKind::LabelOutside);
  const std::uint32_t piece = scopes_.empty() ? outside_ : scopes_.back().current;
  if (piece == kNoSection) {
    OpenPiece(inSection ? scopes_.back().name : View(at_, at_), inSection);
  }
  tree_.entries.push_back({.label = label.name,
                           .firstValue = static_cast<std::uint32_t>(tree_.values.size()),
                           .counted = label.counted});
  if (!label.plain && !passedOver) {
    AddStray(at_, std::max(label.end, tokens_.StrayEnd(at_)), StrayKind::Bracket);
  }
  at_ = label.end;
  if (label.counted) {
    TakeCountedValue(label);
  } else {
    TakeValues();
  }
  Entry& entry = tree_.entries.back();
  entry.valueCount = static_cast<std::uint32_t>(tree_.values.size()) - entry.firstValue;
  if (at_ == end_) tree_.cutEntry = static_cast<EntryPlace>(tree_.entries.size() - 1);
}

/// One separator, then N - 1 bytes of any kind, then a byte that ends them, blank or not.
void TreeReader::TakeCountedValue(const Label& label) {
  const auto room = static_cast<std::size_t>(end_ - at_);
  if (label.count > room) cutInside_ = tree_.cutInsideValue = true;
  const std::size_t count = std::min(label.count, room);
  const char* const value = at_ + std::min<std::size_t>(1, room);
  tree_.values.push_back({View(value, std::max(value, at_ + count)), false});
  at_ += count;
  if (at_ == end_) return;
  if (*at_ == '(' || *at_ == '<') {  // which the system loses
    AddStray(at_, tokens_.StrayEnd(at_), StrayKind::Bracket);
  } else {
    ++at_;
  }
}

void TreeReader::TakeValues() {
  const char* lineOf = at_ - 1;  // a byte of the line on which values or the label stand
  for (;;) {
    SkipBlanks();
    if (at_ == end_) {
      tree_.cutInsideValue = end_ != begin_ && !IsBlank(end_[-1]);
      return;
    }
    const char* const begin = at_;
    if (!TakeValue(lineOf)) return;
    lineOf = at_ > begin ? at_ - 1 : begin;
  }
}

/// Takes a value or a comment; false at the label or tag that ends the values.
bool TreeReader::TakeValue(const char* lineOf) {
  const char* const begin = at_;
  switch (*begin) {
    case '"':
      TakeQuotedValue();
      return true;
    case '/':
      if (tokens_.StandsAt(begin, "/*") && TakeComment(true)) return true;
      break;
    case '(':
    case '<': {
      const bool onLine = std::find_if(lineOf, begin, EndsLine) == begin;
      const Among among = onLine ? Among::Values : Among::Labels;
      Tag tag;
      Label label;
      if (*begin == '(' ? tokens_.ReadLabel(begin, among, label)
                        : tokens_.ReadTag(begin, among, tag)) {
        return false;
      }
      // What is no label or tag is a stray word at the start of a line or if the end cuts it.
      if (!onLine || tokens_.TokenEnd(begin) == end_) return false;
      if (!Inside(ScopeKind::ReferenceList)) {
        AddStray(begin, tokens_.StrayEnd(begin), StrayKind::Bracket);
      }
      break;
    }
    default:
      break;
  }
  at_ = tokens_.ValueEnd(begin);
  tree_.values.push_back({View(begin, at_), false});
  // A closing tag glued to a value hides from the system.
  if (at_ != end_ && *at_ == '<') AddStray(at_, tokens_.StrayEnd(at_), StrayKind::Bracket);
  return true;
}

void TreeReader::TakeQuotedValue() {
  const char* const first = at_ + 1;
  const char* end = first >= noQuoteFrom_ ? end_ : first;
  for (; end != end_; ++end) {
    end = static_cast<const char*>(std::memchr(end, '"', static_cast<std::size_t>(end_ - end)));
    if (end == nullptr) end = end_;
    if (end == end_ || end[-1] != kEscape) break;
  }
  if (end != end_) {
    tree_.values.push_back({View(first, end), true});
    at_ = end + 1;
    return;
  }
  noQuoteFrom_ = std::min(noQuoteFrom_, first);
  // A mark that nothing closes must not swallow a text that goes on to its proper end.
  if (ClosesLater(first)) {
    end = tokens_.LineEnd(first);
    while (end != first && IsBlank(end[-1])) --end;
  } else {
    cutInside_ = true;
  }
  tree_.values.push_back({View(first, end), true});
  at_ = end;
}

/// Where the text of the comment ends that begins there, null for one that nothing closes.
const char* TreeReader::CommentTextEnd(const char* begin) {
  constexpr std::string_view kEnd = "*/";
  const bool whole = tokens_.StandsAt(begin, "/*/") && (begin + 3 == end_ || IsBlank(begin[3]));
  if (whole) return begin + 1;
  if (begin + 2 >= noCommentEndFrom_) return nullptr;
  const char* const found = std::search(begin + 2, end_, kEnd.begin(), kEnd.end());
  if (found != end_) return found;
  noCommentEndFrom_ = begin + 2;
  return nullptr;
}

/// False for a mark among values that nothing closes, in a text that goes on to its proper end: it
/// must swallow nothing of that, and is a value. Elsewhere it takes the rest of its line.
bool TreeReader::TakeComment(bool amongValues) {
  const char* const begin = at_;
  const char* textEnd = CommentTextEnd(begin);
  const char* end = textEnd != nullptr ? textEnd + 2 : end_;
  if (textEnd == nullptr) {
    const bool closesLater = ClosesLater(begin);
    if (closesLater && amongValues) return false;
    if (!closesLater) cutInside_ = true;
    textEnd = end = closesLater ? tokens_.LineEnd(begin) : end_;
  }
  tree_.comments.push_back(View(begin + 2, std::max(textEnd, begin + 2)));
  if (amongValues && !Inside(ScopeKind::ReferenceList)) AddStray(begin, end, StrayKind::Comment);
  at_ = end;
  return true;
}

/// Up to the end of the line, or to something on it that is more than words: a label, a comment, a
/// closing tag, outside of sections any tag.
void TreeReader::TakeStrayWord() {
  const char* const begin = at_;
  const char* end = begin;
  do {
    end = at_ = tokens_.StrayTokenEnd(at_);
    while (at_ != end_ && IsBlank(*at_) && !EndsLine(*at_)) ++at_;
  } while (at_ != end_ && !EndsLine(*at_) && !EndsStrayWords());
  if (!Inside(ScopeKind::ReferenceList)) AddStray(begin, end, StrayKind::Word);
}

bool TreeReader::EndsStrayWords() const {
  Tag tag;
  Label label;
  if (tokens_.StandsAt(at_, "/*")) return true;
  if (*at_ == '<') {
    return tokens_.ReadTag(at_, Among::Values, tag) && (tag.closes || !Inside(ScopeKind::Section));
  }
  return *at_ == '(' && tokens_.ReadLabel(at_, Among::Values, label) && label.plain &&
         IsIdentifier(label.name);
}

/// The text has a </ADL> after this place.
bool TreeReader::ClosesLater(const char* at) {
  return StandsLater("</ADL>", at, lastClosing_);
}

/// The tag stands after this place. `last` keeps where it stands last, null as long as nobody
/// asked.
bool TreeReader::StandsLater(std::string_view tag, const char* at, const char*& last) const {
  if (last == nullptr) {
    const char* const found =
        std::find_end(begin_, end_, tag.begin(), tag.end(),
                      [](char a, char b) { return LowerCase(a) == LowerCase(b); });
    last = found != end_ ? found : begin_;
  }
  return last >= at;
}

void TreeReader::SkipBlanks() {
  at_ = std::find_if_not(at_, end_, IsBlank);
}

void TreeReader::AddStray(const char* begin, const char* end, StrayKind kind) {
  if (tree_.strays.size() == kMostStrays) return;
  Stray stray;
  stray.text = View(begin, end);
  stray.kind = kind;
  stray.entriesBefore = static_cast<EntryPlace>(tree_.entries.size());
  const bool amongValues = kind == StrayKind::Comment || kind == StrayKind::Bracket;
  if (amongValues && !tree_.entries.empty()) {
    stray.entry = stray.entriesBefore - 1;
    stray.valuesBefore =
        static_cast<std::uint32_t>(tree_.values.size()) - tree_.entries.back().firstValue;
  }
  tree_.strays.push_back(stray);
}

}  // namespace velmora::field
