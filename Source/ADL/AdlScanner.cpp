#include "ADL/AdlScanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "Base/Text.h"

namespace velmora {
namespace {

constexpr char kEscape = 0x1B;

/// Control characters, the blank, NUL bytes that the scanner wrote, and every byte from 0x80 on: a
/// byte of a multi-byte character splits an unquoted value.
bool IsBlank(char c) {
  return static_cast<signed char>(c) < 33;
}

bool StartsExactly(const char* begin, const char* end, const char* prefix) {
  const std::size_t length = std::strlen(prefix);
  return static_cast<std::size_t>(end - begin) >= length &&
         std::equal(prefix, prefix + length, begin);
}

}  // namespace

bool AdlScanner::Scan(std::vector<AES31Section>& sections) {
  if (!StartsWith(TokenAt(begin_), "<ADL>")) return false;
  ScanSection(sections, begin_, "ADL", 0);
  return true;
}

char* AdlScanner::ScanSection(std::vector<AES31Section>& sections, char* at, const char* tag,
                              int depth) {
  const std::string opening = std::string("<") + tag + ">";
  const std::string closing = std::string("</") + tag + ">";
  // No blank is skipped: the tag must stand at the very position given.
  Token token = TokenAt(at);
  if (depth >= kMaxDepth || !StartsWith(token, opening.c_str())) return nullptr;
  at = token.end;

  while (at < end_) {
    token = NextToken(at);
    if (StartsWith(token, closing.c_str())) return token.end;
    if (StartsWith(token, "<REF_LIST>")) {
      at = ScanReferenceList(token.end, depth);
      if (at == nullptr) return nullptr;
    } else if (token.First() == '<') {
      token.end[-1] = '\0';
      AES31Section section;
      section.name = std::min(token.begin + 1, token.end - 1);
      at = ScanEntries(section, token.end);
      sections.push_back(std::move(section));
      if (at == end_) return nullptr;
    } else if (StartsExactly(token.begin, token.end, "/*")) {
      at = TakeComment(token);
    } else {
      return nullptr;
    }
  }
  return at;
}

char* AdlScanner::ScanReferenceList(char* at, int depth) {
  while (at < end_) {
    const Token token = NextToken(at);
    if (StartsWith(token, "</REF_LIST>")) return token.end;
    at = token.end;
    if (!StartsWith(token, "<REF>")) continue;
    std::vector<AES31Section> sections;
    at = ScanSection(sections, token.begin, "REF", depth + 1);
    if (at == nullptr) return nullptr;
    refLists_.push_back(std::move(sections));
  }
  return at;
}

char* AdlScanner::ScanEntries(AES31Section& section, char* at) {
  while (at < end_) {
    const Token token = NextToken(at);
    if (token.First() == '(') {
      at = ScanEntry(section, token);
      if (at == nullptr) return end_;
    } else if (StartsExactly(token.begin, token.end, "</") &&
               StartsWith({token.begin + 2, token.end}, section.name)) {
      return token.end;
    } else if (StartsExactly(token.begin, token.end, "/*")) {
      at = TakeComment(token);
    } else {
      return end_;
    }
  }
  return at;
}

char* AdlScanner::ScanEntry(AES31Section& section, const Token& token) {
  AES31Entry entry;
  entry.label = token.begin + 1;
  char* at = nullptr;
  if (token.Last() == ')') {
    token.end[-1] = '\0';
    at = ScanValues(entry, token.end);
  } else {
    at = ScanCountedValue(entry, token);
  }
  if (at != nullptr) section.entries.push_back(std::move(entry));
  return at;
}

char* AdlScanner::ScanValues(AES31Entry& entry, char* at) {
  while (at < end_) {
    at = SkipBlanks(at);
    if (at == end_ || *at == '(' || *at == '<') return at;
    char* const valueEnd = *at == '"' ? QuotedValueEnd(at) : TokenAt(at).end;
    *valueEnd = '\0';
    entry.values.push_back(at);
    at = valueEnd;
  }
  return at;
}

/// `(LABEL)N` and then one value that may hold anything: N counts the separator and the value's
/// bytes. The label's ")" is searched backwards, past the token's own start if it has none. Answers
/// null if there is none down to the start of the block.
char* AdlScanner::ScanCountedValue(AES31Entry& entry, const Token& token) {
  char* parenthesis = token.end - 1;
  do {
    while (!searched_.empty() && parenthesis == searched_.back().second) {
      parenthesis = searched_.back().first;
      searched_.pop_back();
    }
    if (parenthesis == begin_) return nullptr;
    --parenthesis;
  } while (*parenthesis != ')');
  searched_.emplace_back(parenthesis, token.end - 1);
  *parenthesis = '\0';

  const std::ptrdiff_t room = end_ - token.end;
  const std::ptrdiff_t count = std::clamp<std::ptrdiff_t>(ToInt32(parenthesis + 1), 0, room);
  entry.values.push_back(std::min(token.end + 1, end_));
  token.end[count] = '\0';
  return token.end + count + 1;
}

/// The walk starts at the token's first byte and not after its "/*", so "/*/" is a whole comment.
/// Its end then lies before the text that is kept of it.
char* AdlScanner::TakeComment(const Token& token) {
  comments_.push_back(token.begin + 2);
  char* at = token.begin;
  while (at < end_ && !StartsExactly(at, end_, "*/")) ++at;
  *at = '\0';
  return std::min(at + 1, end_) + 1;
}

char* AdlScanner::SkipBlanks(char* at) const {
  return std::find_if_not(at, end_, IsBlank);
}

AdlScanner::Token AdlScanner::NextToken(char* at) const {
  return TokenAt(SkipBlanks(at));
}

AdlScanner::Token AdlScanner::TokenAt(char* at) const {
  return {at, at == end_ ? at : std::find_if(at + 1, end_, IsBlank)};
}

char* AdlScanner::QuotedValueEnd(char* at) const {
  for (++at; at < end_; ++at) {
    if (*at == '"' && at[-1] != kEscape) return at + 1;
  }
  return end_;
}

bool AdlScanner::StartsWith(const Token& token, const char* prefix) const {
  const char* at = token.begin;
  for (; *prefix != '\0'; ++prefix, ++at) {
    if (at == token.end || LowerCase(*at) != LowerCase(*prefix)) return false;
  }
  return true;
}

}  // namespace velmora
