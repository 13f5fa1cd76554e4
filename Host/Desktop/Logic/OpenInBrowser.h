#pragma once

#include <string>

namespace velmora::desktop {

/// Has the desktop's own program for it show a page, and does not wait. False if there is none.
[[nodiscard]] bool OpenInBrowser(const std::string& path);

}  // namespace velmora::desktop
