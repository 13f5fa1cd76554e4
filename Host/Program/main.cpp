#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <variant>

#include "Program/CheckCommand.h"
#include "Program/CommandLine.h"
#include "Program/ExitStatus.h"
#include "Program/InfoCommand.h"
#include "Program/PrepareCommand.h"
#include "Program/SpotCommand.h"

namespace {

/// Makes sure that the three standard descriptors are taken: where one was closed, the next file to
/// be opened would get its number, and what is printed would go into that file. What is put there
/// takes no writing, so that lost output is told.
void HoldStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) ::close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace velmora::program;
  HoldStandardDescriptors();
  // A write beyond the limit for files (ulimit -f) then fails like one on a full disk, and is told.
  std::signal(SIGXFSZ, SIG_IGN);
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
