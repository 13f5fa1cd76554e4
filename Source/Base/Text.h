#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora {

[[nodiscard]] constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Texts of a project compare without regard to the case of ASCII letters, in any locale.
/// A null text equals nothing.
[[nodiscard]] inline bool EqualsIgnoringCase(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return false;
  while (*a != '\0' && LowerCase(*a) == LowerCase(*b)) {
    ++a;
    ++b;
  }
  return LowerCase(*a) == LowerCase(*b);
}

/// `atoi`, but with numbers beyond 32 bits counting as the nearest; null counts as 0.
[[nodiscard]] std::int32_t ToInt32(const char* text);

/// `atof` with a decimal point in every locale; null counts as 0.0.
[[nodiscard]] double ToDouble(const char* text);

/// The text, or "(null)" for a null one: what a line for people shows of it.
[[nodiscard]] constexpr const char* TextOrNull(const char* text) {
  return text != nullptr ? text : "(null)";
}

/// "1 region", "2 regions".
[[nodiscard]] std::string Counted(std::size_t count, const std::string& noun);

}  // namespace velmora
