#include "Program/TextTable.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <utility>

#include "Base/Utf8.h"

namespace velmora::program {
namespace {

constexpr const char* kBold = "\x1b[1m";
constexpr const char* kRed = "\x1b[31m";
constexpr const char* kPlain = "\x1b[0m";

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
  std::size_t width = 0;
  for (std::size_t at = 0; at < utf8.size();) width += IsWide(NextCharacter(utf8, at)) ? 2 : 1;
  return width;
}

void TextTable::Add(std::vector<std::string> cells, bool alarming) {
  for (std::string& cell : cells) cell = Printable(cell);
  rows_.push_back({std::move(cells), alarming});
}

std::vector<std::size_t> TextTable::Widths() const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = DisplayWidth(columns_[i].heading);
    for (const Row& row : rows_) width = std::max(width, DisplayWidth(row.cells[i]));
    widths.push_back(width);
  }
  return widths;
}

std::string TextTable::Line(const std::vector<std::string>& cells,
                            const std::vector<std::size_t>& widths) const {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string padding(widths[i] - DisplayWidth(cells[i]), ' ');
    line += "  ";
    line += columns_[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

void TextTable::Print(std::ostream& out, bool colours) const {
  const std::vector<std::size_t> widths = Widths();
  std::vector<std::string> headings;
  for (const Column& column : columns_) headings.push_back(column.heading);
  out << (colours ? kBold : "") << Line(headings, widths) << (colours ? kPlain : "") << '\n';
  for (const Row& row : rows_) {
    const bool red = colours && row.alarming;
    out << (red ? kRed : "") << Line(row.cells, widths) << (red ? kPlain : "") << '\n';
  }
}

}  // namespace velmora::program
