#pragma once

#include <cstdint>
#include <vector>

#include "Model/EventSet.h"

namespace velmora {

/// The way from a table's row to the event that stands there, when the members of a set stand one
/// after the other. A list of row numbers would take four bytes an event and be written anew at
/// each edit; this takes an eighth of a byte, and nothing is looked up where every event is listed.
class RowMap {
 public:
  RowMap() = default;
  explicit RowMap(EventSet listed);

  [[nodiscard]] std::int32_t Rows() const { return rows_; }
  /// The event at a row, 0 to Rows() - 1.
  [[nodiscard]] std::int32_t EventAt(std::int32_t row) const {
    return rows_ == listed_.Events() ? row : Select(row);
  }
  [[nodiscard]] const EventSet& Listed() const { return listed_; }

 private:
  [[nodiscard]] std::int32_t Select(std::int32_t row) const;

  EventSet listed_;
  std::int32_t rows_ = 0;
  std::vector<std::int32_t> rowsBefore_;  ///< before each word of the set; empty if all are listed
  std::vector<std::int32_t> wordOfRow_;   ///< that of every kRowsPerHint-th row, then the last word
};

}  // namespace velmora
