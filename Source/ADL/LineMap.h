#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora {

/// Tells the line on which a byte of a text stands, also after the text has been cut up in place.
/// Lines end with LF, CR LF or CR.
///
/// It holds one bit for each byte of the text, so its size does not grow with the number of lines,
/// and a question costs the same wherever the byte stands.
class LineMap {
 public:
  LineMap() = default;
  LineMap(const char* text, std::size_t size);

  /// The line, from 1, of the byte at `offset`; an offset past the end stands on the last line.
  [[nodiscard]] std::int64_t LineAt(std::size_t offset) const;

 private:
  void MarkEnd(std::size_t offset);

  std::vector<std::uint64_t> ends_;       ///< a bit for each byte that ends a line
  std::vector<std::int64_t> endsBefore_;  ///< line ends before each block of words
};

}  // namespace velmora
