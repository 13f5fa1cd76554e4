#include "Field/TextPlaces.h"

#include <algorithm>

namespace velmora::field {
namespace {

constexpr std::size_t kBlock = 1024;

bool EndsLine(char c) {
  return c == '\n' || c == '\r';
}

}  // namespace

TextPlaces::TextPlaces(std::string_view text) : text_(text), lines_(text.data(), text.size()) {
  lineStarts_.reserve(text.size() / kBlock + 1);
  std::size_t start = 0;
  for (std::size_t at = 0; at <= text.size(); ++at) {
    if (at % kBlock == 0) lineStarts_.push_back(start);
    if (at < text.size() && EndsLine(text[at])) start = at + 1;
  }
}

TextPlace TextPlaces::At(std::size_t offset) const {
  offset = std::min(offset, text_.size());
  const std::size_t block = offset / kBlock;
  std::size_t start = offset;
  while (start > block * kBlock && !EndsLine(text_[start - 1])) --start;
  if (start == block * kBlock) start = lineStarts_[block];
  return {lines_.LineAt(offset), static_cast<std::int64_t>(offset - start) + 1};
}

}  // namespace velmora::field
