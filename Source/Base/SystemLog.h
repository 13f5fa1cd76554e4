#pragma once

#include <functional>
#include <string>

namespace velmora {

/// Writes one line, given without its line feed, to the system log. Callable from any thread.
void SystemLog(const std::string& line);

/// Puts another receiver in the place of standard error; an empty function brings that back.
void SetSystemLog(std::function<void(const std::string&)> receiver);

}  // namespace velmora
