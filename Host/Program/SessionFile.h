#pragma once

#include <string>

#include "Session/Session.h"

namespace velmora::program {

/// Why a session cannot be written to a path, in words; empty if it can. A file that is there is
/// written over only if it is an earlier session: a mistyped name must not cost a take.
std::string SessionFileComplaint(const std::string& path);

/// Writes the session, whole or not at all. Returns an empty text, or what went wrong.
std::string WriteSessionFile(const host::Session& session, const std::string& path);

}  // namespace velmora::program
