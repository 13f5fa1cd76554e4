#pragma once

namespace velmora {

/// True for characters of a project's text that nobody is to be shown as they are: controls, those
/// from 0x80 on too, which some terminals obey; what turns the direction of a line or ends it; and
/// what nobody sees, so that one name may not pass for another. Joiners, which some scripts need,
/// and the soft hyphen, which Shift-JIS has, are none.
[[nodiscard]] constexpr bool IsHarmful(char32_t character) {
  if (character < 0x7F) return character < 0x20;
  if (character < 0xA0) return true;
  if (character < 0x061C) return false;
  return character == 0x061C || character == 0x180E || character == 0x200B || character == 0x200E ||
         character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF ||
         (character >= 0xFFF9 && character <= 0xFFFB) ||
         (character >= 0xE0000 && character <= 0xE007F);
}

}  // namespace velmora
