#include "ADL/AdlScanner.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "Base/Text.h"

namespace velmora {
namespace {

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
  open_.push_back(&sections);
  at = ScanBlock(sections, at, tag, depth);
  open_.pop_back();
  return at;
}

char* AdlScanner::ScanBlock(std::vector<AES31Section>& sections, char* at, const char* tag,
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
  if (detached_) section.entries.AsArray();
  while (at < end_) {
    const Token token = NextToken(at);
    if (token.First() == '(') {
      at = ScanEntry(section, token);
      if (at == nullptr) return end_;
    } else if (StartsExactly(token.begin, token.end, "</") &&
               StartsWith({token.begin + 2, token.end}, section.name)) {
      return token.end;
    } else if (StartsExactly(token.begin, token.end, "/*")) {
      // A walk over the entries would stumble over it.
      if (!section.entries.empty()) section.entries.AsArray();
      at = TakeComment(token);
    } else {
      return end_;
    }
  }
  return at;
}

char* AdlScanner::ScanEntry(AES31Section& section, const Token& token) {
  const char* const label = token.begin + 1;
  Values values;
  char* at = nullptr;
  if (token.Last() == ')') {
    token.end[-1] = '\0';
    at = ScanValues(values, token.end);
  } else {
    at = ScanCountedValue(section, values, token);
    if (at == nullptr) return nullptr;
  }
  if (!section.entries.IsArray()) {
    section.entries.NoteScanned(label, end_);
  } else if (detached_) {
    section.entries.push_back({label, std::move(values.texts)});
  } else {
    section.entries.push_back({label, AES31Values(values.first, values.count)});
  }
  return at;
}

char* AdlScanner::ScanValues(Values& values, char* at) {
  // Copies: every NUL that is written might otherwise change them, as far as a compiler can tell.
  char* const end = end_;
  Values found;
  while (at < end) {
    at = NextText(at, end);
    if (at == end || *at == '(' || *at == '<') break;
    Note(found, at);
    char* const valueEnd =
        *at == '"' ? at + (QuotedValueEnd(at, end) - at) : NextBlankAfterValue(at, end);
    *valueEnd = '\0';
    at = std::min(valueEnd + 1, end);
  }
  values = std::move(found);
  return at;
}

void AdlScanner::Note(Values& values, const char* text) const {
  if (values.count++ == 0) values.first = text;
  if (detached_) values.texts.push_back(text);
}

/// `(LABEL)N` and then one value that may hold anything: N counts the separator and the value's
/// bytes. The label's ")" is searched backwards, past the token's own start if it has none. Answers
/// null if there is none down to the start of the block.
char* AdlScanner::ScanCountedValue(AES31Section& section, Values& values, const Token& token) {
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
  if (parenthesis < token.begin) DetachEverything(section);
  *parenthesis = '\0';

  const std::ptrdiff_t room = end_ - token.end;
  const std::ptrdiff_t count = std::clamp<std::ptrdiff_t>(ToInt32(parenthesis + 1), 0, room);
  Note(values, std::min(token.end + 1, end_));
  token.end[count] = '\0';
  return token.end + count + 1;
}

/// Before something is cut that stands before the scan's place: whatever has been scanned so far is
/// taken down entry by entry, and so is all that follows, for another such cut may come.
void AdlScanner::DetachEverything(AES31Section& section) {
  if (detached_) return;
  detached_ = true;
  section.entries.Detach();
  const auto detachAll = [](std::vector<AES31Section>& sections) {
    for (AES31Section& each : sections) each.entries.Detach();
  };
  for (std::vector<AES31Section>* const sections : open_) detachAll(*sections);
  for (std::vector<AES31Section>& sections : refLists_) detachAll(sections);
}

/// The walk starts at the token's first byte and not after its "/*", so "/*/" is a whole comment.
/// Its end then lies before the text that is kept of it.
char* AdlScanner::TakeComment(const Token& token) {
  comments_.push_back(token.begin + 2);
  const std::string_view rest(token.begin, static_cast<std::size_t>(end_ - token.begin));
  char* const at = token.begin + std::min(rest.find("*/"), rest.size());
  *at = '\0';
  return std::min(at + 1, end_) + 1;
}

bool AdlScanner::StartsWith(const Token& token, const char* prefix) const {
  const char* at = token.begin;
  for (; *prefix != '\0'; ++prefix, ++at) {
    if (at == token.end || LowerCase(*at) != LowerCase(*prefix)) return false;
  }
  return true;
}

}  // namespace velmora
