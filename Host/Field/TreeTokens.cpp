#include "Field/TreeTokens.h"

#include <algorithm>
#include <array>

#include "Field/Keyword.h"

namespace velmora::field {
namespace {

/// How far a label or tag of several words may reach: it bounds the work on hostile texts.
constexpr std::ptrdiff_t kMostOfAName = 256;
/// N of the counted form is a signed 32-bit number to the system.
constexpr std::size_t kMostCounted = 0x7FFFFFFF;

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool IsLetter(char c) {
  return LowerCase(c) >= 'a' && LowerCase(c) <= 'z';
}
constexpr bool IsNameByte(char c) {
  return IsLetter(c) || IsDigit(c) || c == '_' || c == '-' || c == '.' || c == ':' ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string_view View(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// The bytes that end an unquoted value or may do so: blanks, and "<" of a closing tag.
constexpr auto kEndsValue = [] {
  std::array<bool, 256> ends{};
  for (std::size_t c = 0; c <= ' '; ++c) ends[c] = true;
  ends['<'] = true;
  return ends;
}();

}  // namespace

bool IsIdentifier(std::string_view text) {
  return !text.empty() && (IsLetter(text.front()) || text.front() == '_') &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; });
}

bool TreeTokens::ReadTag(const char* at, Among among, Tag& tag) const {
  const char* name = at + 1;
  tag.closes = name != end_ && *name == '/';
  if (tag.closes) ++name;
  if (name == end_ || !(IsLetter(*name) || *name == '_')) return false;
  const char* nameEnd = std::find_if_not(name, end_, IsNameByte);
  tag.name = View(name, nameEnd);
  tag.plain = nameEnd != end_ && *nameEnd == '>' && (nameEnd + 1 == end_ || IsBlank(nameEnd[1]));
  if (nameEnd != end_ && *nameEnd == '>') {
    tag.end = nameEnd + 1;
    return true;
  }
  if (among == Among::Values && nameEnd != end_) return false;
  // A bracket that comes late, after attributes say, or never.
  const char* const far = nameEnd + std::min(kMostOfAName, end_ - nameEnd);
  const char* const late = std::find_if(
      nameEnd, far, [](char c) { return c == '>' || c == '<' || c == '(' || EndsLine(c); });
  tag.end = late != far && *late == '>' ? late + 1 : nameEnd;
  return true;
}

bool TreeTokens::ReadLabel(const char* at, Among among, Label& label) const {
  const char* const name = at + 1;
  const char* const far = name + std::min(kMostOfAName, end_ - name);
  const char* const close = std::find_if(name, far, [](char c) {
    return c == ')' || c == '(' || c == '<' || c == '"' || EndsLine(c);
  });
  if (close == far || *close != ')') return false;
  label = {.name = View(name, close), .end = close + 1};
  if (std::any_of(name, close, IsBlank)) {
    return among == Among::Labels && (IsLetter(*name) || *name == '_');
  }
  label.plain = label.end == end_ || IsBlank(*label.end);
  return label.plain || ReadsAsCounted(label) || ReadsAsGlued(label);
}

/// Digits and nothing else after the ")" are the form (LABEL)N.
bool TreeTokens::ReadsAsCounted(Label& label) const {
  const char* const far = label.end + std::min(kMostOfAName, end_ - label.end);
  const char* const digitsEnd = std::find_if_not(label.end, far, IsDigit);
  if (digitsEnd == label.end || (digitsEnd != end_ && !IsBlank(*digitsEnd))) return false;
  for (const char* at = label.end; at != digitsEnd; ++at) {
    label.count = std::min(label.count * 10 + static_cast<std::size_t>(*at - '0'), kMostCounted);
  }
  label.counted = label.plain = true;
  label.end = digitsEnd;
  return true;
}

/// A label whose value begins right after its ")". Without a word inside its brackets, or with a
/// name's next letters after them, it is part of a name: "(2).wav".
bool TreeTokens::ReadsAsGlued(const Label& label) const {
  const char next = *label.end;
  if (next == '(' || next == '<' || next == '"' || StandsAt(label.end, "/*")) return true;
  return IsIdentifier(label.name) &&
         (IsLetter(next) || IsDigit(next) || next == '_' || next == '+' || next == '-');
}

/// A text in quotation marks on the line is one token, whatever brackets stand in it.
const char* TreeTokens::StrayTokenEnd(const char* at) const {
  if (*at == '"') {
    const char* const mark =
        std::find_if(at + 1, end_, [](char c) { return c == '"' || EndsLine(c); });
    if (mark != end_ && *mark == '"') return mark + 1;
  }
  return TokenEnd(at);
}

/// Where a stray token ends, or what is shown of it does.
const char* TreeTokens::StrayEnd(const char* at) const {
  return std::find_if(at, at + std::min(kMostOfAName, end_ - at), IsBlank);
}

const char* TreeTokens::TokenEnd(const char* at) const {
  return at == end_ ? at : std::find_if(at + 1, end_, IsBlank);
}

/// Of an unquoted value: the next blank, or a closing tag glued to it.
const char* TreeTokens::ValueEnd(const char* at) const {
  const auto ends = [](char c) { return kEndsValue[static_cast<unsigned char>(c)]; };
  Tag tag;
  for (at = std::find_if(at + 1, end_, ends); at != end_ && *at == '<';
       at = std::find_if(at + 1, end_, ends)) {
    if (!StandsAt(at, "</") || !ReadTag(at, Among::Values, tag)) continue;
    // Nothing but further tags follows on the line of a tag that a value touches by accident.
    const char* const next =
        std::find_if(tag.end, end_, [](char c) { return !IsBlank(c) || EndsLine(c); });
    if (next == end_ || EndsLine(*next) || *next == '<') break;
  }
  return at;
}

const char* TreeTokens::LineEnd(const char* at) const {
  return std::find_if(at, end_, EndsLine);
}

bool TreeTokens::StandsAt(const char* at, std::string_view text) const {
  return static_cast<std::size_t>(end_ - at) >= text.size() && IsKeyword({at, text.size()}, text);
}

}  // namespace velmora::field
