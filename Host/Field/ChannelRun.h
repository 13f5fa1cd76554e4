#pragma once

#include <cstdint>
#include <string_view>

namespace velmora::field {

/// A run of channels or tracks, counted from 1: "3" is 3 to 3, "1~2" and "1-2" are 1 to 2, "_"
/// is 1. `last` is not before `first`.
struct ChannelRun {
  std::int32_t first = 1;
  std::int32_t last = 1;
  [[nodiscard]] std::int32_t Count() const { return last - first + 1; }
  bool operator==(const ChannelRun&) const = default;
};

/// The run that a text tells: "a", "a~b" or "a-b"; channel 1 for any other text.
[[nodiscard]] ChannelRun ReadChannelRun(std::string_view text);

}  // namespace velmora::field
