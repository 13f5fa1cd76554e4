#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velmora {

/// A number as a cell shows it, without a string of its own. Digits by hand: std::to_chars needs a
/// newer C++ library than that of the oldest macOS that the view runs on, and snprintf takes 80 ns.
class NumberText {
 public:
  /// Room for a number.
  NumberText() = default;
  /// "%d"
  explicit NumberText(std::int32_t number) { Write(number, 1); }
  /// "%04d\n", the form of an event's number: the line feed belongs to it.
  static NumberText OfEvent(std::int32_t index) {
    NumberText text;
    text.text_[--text.first_] = '\n';
    text.Write(index, 4);
    return text;
  }
  [[nodiscard]] operator std::string_view() const {
    return {text_.data() + first_, text_.size() - first_};
  }

 private:
  /// Before what stands there. The width counts the minus, as that of printf does.
  void Write(std::int32_t number, std::size_t width) {
    const std::size_t end = first_;
    const bool negative = number < 0;
    auto rest = static_cast<std::uint32_t>(number);
    if (negative) rest = 0 - rest;
    while (rest >= 100) {  // two digits for one division: half the time for the number of an event
      WritePair(rest % 100);
      rest /= 100;
    }
    if (rest >= 10) {
      WritePair(rest);
    } else {
      text_[--first_] = static_cast<char>('0' + rest);
    }
    while (end - first_ + (negative ? 1 : 0) < width) text_[--first_] = '0';
    if (negative) text_[--first_] = '-';
  }

  void WritePair(std::uint32_t below100) {
    text_[--first_] = static_cast<char>('0' + below100 % 10);
    text_[--first_] = static_cast<char>('0' + below100 / 10);
  }

  std::array<char, 12> text_{};  ///< "-2147483648" and a line feed
  std::size_t first_ = 12;
};

}  // namespace velmora
