#include "Field/Location.h"

#include <algorithm>
#include <optional>

#include "Field/Keyword.h"

namespace velmora::field {
namespace {

std::optional<int> HexDigit(char c) {
  c = LowerCase(c);
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return std::nullopt;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!BeginsWithKeyword(text, prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool HasDrive(std::string_view path) {
  const char letter = path.empty() ? ' ' : LowerCase(path[0]);
  return path.size() > 1 && path[1] == ':' && letter >= 'a' && letter <= 'z';
}

/// Without scheme and host.
std::string_view PathPart(std::string_view location) {
  TakePrefix(location, "URL:");
  if (TakePrefix(location, "file:") && location.substr(0, 2) == "//") {
    location.remove_prefix(2);
    const std::size_t hostEnd = location.find_first_of("/\\");
    if (hostEnd != std::string_view::npos) location.remove_prefix(hostEnd);
  }
  if (!location.empty() && location[0] == '/' && HasDrive(location.substr(1))) {
    location.remove_prefix(1);
  }
  return location;
}

}  // namespace

std::string WithoutEscapes(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      const std::optional<int> high = HexDigit(text[i + 1]);
      const std::optional<int> low = HexDigit(text[i + 2]);
      if (high && low && *high * 16 + *low != 0) {
        plain += static_cast<char>(*high * 16 + *low);
        i += 2;
        continue;
      }
    }
    plain += text[i];
  }
  return plain;
}

std::vector<std::string> PathsOf(std::string_view utf8Location) {
  std::string spelled(PathPart(utf8Location));
  std::replace(spelled.begin(), spelled.end(), '\\', '/');
  std::string decoded = WithoutEscapes(spelled);
  if (decoded == spelled) return {std::move(spelled)};
  return {std::move(decoded), std::move(spelled)};
}

}  // namespace velmora::field
