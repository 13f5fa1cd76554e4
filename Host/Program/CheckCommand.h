#pragma once

#include <string>

#include "Program/CheckArguments.h"

namespace velmora::program {

/// Checks projects. Returns the exit status.
[[nodiscard]] int RunCheck(const CheckArguments& arguments);

}  // namespace velmora::program
