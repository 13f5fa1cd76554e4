#pragma once

#include <cstdint>
#include <string>

namespace velmora::test::differential {

/// True for a text of the 16 characters of a fade's length.
[[nodiscard]] bool IsSlowTimestamp(const char* text);

/// The sample count of a timestamp. Characters that a text does not have count as NUL.
[[nodiscard]] std::int64_t SlowSamples(const char* timestamp);

/// The second timestamp's count less that of the first.
[[nodiscard]] std::int64_t SlowDifference(const char* first, const char* second);

/// What tables show of a timestamp: all that stands before its first slash.
[[nodiscard]] std::string SlowTimecode(const std::string& timestamp);

}  // namespace velmora::test::differential
