#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace velmora::field {

/// A std::optional for what is large and seldom there: one pointer, and the value elsewhere. The
/// fades of an event took two thirds of its memory, and most events have none.
template <class T>
class Seldom {
 public:
  Seldom() = default;
  Seldom(std::optional<T> value)
      : value_(value ? std::make_unique<T>(*std::move(value)) : nullptr) {}
  Seldom(const Seldom& other)
      : value_(other.value_ != nullptr ? std::make_unique<T>(*other.value_) : nullptr) {}
  Seldom(Seldom&&) noexcept = default;
  Seldom& operator=(Seldom other) noexcept {
    value_ = std::move(other.value_);
    return *this;
  }
  ~Seldom() = default;

  [[nodiscard]] bool has_value() const { return value_ != nullptr; }
  explicit operator bool() const { return has_value(); }
  T& operator*() { return *value_; }
  const T& operator*() const { return *value_; }
  T* operator->() { return value_.get(); }
  const T* operator->() const { return value_.get(); }

 private:
  std::unique_ptr<T> value_;
};

}  // namespace velmora::field
