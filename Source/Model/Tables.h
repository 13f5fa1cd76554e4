#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "Model/NumberText.h"
#include "Model/ViewModel.h"

namespace velmora {

// The four tables as functions of the model. Tables and columns go by the identifiers that the view
// gives them; a row, column or table that is not there has no value, and an edit of it is dropped.

struct CellValue {
  enum Kind { None, Text, Integer } kind = None;
  std::string text;
  std::int32_t integer = 0;
};

/// A cell without a string of its own: a view of what the model has, or of the digits here.
struct CellView {
  CellView() = default;
  CellView(const CellView&) = delete;  // a copy's text would be that of the other's digits
  CellView& operator=(const CellView&) = delete;

  CellValue::Kind kind = CellValue::None;
  std::string_view text;  ///< an integer in digits; valid until the model changes
  NumberText digits;
};

enum class Background { Untouched, White, Stripe, Red };

struct CellStyle {
  Background background = Background::Untouched;
  int alignment = -1;   ///< 0 left, 1 right, -1 untouched
  double fontSize = 0;  ///< points, 0 untouched
};

/// How the bytes of a column's texts are to be read.
enum class ColumnText {
  Utf8,
  Project,  ///< as they stand in the file: Shift-JIS
};

struct TableColumn {
  std::string_view identifier;
  ColumnText text;
  int viewPosition;  ///< from 0, counted from the left of the view's table
  CellValue (*value)(const ViewModel& model, std::int32_t row);
  /// Puts what `value` tells of the rows from `first` on into `cells`, as many as there are. Some
  /// dozens at a time cost a few nanoseconds each, also where the processor has to wait for the
  /// events: it waits for several of them at once. Any number of threads may ask at the same time.
  void (*fill)(const ViewModel& model, std::int32_t first, std::span<CellView> cells);
};

struct Table {
  std::string_view identifier;
  std::span<const TableColumn> columns;
  std::int32_t (*rows)(const ViewModel& model);
  double rowHeight;  ///< points
  bool isSelectable;
};

/// The four tables with all of their columns. Programs that print the tables go by this list.
[[nodiscard]] std::span<const Table> Tables();

/// A table's columns; none for a table that is not there.
[[nodiscard]] std::span<const TableColumn> Columns(std::string_view table);

/// A table's column, null for one that is not there.
[[nodiscard]] const TableColumn* FindColumn(std::string_view table, std::string_view column);

[[nodiscard]] std::int32_t NumberOfRows(const ViewModel& model, std::string_view table);
[[nodiscard]] CellValue ObjectValue(const ViewModel& model, std::string_view table,
                                    std::string_view column, std::int32_t row);
/// Only the check box columns "Space" take a value; above 0 is on.
void SetObjectValue(ViewModel& model, std::string_view table, std::string_view column,
                    std::int32_t row, std::int32_t value);
[[nodiscard]] CellStyle Style(const ViewModel& model, std::string_view table,
                              std::string_view column, std::int32_t row);
[[nodiscard]] double HeightOfRow(std::string_view table);
[[nodiscard]] bool ShouldSelectRow(std::string_view table);

}  // namespace velmora
