#pragma once

#include <string>

#include "Base/FileAccess.h"

namespace velmora {

/// The path of a source's file below `folder`, or the empty text. The location's ends are looked
/// for from its bare name on, then with one more folder each:
///
///     "file://srv/Vol/Audio/x.wav"  ->  x.wav, Audio/x.wav, Vol/Audio/x.wav, ...
///
/// The location is never used as a path by itself, and escapes in it mean nothing.
/// @param location raw: its first and last byte are taken for quotation marks. May be null.
[[nodiscard]] std::string FindSourceFile(const std::string& folder, const char* location);

/// A source's file as it was found; an empty path and no stream if it was not.
struct FoundSource {
  std::string path;
  FileStream stream;
};

/// The same, with the stream that the search has opened the file by, for whoever reads it next.
[[nodiscard]] FoundSource OpenSourceFile(const std::string& folder, const char* location);

}  // namespace velmora
