#pragma once

#include <array>

namespace velmora {

class AES31BWF;

/// One source of the SOURCE_INDEX section. Texts point into the project's file block, in raw form.
struct AES31SourceFile {
  std::array<const char*, 6> fValues{};  ///< (F): 0 location, 2 first sample, 3 length
  std::array<const char*, 5> tValues{};  ///< (T)
  /// Opened by ResolveSources, null if not found. The project owns it, also one that was put here
  /// by hand, and deletes it once however many sources hold it.
  AES31BWF* file = nullptr;
};

}  // namespace velmora
