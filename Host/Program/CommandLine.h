#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Prepare/PrepareProject.h"
#include "Program/BoxChoice.h"
#include "Program/CheckArguments.h"
#include "Program/TargetOptions.h"
#include "Session/HostKind.h"

namespace velmora::program {

struct InfoArguments {
  std::string project;  ///< absolute path
  bool json = false;
  bool summary = false;  ///< counts in place of the rows; never with `json`
};

struct SpotArguments {
  std::string project;             ///< absolute path
  std::vector<std::string> notes;  ///< on the options themselves, to be told with the spot's
  std::int32_t positionMode = 0;
  std::string offset = "+00:00:00:00";  ///< as the entry field would hold it
  std::string start = " 00:00:00:00";   ///< as the entry field would hold it
  std::int32_t bitDepth = 24;
  bool fades = false;
  bool gain = false;
  std::string copyFolder;                        ///< absolute path; empty for none
  BoxChoice tracks;                              ///< by track number
  BoxChoice events;                              ///< by event index
  std::optional<float> sessionRate;              ///< Hz
  std::optional<std::int32_t> sessionFrameRate;  ///< code 0 to 7
  host::HostChoice host;                         ///< its target, if any, as an absolute path
  TargetRequests targets;                        ///< beside the host's own
  bool prepare = false;                          ///< spots a prepared project
  /// For `prepare`. Its `into` is empty for a folder with a free name.
  prepare::PrepareOptions preparation;
  /// The page to make in place of a spot; none for a spot. Then nothing else is made.
  std::optional<TargetRequest> plan;
  bool truePosition = false;  ///< without the compensation; always so with `prepare`
  bool json = false;
  bool quiet = false;
};

struct PrepareArguments {
  std::string project;  ///< absolute path
  prepare::PrepareOptions options;
  bool json = false;
};

/// An exit status: there is nothing to do, help was shown or a complaint made.
using Command = std::variant<int, InfoArguments, SpotArguments, CheckArguments, PrepareArguments>;

/// Reads the command line and shows help or says what is wrong with it, and which options change
/// nothing. Touches no file.
[[nodiscard]] Command ReadCommandLine(int argc, const char* const* argv);

}  // namespace velmora::program
