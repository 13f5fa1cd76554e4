#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "Field/FieldTree.h"

namespace velmora::field {

// Which value of a label means what. Writers leave values out and write names with blanks but
// without quotation marks, so that the values after them do not stand where they should: where
// times stand tells which value is which. What is not there has Value::IsThere() false.

/// The values of a (Cut), AES31-3.
struct CutTexts {
  Value sourceType;
  Value index;
  Value sourceChannels;
  Value destinationChannels;
  Value sourceIn;
  Value destinationIn;
  Value destinationOut;
  Value status;
};
[[nodiscard]] CutTexts ReadCutTexts(const Tree& tree, const Entry& entry);

/// The values of an (F), AES31-3.
struct SourceTexts {
  Value location;
  Value reference;
  Value start;
  Value length;
  Value name;
  Value last;  ///< the sixth value
};
[[nodiscard]] SourceTexts ReadSourceTexts(const Tree& tree, const Entry& entry);
/// True for one letter or `_`, without quotation marks: what an (F) ends with. Anything else on the
/// line of a name that has none itself counts as a part of the name.
[[nodiscard]] bool IsMark(const Value& value);

/// The values of an (Infade) or (Outfade), AES31-3.
struct FadeTexts {
  Value length;
  Value shape;
  std::array<Value, 3> levels;  ///< at 25, 50 and 75 %
  Value renderedType;
  Value renderedIndex;
  Value renderedIn;
};
[[nodiscard]] FadeTexts ReadFadeTexts(const Tree& tree, const Entry& entry);

/// The values of a (Gain). A lone value is the level.
struct GainTexts {
  Value channels;
  Value level;
};
[[nodiscard]] GainTexts ReadGainTexts(const Tree& tree, const Entry& entry);

/// A text that begins with the value at that place: a quoted one is that value alone, another one
/// takes in the further values of its line, with the blanks between them.
[[nodiscard]] Value ReadLineText(const Tree& tree, const Entry& entry, std::size_t first);

/// The name that a (Rem) NAME gives, on its line or the next; none for any other remark.
[[nodiscard]] Value ReadNameText(const Tree& tree, const Entry& entry);

/// The value at that place, or one that is not there.
[[nodiscard]] Value ValueAt(const Tree& tree, const Entry& entry, std::size_t place);

}  // namespace velmora::field
