#include "ADL/LineMap.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace velmora {
namespace {

constexpr std::size_t kBitsPerWord = 64;
constexpr std::size_t kWordsPerBlock = 16;

/// Calls `take` with the offset of each byte of that value, in order.
template <class Take>
void ForEach(char byte, const char* text, std::size_t size, const Take& take) {
  const char* const end = text + size;
  for (const char* at = text; at != end; ++at) {
    at = static_cast<const char*>(std::memchr(at, byte, static_cast<std::size_t>(end - at)));
    if (at == nullptr) return;
    take(static_cast<std::size_t>(at - text));
  }
}

}  // namespace

LineMap::LineMap(const char* text, std::size_t size) : ends_(size / kBitsPerWord + 1) {
  ForEach('\r', text, size, [this](std::size_t i) { MarkEnd(i); });
  ForEach('\n', text, size, [this, text](std::size_t i) {
    if (i == 0 || text[i - 1] != '\r') MarkEnd(i);
  });
  endsBefore_.reserve(ends_.size() / kWordsPerBlock + 1);
  std::int64_t count = 0;
  for (std::size_t word = 0; word < ends_.size(); ++word) {
    if (word % kWordsPerBlock == 0) endsBefore_.push_back(count);
    count += std::popcount(ends_[word]);
  }
}

void LineMap::MarkEnd(std::size_t offset) {
  ends_[offset / kBitsPerWord] |= std::uint64_t{1} << offset % kBitsPerWord;
}

std::int64_t LineMap::LineAt(std::size_t offset) const {
  if (ends_.empty()) return 1;
  offset = std::min(offset, ends_.size() * kBitsPerWord - 1);
  const std::size_t last = offset / kBitsPerWord;
  std::int64_t line = 1 + endsBefore_[last / kWordsPerBlock];
  for (std::size_t word = last - last % kWordsPerBlock; word < last; ++word) {
    line += std::popcount(ends_[word]);
  }
  const std::uint64_t before = (std::uint64_t{1} << offset % kBitsPerWord) - 1;
  return line + std::popcount(ends_[last] & before);
}

}  // namespace velmora
