#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Program/CharBuffer.h"
#include "Program/TableRows.h"
#include "Session/Printable.h"

namespace velmora::program {

/// True if the standard stream (1 or 2) is a terminal that understands control sequences.
[[nodiscard]] bool IsTerminal(int descriptor);

/// True if it is one on which colours are wanted: NO_COLOR is unset or empty.
[[nodiscard]] bool ShowsColours(int descriptor);

/// Cells of a terminal that a UTF-8 text takes: East Asian wide characters take two.
[[nodiscard]] std::size_t DisplayWidth(std::string_view utf8);

using host::Printable;

/// Rows of texts with a heading, in aligned columns.
class TextTable : private TableRows {
 public:
  using Column = PrintedColumn;
  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Adds a row; `alarming` ones are red on a terminal. Cells that it lacks are blank, and those
  /// beyond the last column are not shown.
  void Add(std::vector<std::string> cells, bool alarming = false);
  void Append(CharBuffer& out, bool colours) const;
  void Print(std::ostream& out, bool colours) const;

 private:
  struct Row {
    std::vector<std::string> cells;
    bool alarming;
  };
  [[nodiscard]] std::size_t Count() const override { return rows_.size(); }
  void FillCells(std::size_t column, std::size_t first, std::size_t count,
                 PrintedCells& cells) const override {
    for (std::size_t i = 0; i < count; ++i) cells.views[i].text = rows_[first + i].cells[column];
  }
  [[nodiscard]] bool IsAlarming(std::size_t row) const override { return rows_[row].alarming; }

  std::vector<Column> columns_;
  std::vector<Row> rows_;
};

}  // namespace velmora::program
