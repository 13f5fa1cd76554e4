#pragma once

#include <string_view>

namespace velmora::fuzz {

/// Ends the program, with words on standard error, unless a rule holds: that is how a fuzzer learns
/// of a wrong result.
void Hold(bool holds, std::string_view rule, std::string_view found = {});

/// The same for a report of differences, which is empty if there are none.
inline void HoldAlike(std::string_view difference, std::string_view rule) {
  Hold(difference.empty(), rule, difference);
}

}  // namespace velmora::fuzz
