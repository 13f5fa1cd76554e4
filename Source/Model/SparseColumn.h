#pragma once

#include <cstdint>
#include <map>
#include <utility>

namespace velmora {

/// A column of a table whose rows mostly hold one common value: memory grows with the exceptions,
/// not with the rows, since track numbers may span the whole 32-bit range.
template <class T>
class SparseColumn {
 public:
  void Clear() {
    rows_ = 0;
    exceptions_.clear();
  }
  /// Makes `rows` rows of one value; a negative count makes none.
  void Fill(std::int32_t rows, T common) {
    Clear();
    rows_ = rows > 0 ? rows : 0;
    common_ = std::move(common);
  }
  [[nodiscard]] std::int32_t Rows() const { return rows_; }
  [[nodiscard]] bool Has(std::int32_t row) const { return row >= 0 && row < rows_; }
  /// The value at a row, null for a row that the column does not have.
  [[nodiscard]] const T* At(std::int32_t row) const {
    if (!Has(row)) return nullptr;
    const auto found = exceptions_.find(row);
    return found == exceptions_.end() ? &common_ : &found->second;
  }
  /// Replaces the value at a row that the column has; false for any other. Rows that come in rising
  /// order cost the same however many there are.
  bool Set(std::int32_t row, T value) {
    if (!Has(row)) return false;
    exceptions_.insert_or_assign(exceptions_.end(), row, std::move(value));
    return true;
  }

 private:
  std::int32_t rows_ = 0;
  T common_{};
  std::map<std::int32_t, T> exceptions_;
};

}  // namespace velmora
