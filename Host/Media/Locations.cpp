#include "Media/Locations.h"

#include <algorithm>
#include <optional>

#include "Base/FileNames.h"
#include "Base/Text.h"

namespace velmora::media {
namespace {

bool IsLetter(char c) {
  return LowerCase(c) >= 'a' && LowerCase(c) <= 'z';
}

bool IsSlash(char c) {
  return c == '/' || c == '\\';
}

/// True if the text begins with `lower` in any case.
bool BeginsWith(std::string_view text, std::string_view lower) {
  return text.size() >= lower.size() &&
         std::equal(lower.begin(), lower.end(), text.begin(),
                    [](char want, char is) { return want == LowerCase(is); });
}

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
}

/// "C:" with nothing or a slash after it.
bool BeginsWithDrive(std::string_view text) {
  return text.size() >= 2 && IsLetter(text[0]) && text[1] == ':' &&
         (text.size() == 2 || IsSlash(text[2]));
}

/// The text after "//", without the host that may stand there: from the slash after it on. What
/// stands there may be a drive already.
std::string_view WithoutHost(std::string_view text) {
  if (BeginsWithDrive(text)) return text;
  const std::size_t slash = text.find_first_of("/\\");
  return slash == std::string_view::npos ? text : text.substr(slash);
}

std::string_view WithoutScheme(std::string_view text) {
  constexpr std::string_view kUrl = "url:";
  constexpr std::string_view kFile = "file:";
  SkipBlanks(text);
  while (BeginsWith(text, kUrl)) {
    text.remove_prefix(kUrl.size());
    SkipBlanks(text);
  }
  if (!BeginsWith(text, kFile)) return text;
  text.remove_prefix(kFile.size());
  if (text.size() < 2 || !IsSlash(text[0]) || !IsSlash(text[1])) return text;
  return WithoutHost(text.substr(2));
}

std::optional<int> HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = LowerCase(c);
  if (lower >= 'a' && lower <= 'f') return lower - 'a' + 10;
  return std::nullopt;
}

/// A `%` that no two digits follow stands for itself.
std::string WithoutEscapes(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool room = text[i] == '%' && i + 2 < text.size();
    const auto high = room ? HexDigit(text[i + 1]) : std::nullopt;
    const auto low = room ? HexDigit(text[i + 2]) : std::nullopt;
    if (high && low) {
      decoded.push_back(static_cast<char>(static_cast<unsigned char>(*high * 16 + *low)));
      i += 2;
    } else {
      decoded.push_back(text[i]);
    }
  }
  return decoded;
}

std::string WithSlashes(std::string text) {
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

void AddOnce(std::vector<std::string>& texts, const std::string& text) {
  if (text.empty() || std::find(texts.begin(), texts.end(), text) != texts.end()) return;
  texts.push_back(text);
}

void AddSpelling(Location& location, const std::string& path) {
  if (path.find('\0') != std::string::npos) return;
  const std::size_t begin = path.find_first_not_of('/');
  if (begin == std::string::npos) return;
  std::string tail = path.substr(begin);
  const bool onDrive = BeginsWithDrive(tail);
  if (onDrive) tail.erase(0, tail.find_first_not_of('/', 2));
  const std::string name = FileNameOf(tail);
  if (name.empty() || name == "." || name == "..") return;
  AddOnce(location.names, name);
  AddOnce(location.tails, tail);
  if (!onDrive && path.find('/') != std::string::npos) AddOnce(location.paths, path);
}

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == 0x7F;
}

/// Control characters as blanks: whoever writes a location anew can write no others.
std::string WithoutControls(std::string text) {
  std::replace_if(text.begin(), text.end(), IsControl, ' ');
  return text;
}

}  // namespace

Location DecodeLocation(std::string_view text) {
  Location location;
  const std::string_view rest = WithoutScheme(text);
  const std::string decoded = WithoutEscapes(rest);
  AddSpelling(location, WithSlashes(decoded));
  AddSpelling(location, WithSlashes(std::string(rest)));
  AddSpelling(location, decoded);
  AddSpelling(location, std::string(rest));
  if (std::any_of(text.begin(), text.end(), IsControl)) {
    AddSpellings(location, DecodeLocation(WithoutControls(std::string(text))));
  }
  return location;
}

void AddSpellings(Location& location, const Location& more) {
  for (const std::string& path : more.paths) AddOnce(location.paths, path);
  for (const std::string& name : more.names) AddOnce(location.names, name);
  for (const std::string& tail : more.tails) AddOnce(location.tails, tail);
}

}  // namespace velmora::media
