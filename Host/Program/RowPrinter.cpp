#include "Program/RowPrinter.h"

#include <algorithm>
#include <mutex>

#include "Program/TextTable.h"
#include "Program/WorkBlocks.h"
#include "Session/PrintableAscii.h"

namespace velmora::program {
namespace {

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kPlain = "\x1b[0m";

/// Some 150 KiB of event rows: a block that is written at once is still in the cache.
constexpr std::size_t kRowsPerBlock = 2048;
static_assert(kRowsPerBlock % PrintedCells::kMost == 0);

/// A line that grows cell by cell. Blanks are put off until something follows them, so that no line
/// ends in any.
class Line {
 public:
  explicit Line(CharBuffer& out) : out_(out) {}

  /// @param cell  any bytes
  /// @param width what the column has room for, in cells of a terminal
  void Add(std::string_view cell, Align align, std::size_t width) {
    blanks_ += kGap;
    const std::string harmless = Printable(cell);
    const std::size_t padding = width - DisplayWidth(harmless);
    if (align == Align::Right) blanks_ += padding;
    if (!harmless.empty()) {
      out_.AppendBlanks(blanks_);
      out_.Append(harmless);
      blanks_ = 0;
    }
    if (align == Align::Left) blanks_ += padding;
  }

  static constexpr std::size_t kGap = 2;

 private:
  CharBuffer& out_;
  std::size_t blanks_ = 0;
};

/// Makes a column wide enough for a cell. A text is never wider than it has bytes.
void Widen(std::size_t& width, std::string_view cell) {
  if (cell.size() <= width) return;
  cell = host::WithoutBlankEnd(cell);
  if (cell.size() > width) width = std::max(width, DisplayWidth(Printable(cell)));
}

}  // namespace

RowPrinter::RowPrinter(const std::vector<PrintedColumn>& columns, const TableRows& rows,
                       bool colours)
    : columns_(columns), rows_(rows), colours_(colours) {
  for (const PrintedColumn& column : columns_) widths_.push_back(DisplayWidth(column.heading));
}

/// Where the cells of a line stand, as long as each has as many bytes as it takes on a terminal.
struct RowPrinter::Lines {
  Lines(const std::vector<PrintedColumn>& columns, const Widths& widths) : cells(columns.size()) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      length += Line::kGap;
      places.push_back({length, widths[i], columns[i].align == Align::Right});
      length += widths[i];
    }
  }

  /// Puts the cells of a row into a line of `length` blanks. Null if a cell is more than printable
  /// ASCII; otherwise the line's end, after which no blanks are left.
  char* Put(std::size_t row, char* line) const {
    char* end = line;
    for (std::size_t i = 0; i < places.size(); ++i) {
      const std::string_view text = host::WithoutBlankEnd(cells[i].views[row].text);
      const Place& place = places[i];
      if (text.size() > place.width) return nullptr;
      if (text.empty()) continue;
      char* const at = line + place.begin + (place.isRight ? place.width - text.size() : 0);
      if (!host::CopyPrintableAscii(text, at)) return nullptr;
      end = at + text.size();
    }
    return end;
  }

  struct Place {
    std::size_t begin;
    std::size_t width;
    bool isRight;
  };
  std::vector<PrintedCells> cells;  ///< by column
  std::vector<Place> places;        ///< by column
  std::size_t length = 0;
};

void RowPrinter::Measure(std::size_t begin, std::size_t end, Widths& widths) const {
  PrintedCells cells;
  for (std::size_t first = begin; first < end; first += PrintedCells::kMost) {
    const std::size_t count = std::min(PrintedCells::kMost, end - first);
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      rows_.FillCells(column, first, count, cells);
      for (std::size_t i = 0; i < count; ++i) Widen(widths[column], cells.views[i].text);
    }
  }
}

void RowPrinter::AppendHeading(CharBuffer& out) const {
  if (colours_) out.Append(kBold);
  Line line(out);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    line.Add(columns_[i].heading, columns_[i].align, widths_[i]);
  }
  if (colours_) out.Append(kPlain);
  out.Append('\n');
}

void RowPrinter::AppendRows(CharBuffer& out, std::size_t begin, std::size_t end) const {
  Lines lines(columns_, widths_);
  for (std::size_t first = begin; first < end; first += PrintedCells::kMost) {
    const std::size_t count = std::min(PrintedCells::kMost, end - first);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      rows_.FillCells(i, first, count, lines.cells[i]);
    }
    for (std::size_t i = 0; i < count; ++i) {
      const bool red = colours_ && rows_.IsAlarming(first + i);
      if (red) out.Append(kRed);
      AppendRow(out, lines, i);
      if (red) out.Append(kPlain);
      out.Append('\n');
    }
  }
}

void RowPrinter::AppendRow(CharBuffer& out, const Lines& lines, std::size_t row) const {
  char* const line = out.Room(lines.length + 1);
  std::memset(line, ' ', lines.length);
  if (char* const end = lines.Put(row, line)) {
    out.Take(end);
    return;
  }
  Line grown(out);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    grown.Add(lines.cells[i].views[row].text, columns_[i].align, widths_[i]);
  }
}

void RowPrinter::Append(CharBuffer& out) {
  Measure(0, rows_.Count(), widths_);
  AppendHeading(out);
  AppendRows(out, 0, rows_.Count());
}

void RowPrinter::Print(BlockOutput& out) {
  std::mutex mutex;
  WorkInBlocks(rows_.Count(), kRowsPerBlock, [&](std::size_t begin, std::size_t end) {
    std::unique_lock lock(mutex);
    Widths widths = widths_;  // what is not wider than another block's is not looked at
    lock.unlock();
    Measure(begin, end, widths);
    lock.lock();
    for (std::size_t i = 0; i < widths.size(); ++i) widths_[i] = std::max(widths_[i], widths[i]);
  });
  AppendHeading(out.Text());
  out.InBlocks(rows_.Count(), kRowsPerBlock,
               [this](CharBuffer& text, std::size_t begin, std::size_t end) {
                 AppendRows(text, begin, end);
               });
}

}  // namespace velmora::program
