#pragma once

#include <string>
#include <vector>

namespace velmora::test::differential {

// The tree of an ADL text as the format's rules have it, found by the plainest means: one byte at a
// time, every step on its own, nothing remembered from one step to the next. It is the measure of
// the scanner that people use, which may be as clever as it likes.

struct SlowEntry {
  const char* label = nullptr;
  std::vector<const char*> values;
};

struct SlowSection {
  const char* name = nullptr;
  std::vector<SlowEntry> entries;
};

struct SlowTree {
  SlowTree() = default;
  SlowTree(const SlowTree&) = delete;
  SlowTree& operator=(const SlowTree&) = delete;

  std::vector<char> block;  ///< the text, cut up, and one NUL: all texts point into it
  bool isAdl = false;       ///< the text begins with the outer tag
  std::vector<SlowSection> sections;
  std::vector<std::vector<SlowSection>> refLists;
  std::vector<const char*> comments;
};

/// Scans a text into an empty tree.
void ScanSlowly(const std::string& text, SlowTree& tree);

/// The number at the start of a text as `atoi` reads it; beyond 32 bits it is the nearest 32-bit
/// number. Null gives 0.
[[nodiscard]] int SlowNumber(const char* text);

}  // namespace velmora::test::differential
