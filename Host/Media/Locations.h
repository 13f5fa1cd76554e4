#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora::media {

/// What the text of a location may mean. A name may really hold a `%` or a backslash, so one text
/// has several spellings; the most decoded one stands first.
struct Location {
  /// As paths: absolute ones, and relative ones with a folder in them. None for bare names and for
  /// paths on a drive with a letter, which mean no place here.
  std::vector<std::string> paths;
  std::vector<std::string> names;  ///< the file's name alone
  /// What stands after scheme, host and drive, without slashes at its beginning:
  /// "Vol/Audio/x.wav". The system looks for the ends of such texts.
  std::vector<std::string> tails;
};

/// Decodes "URL:" in any case, "file://HOST/", "file:///", drive letters, backslashes, percent
/// escapes and bare names.
/// @param text without quotation marks, in any encoding that keeps ASCII
[[nodiscard]] Location DecodeLocation(std::string_view text);

/// Adds the spellings of `more` that are not there yet.
void AddSpellings(Location& location, const Location& more);

}  // namespace velmora::media
