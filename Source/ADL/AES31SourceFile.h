#pragma once

#include <array>

namespace velmora {

class AES31BWF;

/// One source of the SOURCE_INDEX section. Texts point into the project's file block, in raw form.
struct AES31SourceFile {
  std::array<const char*, 6> fValues{};  ///< (F): 0 location, 2 first sample, 3 length
  std::array<const char*, 5> tValues{};  ///< (T)
  AES31BWF* file = nullptr;              ///< opened by ResolveSources, null if not found; the
                                         ///< project owns it
};

}  // namespace velmora
