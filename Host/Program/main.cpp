#include <cstdio>
#include <exception>
#include <variant>

#include "Program/CheckCommand.h"
#include "Program/CommandLine.h"
#include "Program/ExitStatus.h"
#include "Program/InfoCommand.h"
#include "Program/PrepareCommand.h"
#include "Program/SpotCommand.h"

int main(int argc, char** argv) {
  using namespace velmora::program;
  try {
    const Command command = ReadCommandLine(argc, argv);
    if (const auto* const info = std::get_if<InfoArguments>(&command)) return RunInfo(*info);
    if (const auto* const spot = std::get_if<SpotArguments>(&command)) return RunSpotCommand(*spot);
    if (const auto* const check = std::get_if<CheckArguments>(&command)) return RunCheck(*check);
    if (const auto* const prepare = std::get_if<PrepareArguments>(&command)) {
      return RunPrepareCommand(*prepare);
    }
    return std::get<int>(command);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora: %s\n", error.what());
    return kDoesNotLoad;
  }
}
