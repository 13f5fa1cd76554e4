#include "Session/Printable.h"

#include "Base/Utf8.h"
#include "Session/HarmfulCharacters.h"
#include "Session/PrintableAscii.h"

namespace velmora::host {

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
