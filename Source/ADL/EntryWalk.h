#pragma once

#include <array>
#include <cstddef>

namespace velmora {

/// An entry with the values that readers ask for.
struct EntryLine {
  /// No label has a meaning for more.
  static constexpr std::size_t kTexts = 8;

  const char* label = nullptr;
  std::size_t valueCount = 0;
  std::array<const char*, kTexts> texts{};  ///< the first values; null for those that it lacks
};

/// Walks over entries of a block that the scanner has cut, and finds them as the scanner did. That
/// works as long as nothing was written into them since.
class EntryWalk {
 public:
  EntryWalk() : EntryWalk(nullptr, nullptr) {}
  /// @param label the first entry's; the block ends at `blockEnd`
  EntryWalk(const char* label, const char* blockEnd) : at_(label), end_(blockEnd) {}

  /// Reads the entry whose label begins here and moves to the next label.
  void Read(EntryLine& line);

 private:
  const char* at_;
  const char* end_;
};

/// The byte after a quoted value, which begins at `quote`; the block's end if it is not closed. A
/// quotation mark after an ESC byte stands inside the value.
[[nodiscard]] const char* QuotedValueEnd(const char* quote, const char* blockEnd);

/// Where the next value begins, if there is one, in a block that the scanner has cut.
[[nodiscard]] const char* NextScannedValue(const char* value);

}  // namespace velmora
