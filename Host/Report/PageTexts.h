#pragma once

#include <string_view>

namespace velmora::report {

// The page's style, from Page.css, and its script, from Rows.js, Tables.js and Picture.js, one
// after the other. None holds "</": a page could not hold it between its own tags.
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

}  // namespace velmora::report
