#pragma once

#include <string>
#include <string_view>

namespace velmora::prepare {

/// Text as Shift-JIS.
struct ShiftJisText {
  std::string bytes;
  bool whole = true;  ///< every character is there; false: a stand-in took the place of some
};

/// A UTF-8 text in Shift-JIS, such that ShiftJisToUtf8 reads it back the same. What Shift-JIS
/// cannot hold becomes `standIn`; accents that stand as characters of their own join their letter
/// or go. NUL and other control characters become blanks: they would end or hide what follows.
[[nodiscard]] ShiftJisText ToShiftJis(std::string_view utf8, char standIn);

}  // namespace velmora::prepare
