#pragma once

#include <string_view>

namespace velmora::report {

// The page's style and script, from Page.css and Page.js. Neither holds "</": a page could not hold
// it between its own tags.
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

}  // namespace velmora::report
