#pragma once

#include <string_view>

#include "Base/Text.h"

namespace velmora::field {

/// Labels, section names and keywords compare without regard to the case of ASCII letters.
[[nodiscard]] inline bool IsKeyword(std::string_view text, std::string_view keyword) {
  if (text.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (LowerCase(text[i]) != LowerCase(keyword[i])) return false;
  }
  return true;
}

/// True if the text begins with the keyword.
[[nodiscard]] inline bool BeginsWithKeyword(std::string_view text, std::string_view keyword) {
  return IsKeyword(text.substr(0, keyword.size()), keyword);
}

}  // namespace velmora::field
