#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// Why a project did not load.
struct LoadFailure {
  std::int64_t line =
      0;                ///< line of the file, from 1, on which the label stands; 0: the whole file
  std::string section;  ///< name as the file has it; empty for the whole file
  std::string label;    ///< label as the file has it; empty for the whole file
  std::string reason;   ///< a phrase in plain words
};

}  // namespace velmora
