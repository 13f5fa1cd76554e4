#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Program/BlockOutput.h"
#include "Program/CharBuffer.h"
#include "Program/TableRows.h"

namespace velmora::program {

/// Prints a table in aligned columns, with a heading. Goes over the cells twice, first for the
/// widths of the columns and then to print: no text of a cell outlives some dozens of others. A row
/// whose cells are plain ASCII, as almost all are, begins as blanks, and each cell is copied to its
/// place: a row of the event table takes some 0.1 µs of one processor, measuring and all, where it
/// took 0.4 when each cell was asked for by itself and found its place after the one before it.
class RowPrinter {
 public:
  /// `columns` and `rows` have to outlive the printer.
  RowPrinter(const std::vector<PrintedColumn>& columns, const TableRows& rows, bool colours);

  /// The whole table, formatted on all processors if it is large.
  void Print(BlockOutput& out);
  /// The same at the end of a text, by the caller's thread alone.
  void Append(CharBuffer& out);

 private:
  using Widths = std::vector<std::size_t>;  ///< one for each column
  struct Lines;
  void Measure(std::size_t begin, std::size_t end, Widths& widths) const;
  void AppendHeading(CharBuffer& out) const;
  void AppendRows(CharBuffer& out, std::size_t begin, std::size_t end) const;
  void AppendRow(CharBuffer& out, const Lines& lines, std::size_t row) const;

  const std::vector<PrintedColumn>& columns_;
  const TableRows& rows_;
  const bool colours_;
  Widths widths_;
};

}  // namespace velmora::program
