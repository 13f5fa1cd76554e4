#include "Model/RowMap.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace velmora {
namespace {

/// Eight words where every event is listed: three steps of a binary search.
constexpr std::int32_t kRowsPerHint = 512;

/// The place of a word's n-th bit that is set, n from 0.
std::int32_t PlaceOfBit(std::uint64_t word, std::int32_t n) {
  std::int32_t place = 0;
  for (const unsigned half : {32U, 16U, 8U}) {
    const std::int32_t low = std::popcount(word & ((std::uint64_t{1} << half) - 1));
    if (n < low) continue;
    n -= low;
    word >>= half;
    place += static_cast<std::int32_t>(half);
  }
  for (; n > 0; --n) word &= word - 1;
  return place + std::countr_zero(word);
}

}  // namespace

RowMap::RowMap(EventSet listed) : listed_(std::move(listed)) {
  const std::vector<std::uint64_t>& words = listed_.Words();
  for (const std::uint64_t word : words) rows_ += std::popcount(word);
  if (rows_ == listed_.Events()) return;
  rowsBefore_.reserve(words.size());
  std::int32_t rows = 0;
  for (const std::uint64_t word : words) {
    rowsBefore_.push_back(rows);
    rows += std::popcount(word);
    const auto at = static_cast<std::int32_t>(rowsBefore_.size()) - 1;
    while (std::cmp_less(wordOfRow_.size() * kRowsPerHint, rows)) wordOfRow_.push_back(at);
  }
  wordOfRow_.push_back(static_cast<std::int32_t>(words.size()) - 1);
}

std::int32_t RowMap::Select(std::int32_t row) const {
  const auto hint = static_cast<std::size_t>(row / kRowsPerHint);
  const auto first = rowsBefore_.begin() + wordOfRow_[hint];
  const auto last = rowsBefore_.begin() + wordOfRow_[hint + 1] + 1;
  const auto found = std::upper_bound(first, last, row) - 1;
  const auto word = static_cast<std::int32_t>(found - rowsBefore_.begin());
  return word * EventSet::kWordBits +
         PlaceOfBit(listed_.Words()[static_cast<std::size_t>(word)], row - *found);
}

}  // namespace velmora
