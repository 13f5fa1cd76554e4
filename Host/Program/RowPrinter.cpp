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

/// Some 64 KiB of event rows: what a pipe takes at once.
constexpr std::size_t kRowsPerBlock = 1024;

/// A line that grows cell by cell. Blanks are put off until something follows them, so that no line
/// ends in any.
class Line {
 public:
  explicit Line(CharBuffer& out) : out_(out) {}

  /// @param cell  any bytes
  /// @param width what the column has room for, in cells of a terminal
  void Add(std::string_view cell, Align align, std::size_t width) {
    constexpr std::size_t kGap = 2;
    blanks_ += kGap;
    cell = host::WithoutBlankEnd(cell);
    if (!AddPlain(cell, align, width)) AddMended(Printable(cell), align, width);
  }

 private:
  /// False if there is more than printable ASCII in the cell, and nothing was added.
  bool AddPlain(std::string_view cell, Align align, std::size_t width) {
    if (cell.empty()) {
      blanks_ += width;
      return true;
    }
    if (cell.size() > width) return false;
    const std::size_t padding = width - cell.size();
    const std::size_t blanks = blanks_ + (align == Align::Right ? padding : 0);
    char* const room = out_.Room(std::max(blanks, kFewBlanks) + cell.size());
    std::memset(room, ' ', kFewBlanks);
    if (blanks > kFewBlanks) std::memset(room, ' ', blanks);
    if (!host::CopyPrintableAscii(cell, room + blanks)) return false;
    out_.Take(room + blanks + cell.size());
    blanks_ = align == Align::Right ? 0 : padding;
    return true;
  }

  void AddMended(const std::string& cell, Align align, std::size_t width) {
    if (cell.empty()) {
      blanks_ += width;
      return;
    }
    const std::size_t padding = width - DisplayWidth(cell);
    if (align == Align::Right) blanks_ += padding;
    char* const room = out_.Room(blanks_ + cell.size());
    std::memset(room, ' ', blanks_);
    std::copy(cell.begin(), cell.end(), room + blanks_);
    out_.Take(room + blanks_ + cell.size());
    blanks_ = align == Align::Right ? 0 : padding;
  }

  /// Stored without a call, however many are wanted.
  static constexpr std::size_t kFewBlanks = 16;
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

void RowPrinter::Measure(std::size_t begin, std::size_t end, Widths& widths) const {
  std::string cell;
  for (std::size_t row = begin; row < end; ++row) {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      cell.clear();
      rows_.FillCell(row, column, cell);
      Widen(widths[column], cell);
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
  std::string cell;
  for (std::size_t row = begin; row < end; ++row) {
    const bool red = colours_ && rows_.IsAlarming(row);
    if (red) out.Append(kRed);
    Line line(out);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      cell.clear();
      rows_.FillCell(row, i, cell);
      line.Add(cell, columns_[i].align, widths_[i]);
    }
    if (red) out.Append(kPlain);
    out.Append('\n');
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
