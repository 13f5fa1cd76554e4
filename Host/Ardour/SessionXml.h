#pragma once

#include <pugixml.hpp>
#include <string>

namespace velmora::ardour {

/// Reads an Ardour session file. False if it is none that can be read.
[[nodiscard]] bool LoadSessionXml(const std::string& path, pugi::xml_document& xml);

/// Replaces what is in a file. 0, or the errno of what went wrong, a write included that fails only
/// when the file is closed.
[[nodiscard]] int SaveXml(const std::string& path, const pugi::xml_document& xml);

}  // namespace velmora::ardour
