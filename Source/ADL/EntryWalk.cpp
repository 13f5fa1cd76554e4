#include "ADL/EntryWalk.h"

#include <algorithm>
#include <cstring>

#include "ADL/Blanks.h"
#include "Base/Text.h"

namespace velmora {
namespace {

constexpr char kEscape = 0x1B;

}  // namespace

void EntryWalk::Read(EntryLine& line) {
  const char* const end = end_;
  line.label = at_;
  std::size_t count = 0;
  // The NUL in the place of the label's ")". A blank follows it, or in the counted form a number.
  const char* at = std::min(NextBlank(at_, end) + 1, end);
  if (at != end && !IsBlank(*at)) {
    const char* const tokenEnd = NextBlank(at, end);
    const std::ptrdiff_t room = end - tokenEnd;
    const std::ptrdiff_t length = std::clamp<std::ptrdiff_t>(ToInt32(at), 0, room);
    line.texts[count++] = std::min(tokenEnd + 1, end);
    at = tokenEnd + std::min(length + 1, room);
  } else {
    while ((at = NextText(at, end)) != end && *at != '(' && *at != '<') {
      if (count < line.texts.size()) line.texts[count] = at;
      ++count;
      at = *at == '"' ? QuotedValueEnd(at, end) : NextBlankAfterValue(at, end);
      if (at == end) break;
      ++at;  // past the value's NUL
    }
  }
  line.valueCount = count;
  for (; count < line.texts.size(); ++count) line.texts[count] = nullptr;
  at_ = std::min(NextText(at, end) + 1, end);
}

const char* QuotedValueEnd(const char* quote, const char* blockEnd) {
  const char* at = quote + 1;
  while (at != blockEnd) {
    at = static_cast<const char*>(std::memchr(at, '"', static_cast<std::size_t>(blockEnd - at)));
    if (at == nullptr) return blockEnd;
    ++at;
    if (at[-2] != kEscape) return at;
  }
  return blockEnd;
}

const char* NextScannedValue(const char* value) {
  const char* at = value;
  if (*at == '"') {
    ++at;
    while (*at != '"' || at[-1] == kEscape) ++at;
    ++at;
  } else {
    at += std::strlen(at);
  }
  while (IsBlank(*at)) ++at;
  return at;
}

}  // namespace velmora
