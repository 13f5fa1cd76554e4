#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace velmora::field {

/// One value of a label. `text` is the bytes as they stand in the file; of a quoted value, those
/// between its quotation marks, escapes (byte 0x1B before a mark) included.
struct Value {
  std::string_view text;
  bool quoted = false;
};

/// One label with its values, which stand in Tree::values.
struct Entry {
  std::string_view label;  ///< without parentheses, as spelled
  std::uint32_t firstValue = 0;
  std::uint32_t valueCount = 0;
  bool counted = false;  ///< written as (LABEL)N, with one value of N - 1 bytes
};

/// One section, whose entries stand in Tree::entries. Sections inside sections stand after the one
/// around them, as sections of their own.
struct Section {
  std::string_view name;  ///< without brackets, as spelled
  std::uint32_t firstEntry = 0;
  std::uint32_t entryCount = 0;
  bool closed = false;           ///< by its own closing tag
  bool inReferenceList = false;  ///< stands inside a <REF_LIST>
};

/// Why a piece of text was passed over, or is none of the values that it stands among.
enum class StrayKind {
  ByteOrderMark,  ///< before everything else
  BeforeTag,      ///< text or blanks before <ADL>
  Word,           ///< a word where a label or a tag belongs, with all that follows it on its line
  Comment,        ///< a comment after a label's values: the system takes its words for values
  WrongTag,       ///< a closing tag that closes nothing, or a section inside a section
};

struct Stray {
  std::string_view text;
  StrayKind kind = StrayKind::Word;
};

/// An ADL's text as its writer meant it: sections, labels and values, nothing read into them yet.
/// Every piece is a view into `file`, which must outlive the tree. Reading never fails.
struct Tree {
  std::string_view file;
  std::vector<Section> sections;  ///< in file order, those of reference lists too
  std::vector<Entry> entries;
  std::vector<Value> values;
  std::vector<Stray> strays;               ///< in file order
  std::vector<std::string_view> comments;  ///< without their marks, in file order
  bool hasOpeningTag = false;              ///< there is an <ADL>, wherever it stands
  bool cutOff = false;  ///< the text ends inside a value, a comment, a section or the outer tag

  [[nodiscard]] std::span<const Entry> EntriesOf(const Section& section) const {
    return std::span(entries).subspan(section.firstEntry, section.entryCount);
  }
  [[nodiscard]] std::span<const Value> ValuesOf(const Entry& entry) const {
    return std::span(values).subspan(entry.firstValue, entry.valueCount);
  }
  /// Where a piece of the text begins, in bytes from the start of the file.
  [[nodiscard]] std::size_t OffsetOf(std::string_view piece) const {
    return static_cast<std::size_t>(piece.data() - file.data());
  }
};

/// Reads a text of any bytes. Takes time and memory in proportion to its length.
[[nodiscard]] Tree ReadTree(std::string_view file);

}  // namespace velmora::field
