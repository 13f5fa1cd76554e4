#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace velmora::host {

using Json = nlohmann::ordered_json;

/// A value as JSON text on one line. Names and paths of a project may be any bytes, and JSON is
/// UTF-8: texts go through ValidUtf8.
[[nodiscard]] std::string JsonText(Json value);

}  // namespace velmora::host
