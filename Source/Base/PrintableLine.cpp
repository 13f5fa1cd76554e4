#include "Base/PrintableLine.h"

#include <cstddef>

#include "Base/HarmfulCharacters.h"
#include "Base/Utf8.h"

namespace velmora {

std::string PrintableLine(std::string_view text) {
  std::string line;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    AppendUtf8(line, IsHarmful(character) ? U' ' : character);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace velmora
