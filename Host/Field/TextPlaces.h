#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ADL/LineMap.h"

namespace velmora::field {

/// Line and column of a byte, both from 1; the column counts bytes.
struct TextPlace {
  std::int64_t line = 1;
  std::int64_t column = 1;
  bool operator==(const TextPlace&) const = default;
};

/// Tells the places of bytes in a text, which must outlive it. A question costs the same wherever
/// the byte stands and however long its line is.
class TextPlaces {
 public:
  explicit TextPlaces(std::string_view text);
  [[nodiscard]] TextPlace At(std::size_t offset) const;

 private:
  std::string_view text_;
  LineMap lines_;
  std::vector<std::size_t> lineStarts_;  ///< of the line on which each block of the text begins
};

}  // namespace velmora::field
