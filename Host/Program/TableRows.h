#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "Model/Tables.h"

namespace velmora::program {

enum class Align { Left, Right };

struct PrintedColumn {
  std::string heading;
  Align align = Align::Left;
};

/// Cells of one column in rows that follow each other. Of each the printer reads the text alone.
struct PrintedCells {
  static constexpr std::size_t kMost = 64;  ///< what eight columns take fits the first cache

  /// Makes a text of its own that of a cell.
  void Set(std::size_t at, std::string text) {
    texts[at] = std::move(text);
    views[at].text = texts[at];
  }

  std::array<CellView, kMost> views;
  std::array<std::string, kMost> texts;  ///< room for those that stand nowhere else
};

/// The rows of a table that is printed. They are asked for their cells, some of them twice and from
/// several threads at once, so that a table of a million rows need not stand in memory as texts.
class TableRows {
 public:
  virtual ~TableRows() = default;
  [[nodiscard]] virtual std::size_t Count() const = 0;
  /// Puts the texts of `count` rows from `first` on into `cells`. They may be any bytes: the
  /// printer makes them harmless.
  virtual void FillCells(std::size_t column, std::size_t first, std::size_t count,
                         PrintedCells& cells) const = 0;
  /// True for a row that is red on a terminal.
  [[nodiscard]] virtual bool IsAlarming(std::size_t row) const = 0;

 protected:
  TableRows() = default;
  TableRows(const TableRows&) = default;
  TableRows& operator=(const TableRows&) = default;
};

}  // namespace velmora::program
