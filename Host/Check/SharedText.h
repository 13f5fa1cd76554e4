#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace velmora::check {

/// A text that many findings have in common: copies share it, on several threads too. It reads like
/// a std::string, and takes the room of one pointer: a file of nothing but empty labels has a
/// finding for every two or three of its bytes.
class SharedText {
 public:
  SharedText() = default;
  SharedText(std::string text)
      : shared_(text.empty() ? nullptr : new Shared{.text = std::move(text)}) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}
  SharedText(const SharedText& other) : shared_(other.shared_) {
    if (shared_ != nullptr) shared_->users.fetch_add(1, std::memory_order_relaxed);
  }
  SharedText(SharedText&& other) noexcept : shared_(std::exchange(other.shared_, nullptr)) {}
  SharedText& operator=(SharedText other) noexcept {
    std::swap(shared_, other.shared_);
    return *this;
  }
  ~SharedText() {
    const bool isLast =
        shared_ != nullptr && shared_->users.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (isLast) delete shared_;
  }

  [[nodiscard]] const std::string& Text() const {
    static const std::string kEmpty;
    return shared_ != nullptr ? shared_->text : kEmpty;
  }
  operator const std::string&() const { return Text(); }
  operator std::string_view() const { return Text(); }
  [[nodiscard]] bool empty() const { return shared_ == nullptr; }

  friend bool operator==(const SharedText& a, const SharedText& b) { return a.Text() == b.Text(); }
  friend std::strong_ordering operator<=>(const SharedText& a, const SharedText& b) {
    return a.Text() <=> b.Text();
  }
  friend std::string operator+(const std::string& a, const SharedText& b) { return a + b.Text(); }
  friend std::ostream& operator<<(std::ostream& out, const SharedText& text) {
    return out << text.Text();
  }

 private:
  struct Shared {
    std::string text;
    std::atomic<std::uint32_t> users = 1;
  };

  Shared* shared_ = nullptr;  ///< null for the empty text; gone with its last user
};

}  // namespace velmora::check
