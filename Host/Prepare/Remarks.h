#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "Field/FieldTree.h"

namespace velmora::prepare {

/// A section of constants that the system reads.
[[nodiscard]] bool IsConstants(const field::Section& section);

/// The pieces of a text that no label takes and that stay as comments: its comments, and in the
/// sections of other programs lines without a label. In sections that the system reads such a line
/// is a slip, and a comment among values is what ends its reading.
class Remarks {
 public:
  /// @param tree must outlive this
  explicit Remarks(const field::Tree& tree);

  /// Those that stand in a section or after it, as far as the start of section `next`; the number
  /// of sections stands for the end of the text.
  [[nodiscard]] std::span<const std::string_view> Between(std::size_t section,
                                                          std::size_t next) const;
  /// Those that stand before a section.
  [[nodiscard]] std::span<const std::string_view> Before(std::size_t section) const;

 private:
  [[nodiscard]] std::size_t StartOf(std::size_t section) const;
  [[nodiscard]] bool IsInForeignSection(std::string_view text) const;
  [[nodiscard]] std::span<const std::string_view> In(std::size_t from, std::size_t to) const;

  const field::Tree& tree_;
  std::vector<std::string_view> texts_;  ///< in file order
};

}  // namespace velmora::prepare
