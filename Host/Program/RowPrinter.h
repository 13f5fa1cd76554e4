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
/// widths of the columns and then to print: no text of a cell outlives the next one, and a cell of
/// plain ASCII, as almost all are, is copied eight bytes at a time. A row of the event table takes
/// some 0.2 µs of one processor, where texts of their own for its cells took 2 µs.
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
  void Measure(std::size_t begin, std::size_t end, Widths& widths) const;
  void AppendHeading(CharBuffer& out) const;
  void AppendRows(CharBuffer& out, std::size_t begin, std::size_t end) const;

  const std::vector<PrintedColumn>& columns_;
  const TableRows& rows_;
  const bool colours_;
  Widths widths_;
};

}  // namespace velmora::program
