#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// Makes a line fit for whoever reads standard error.
using LineFilter = std::string (*)(std::string_view line);

/// Writes one line, given without its line feed, to standard error. Callable from any thread.
///
/// A line may hold a text of the project in the bytes of its file, control bytes too. They go out
/// as they are unless a filter is set: a pipe wants all of them, a terminal would obey them.
void WriteStandardError(const std::string& line);

/// The line as WriteStandardError would send it.
[[nodiscard]] std::string FilteredLine(const std::string& line);

/// Sends every later line through a filter; null sends them as they are.
void SetStandardErrorFilter(LineFilter filter);

}  // namespace velmora
