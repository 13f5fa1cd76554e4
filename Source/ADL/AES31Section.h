#pragma once

#include <vector>

namespace velmora {

/// A label with its values. All texts point into the project's file block; a quoted value keeps its
/// quotation marks.
struct AES31Entry {
  const char* label = nullptr;      ///< the text between the parentheses
  std::vector<const char*> values;  ///< in file order
};

/// A tagged section. Lines mean nothing to it: an entry runs on to the next label or tag.
struct AES31Section {
  const char* name = nullptr;       ///< the tag without its angle brackets
  std::vector<AES31Entry> entries;  ///< in file order
};

}  // namespace velmora
