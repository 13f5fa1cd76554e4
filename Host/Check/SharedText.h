#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace velmora::check {

/// A text that many findings have in common: copies share it. It reads like a std::string.
class SharedText {
 public:
  SharedText() = default;
  SharedText(std::string text) : text_(std::make_shared<const std::string>(std::move(text))) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}

  [[nodiscard]] const std::string& Text() const {
    static const std::string kEmpty;
    return text_ != nullptr ? *text_ : kEmpty;
  }
  operator const std::string&() const { return Text(); }
  operator std::string_view() const { return Text(); }
  [[nodiscard]] bool empty() const { return Text().empty(); }

  friend std::string operator+(const std::string& a, const SharedText& b) { return a + b.Text(); }
  friend std::ostream& operator<<(std::ostream& out, const SharedText& text) {
    return out << text.Text();
  }

 private:
  std::shared_ptr<const std::string> text_;  ///< null for the empty text
};

}  // namespace velmora::check
