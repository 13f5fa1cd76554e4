#pragma once

#include <string>
#include <string_view>

namespace velmora::host {

/// PrintableLine, fast where nearly all texts are printable ASCII.
[[nodiscard]] std::string Printable(std::string_view text);

}  // namespace velmora::host
