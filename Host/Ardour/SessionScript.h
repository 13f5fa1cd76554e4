#pragma once

#include <string_view>

namespace velmora::ardour {

/// What Ardour's own Lua runs to make a session: the file make_session.lua, as it was when the
/// program was built.
extern const std::string_view kSessionScript;

}  // namespace velmora::ardour
