#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace velmora::field {

/// Place of an Entry in Tree::entries.
using EntryPlace = std::uint32_t;

/// One value of a label. `text` is the bytes as they stand in the file; of a quoted value, those
/// between its quotation marks, escapes (byte 0x1B before a mark) included. A value that is not
/// there has a null `text`.
struct Value {
  std::string_view text;
  bool quoted = false;

  /// Something stands there, be it `_`.
  [[nodiscard]] bool IsThere() const { return text.data() != nullptr; }
  /// Something stands there, and it is not `_`, the sign for "not given".
  [[nodiscard]] bool IsGiven() const { return IsThere() && (quoted || text != "_"); }
};

/// One label with its values, which stand in Tree::values.
struct Entry {
  std::string_view label;  ///< without parentheses, as spelled
  std::uint32_t firstValue = 0;
  std::uint32_t valueCount = 0;
  bool counted = false;  ///< written as (LABEL)N, with one value of N - 1 bytes
};

/// One section, whose entries stand in Tree::entries. A section inside a section stands after the
/// one around it, as a section of its own; what the outer one still has after it is a further
/// section of the outer one's name.
struct Section {
  std::string_view name;  ///< without brackets, as spelled; empty for labels outside of sections
  std::uint32_t firstEntry = 0;
  std::uint32_t entryCount = 0;
  bool closed = false;           ///< by its own closing tag
  bool inReferenceList = false;  ///< stands inside a <REF_LIST>
  bool resumed = false;          ///< goes on after a section inside it
};

/// Why a piece of text was passed over, or is none of the values that it stands among.
enum class StrayKind {
  ByteOrderMark,  ///< before everything else
  BeforeTag,      ///< text or blanks before <ADL>
  Word,           ///< a word where a label or a tag belongs, with all that follows it on its line
  Comment,        ///< a comment after a label's values: the system takes its words for values
  WrongTag,       ///< a closing tag that closes nothing, or a section inside a section
  Bracket,        ///< a label, tag or value whose brackets the system reads in another way, such as
                  ///< (two words), (Cut)I, <TAG> with text glued to it, a value (2).wav
  LabelOutside,   ///< a label outside of every section
};

struct Stray {
  std::string_view text;
  StrayKind kind = StrayKind::Word;
  /// Of a comment or bracket among values: the label whose values they are, and how many of them
  /// stand before it.
  std::optional<EntryPlace> entry;
  std::uint32_t valuesBefore = 0;
  /// Entries of the tree that stand before it in the text.
  EntryPlace entriesBefore = 0;
};

/// An ADL's text as its writer meant it: sections, labels and values, nothing read into them yet.
/// Every piece is a view into `file`, which must outlive the tree. Reading never fails.
///
/// How it differs from the system's own scan of the text:
/// - Bytes of 0x80 and more belong to values. A tag ends at its ">", a label at its ")".
/// - A comment is none of a label's values, wherever it stands.
/// - Words where a label belongs are passed over, and the reading goes on at the next label.
/// - A value may begin with "(" or "<" if it cannot be a label or tag.
/// And how it does not: a label's values go on over the following lines, up to the next label or
/// tag, and so do words that a writer put on a line of their own. Labels take as many values as
/// they need; a text without quotation marks ends with its line.
struct Tree {
  std::string_view file;
  std::vector<Section> sections;  ///< in file order, those of reference lists too
  std::vector<Entry> entries;
  std::vector<Value> values;
  std::vector<Stray> strays;               ///< in file order, no more than a million
  std::vector<std::string_view> comments;  ///< without their marks, in file order
  bool hasOpeningTag = false;              ///< there is an <ADL>, wherever it stands
  bool cutOff = false;  ///< the text ends inside a value, a comment, a section or the outer tag
  /// Of a text that is cut off: the label whose values its end cuts, or may cut.
  std::optional<EntryPlace> cutEntry;
  bool cutInsideValue = false;  ///< no blank stands between the last value and the end

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
  /// Where a label begins, at its parenthesis.
  [[nodiscard]] std::size_t OffsetOf(const Entry& entry) const { return OffsetOf(entry.label) - 1; }
  /// The value's bytes as the system sees them, with their quotation marks.
  [[nodiscard]] std::string_view RawText(const Value& value) const;
};

/// Reads a text of any bytes. Takes time and memory in proportion to its length.
[[nodiscard]] Tree ReadTree(std::string_view file);

}  // namespace velmora::field
