#pragma once

#include <cstddef>
#include <string>

namespace velmora::program {

enum class Align { Left, Right };

struct PrintedColumn {
  std::string heading;
  Align align = Align::Left;
};

/// The rows of a table that is printed. They are asked for their cells, some of them twice and from
/// several threads at once, so that a table of a million rows need not stand in memory as texts.
class TableRows {
 public:
  virtual ~TableRows() = default;
  [[nodiscard]] virtual std::size_t Count() const = 0;
  /// Puts a cell's text into `text`, which is empty. It may be any bytes: the printer makes them
  /// harmless.
  virtual void FillCell(std::size_t row, std::size_t column, std::string& text) const = 0;
  /// True for a row that is red on a terminal.
  [[nodiscard]] virtual bool IsAlarming(std::size_t row) const = 0;

 protected:
  TableRows() = default;
  TableRows(const TableRows&) = default;
  TableRows& operator=(const TableRows&) = default;
};

}  // namespace velmora::program
