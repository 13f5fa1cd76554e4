#include "Program/TextTable.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <utility>

#include "Base/Utf8.h"
#include "Program/RowPrinter.h"
#include "Session/PrintableAscii.h"

namespace velmora::program {
namespace {

/// East Asian wide and full-width characters (Unicode Standard Annex 11), by their large blocks.
bool IsWide(char32_t character) {
  constexpr std::pair<char32_t, char32_t> kWide[] = {
      {0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0x33FF}, {0x3400, 0x4DBF},
      {0x4E00, 0x9FFF}, {0xA000, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
      {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x20000, 0x3FFFD},
  };
  return std::any_of(std::begin(kWide), std::end(kWide), [character](const auto& block) {
    return block.first <= character && character <= block.second;
  });
}

}  // namespace

bool IsTerminal(int descriptor) {
  const char* const terminal = std::getenv("TERM");
  return isatty(descriptor) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool ShowsColours(int descriptor) {
  const char* const noColour = std::getenv("NO_COLOR");
  return IsTerminal(descriptor) && (noColour == nullptr || *noColour == '\0');
}

std::size_t DisplayWidth(std::string_view utf8) {
  if (host::IsPrintableAscii(utf8)) return utf8.size();
  std::size_t width = 0;
  for (std::size_t at = 0; at < utf8.size();) width += IsWide(NextCharacter(utf8, at)) ? 2 : 1;
  return width;
}

void TextTable::Add(std::vector<std::string> cells, bool alarming) {
  cells.resize(columns_.size());
  rows_.push_back({std::move(cells), alarming});
}

void TextTable::Append(CharBuffer& out, bool colours) const {
  RowPrinter(columns_, *this, colours).Append(out);
}

void TextTable::Print(std::ostream& out, bool colours) const {
  CharBuffer text;
  Append(text, colours);
  out << text.Text();
}

}  // namespace velmora::program
