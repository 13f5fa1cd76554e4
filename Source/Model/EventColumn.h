#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "Model/EventRows.h"

namespace velmora {

/// A column of the event table that reads like a constant vector and holds nothing: `Count` and
/// `Cell` of EventRows answer how many cells it has and what one says. Texts come as strings of
/// their own; `View` gets along without.
template <auto Count, auto Cell>
class EventColumn {
  using CellType = decltype((std::declval<const EventRows&>().*Cell)(0));
  static constexpr bool kIsText = !std::is_arithmetic_v<CellType>;

 public:
  using value_type = std::conditional_t<kIsText, std::string, CellType>;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using const_reference = value_type;
  using reference = value_type;
  class const_iterator;
  using iterator = const_iterator;

  explicit EventColumn(std::shared_ptr<const EventRows> rows) : rows_(std::move(rows)) {}
  // No moves: a column that was moved from would have no rows to ask.
  EventColumn(const EventColumn&) = default;
  EventColumn& operator=(const EventColumn&) = default;
  ~EventColumn() = default;

  [[nodiscard]] const std::shared_ptr<const EventRows>& Rows() const { return rows_; }

  [[nodiscard]] size_type size() const { return static_cast<size_type>(((*rows_).*Count)()); }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] value_type operator[](size_type at) const { return value_type(View(at)); }
  [[nodiscard]] value_type at(size_type at) const {
    if (at >= size()) throw std::out_of_range("EventColumn::at");
    return (*this)[at];
  }
  [[nodiscard]] value_type front() const { return (*this)[0]; }
  [[nodiscard]] value_type back() const { return (*this)[size() - 1]; }
  [[nodiscard]] const_iterator begin() const { return {*this, 0}; }
  [[nodiscard]] const_iterator end() const { return {*this, static_cast<difference_type>(size())}; }
  [[nodiscard]] const_iterator cbegin() const { return begin(); }
  [[nodiscard]] const_iterator cend() const { return end(); }

  /// A text as the rows have it, valid as long as they and the project; any other cell as it is.
  [[nodiscard]] auto View(size_type at) const {
    return ((*rows_).*Cell)(static_cast<std::int32_t>(at));
  }

  [[nodiscard]] operator std::vector<value_type>() const {  // NOLINT(google-explicit-constructor)
    return {begin(), end()};
  }
  [[nodiscard]] friend bool operator==(const EventColumn& a, const std::vector<value_type>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
  }
  [[nodiscard]] friend bool operator==(const EventColumn& a, const EventColumn& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
  }

 private:
  std::shared_ptr<const EventRows> rows_;
};

template <auto Count, auto Cell>
class EventColumn<Count, Cell>::const_iterator {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = EventColumn::value_type;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = value_type;

  const_iterator() = default;
  const_iterator(const EventColumn& column, difference_type at) : column_(&column), at_(at) {}

  [[nodiscard]] reference operator*() const { return (*column_)[static_cast<std::size_t>(at_)]; }
  [[nodiscard]] reference operator[](difference_type n) const { return *(*this + n); }
  const_iterator& operator+=(difference_type n) {
    at_ += n;
    return *this;
  }
  const_iterator& operator-=(difference_type n) { return *this += -n; }
  const_iterator& operator++() { return *this += 1; }
  const_iterator& operator--() { return *this += -1; }
  const_iterator operator++(int) { return std::exchange(*this, *this + 1); }
  const_iterator operator--(int) { return std::exchange(*this, *this - 1); }
  [[nodiscard]] friend const_iterator operator+(const_iterator a, difference_type n) {
    return a += n;
  }
  [[nodiscard]] friend const_iterator operator+(difference_type n, const_iterator a) {
    return a += n;
  }
  [[nodiscard]] friend const_iterator operator-(const_iterator a, difference_type n) {
    return a -= n;
  }
  [[nodiscard]] friend difference_type operator-(const const_iterator& a, const const_iterator& b) {
    return a.at_ - b.at_;
  }
  [[nodiscard]] friend bool operator==(const const_iterator& a, const const_iterator& b) {
    return a.at_ == b.at_;
  }
  [[nodiscard]] friend auto operator<=>(const const_iterator& a, const const_iterator& b) {
    return a.at_ <=> b.at_;
  }

 private:
  const EventColumn* column_ = nullptr;
  difference_type at_ = 0;
};

}  // namespace velmora
