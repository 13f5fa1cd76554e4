#include "SlowScanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>

namespace velmora::test::differential {
namespace {

// From this nesting on a <REF> block counts as damaged.
constexpr int kMaxDepth = 256;

char LowerCase(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

class SlowScanner {
 public:
  explicit SlowScanner(SlowTree& tree) : tree_(tree), end_(tree.block.size() - 1) {}

  // A place in the text. Places from `end_` on have blanks, as many as one likes.
  using Position = std::size_t;
  // No position: the scan has failed.
  using Answer = std::optional<Position>;

  Answer ScanSection(std::vector<SlowSection>& target, Position at, const std::string& tag,
                     int depth) {
    const std::string opening = "<" + tag + ">";
    const std::string closing = "</" + tag + ">";
    if (!Begins(at, opening.substr(0, 5))) return std::nullopt;
    at = TokenEnd(at);
    while (at < end_) {
      const Position token = SkipBlanks(at);
      at = TokenEnd(token);
      if (Begins(token, closing)) return at;
      if (Begins(token, "<REF_LIST>")) {
        const Answer answer = ScanReferenceList(at, depth);
        if (!answer) return std::nullopt;
        at = *answer;
      } else if (Byte(token) == '<') {
        SlowSection section;
        // A tag of one byte has nothing between its first byte and its last.
        section.name = Pointer(at - token == 1 ? token : token + 1);
        Cut(at - 1);
        at = ScanEntries(section, at);
        target.push_back(section);
        if (at == end_) return std::nullopt;
      } else if (BeginsExactly(token, "/*")) {
        at = TakeComment(token);
      } else {
        return std::nullopt;
      }
    }
    return at;
  }

 private:
  Answer ScanReferenceList(Position at, int depth) {
    while (at < end_) {
      const Position token = SkipBlanks(at);
      at = TokenEnd(token);
      if (Begins(token, "</REF_LIST>")) return at;
      if (!Begins(token, "<REF>")) continue;
      if (depth + 1 >= kMaxDepth) return std::nullopt;
      std::vector<SlowSection> list;
      const Answer answer = ScanSection(list, token, "REF", depth + 1);
      if (!answer) return std::nullopt;
      tree_.refLists.push_back(list);
      at = *answer;
    }
    return at;
  }

  Position ScanEntries(SlowSection& section, Position at) {
    while (at < end_) {
      const Position token = SkipBlanks(at);
      at = TokenEnd(token);
      if (Byte(token) == '(') {
        SlowEntry entry;
        entry.label = Pointer(token + 1);
        const Answer answer = Byte(at - 1) == ')' ? ScanPlain(entry, at) : ScanCounted(entry, at);
        if (!answer) return end_;
        section.entries.push_back(entry);
        at = *answer;
      } else if (BeginsExactly(token, "</") && Begins(token + 2, section.name)) {
        return at;
      } else if (BeginsExactly(token, "/*")) {
        at = TakeComment(token);
      } else {
        return end_;
      }
    }
    return at;
  }

  // `at` is the end of the label's token, of which the last byte is its closing parenthesis.
  Answer ScanPlain(SlowEntry& entry, Position at) {
    Cut(at - 1);
    while (at < end_) {
      const Position value = SkipBlanks(at);
      if (value >= end_) return value;
      if (Byte(value) == '(' || Byte(value) == '<') return value;
      at = Byte(value) == '"' ? QuotedEnd(value) : TokenEnd(value);
      Cut(at);
      entry.values.push_back(Pointer(value));
    }
    return at;
  }

  Answer ScanCounted(SlowEntry& entry, Position tokenEnd) {
    Answer parenthesis;
    for (Position at = tokenEnd - 1; at > 0 && !parenthesis; --at)
      if (Byte(at - 1) == ')') parenthesis = at - 1;
    if (!parenthesis) return std::nullopt;
    Cut(*parenthesis);
    const int number = SlowNumber(Pointer(*parenthesis + 1));
    entry.values.push_back(Pointer(std::min(tokenEnd + 1, end_)));
    const Position valueEnd = std::min(tokenEnd + static_cast<Position>(std::max(number, 0)), end_);
    Cut(valueEnd);
    return valueEnd + 1;
  }

  Position TakeComment(Position token) {
    tree_.comments.push_back(Pointer(token + 2));
    Position at = token;
    while (at < end_ && !BeginsExactly(at, "*/")) ++at;
    Cut(at);
    return at + 2;
  }

  Position QuotedEnd(Position quote) const {
    Position at = quote + 1;
    while (at < end_ && (Byte(at) != '"' || Byte(at - 1) == 0x1B)) ++at;
    return std::min(at + 1, end_);
  }

  Position SkipBlanks(Position at) const {
    while (at < end_ && IsBlank(at)) ++at;
    return at;
  }
  // The first blank after the token's first byte.
  Position TokenEnd(Position token) const {
    Position at = token;
    while (at < end_ && (at == token || !IsBlank(at))) ++at;
    return at;
  }
  bool IsBlank(Position at) const { return static_cast<signed char>(Byte(at)) < 33; }

  char Byte(Position at) const { return at < end_ ? tree_.block[at] : ' '; }
  bool Begins(Position at, std::string_view text) const {
    for (std::size_t i = 0; i < text.size(); ++i)
      if (LowerCase(Byte(at + i)) != LowerCase(text[i])) return false;
    return true;
  }
  bool BeginsExactly(Position at, std::string_view text) const {
    for (std::size_t i = 0; i < text.size(); ++i)
      if (Byte(at + i) != text[i]) return false;
    return true;
  }
  const char* Pointer(Position at) const { return tree_.block.data() + at; }
  void Cut(Position at) { tree_.block[at] = '\0'; }

  SlowTree& tree_;
  const Position end_;
};

}  // namespace

void ScanSlowly(const std::string& text, SlowTree& tree) {
  tree.block.assign(text.begin(), text.end());
  tree.block.push_back('\0');
  const std::string_view outer = "<adl>";
  tree.isAdl = text.size() >= outer.size() &&
               std::equal(outer.begin(), outer.end(), text.begin(),
                          [](char tag, char byte) { return tag == LowerCase(byte); });
  SlowScanner(tree).ScanSection(tree.sections, 0, "ADL", 0);
}

int SlowNumber(const char* text) {
  if (text == nullptr) return 0;
  const long long number = std::strtoll(text, nullptr, 10);
  return static_cast<int>(std::clamp<long long>(number, std::numeric_limits<int>::min(),
                                                std::numeric_limits<int>::max()));
}

}  // namespace velmora::test::differential
