#include "Session/Printable.h"

#include "Base/Utf8.h"
#include "Session/PrintableAscii.h"

namespace velmora::host {
namespace {

/// Control characters, those from 0x80 on too, which some terminals obey; and what turns the
/// direction of a line or ends it, so that a name may not show as another one.
bool IsHarmful(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x200E ||
         character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string line(WithoutBlankEnd(text));
  if (CopyPrintableAscii(line, line.data())) return line;
  line.clear();
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    AppendUtf8(line, IsHarmful(character) ? U' ' : character);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace velmora::host
