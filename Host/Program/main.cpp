#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string_view>
#include <variant>

#include "Base/PrintableLine.h"
#include "Base/StandardError.h"
#include "Program/CheckCommand.h"
#include "Program/CommandLine.h"
#include "Program/ExitStatus.h"
#include "Program/InfoCommand.h"
#include "Program/MemoryTrouble.h"
#include "Program/PrepareCommand.h"
#include "Program/SpotCommand.h"
#include "Program/TextTable.h"

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

/// What a run ends with if something takes it from under the feet of its command.
int StatusOfTrouble(int argc, char** argv) {
  using namespace velmora::program;
  const std::string_view command = argc > 1 ? argv[1] : "";
  const bool onlyReads = command == "info" || command == "check";
  return onlyReads ? kDoesNotLoad : kLeftOut;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace velmora::program;
  HoldStandardDescriptors();
  // A write beyond the limit for files (ulimit -f) then fails like one on a full disk, and is told.
  std::signal(SIGXFSZ, SIG_IGN);
  const int trouble = StatusOfTrouble(argc, argv);
  PrepareForLackOfMemory(trouble);
  // The readers quote labels in the bytes of the file, of which a terminal may obey some.
  if (isatty(STDERR_FILENO) != 0) velmora::SetStandardErrorFilter(velmora::PrintableLine);
  try {
    const Command command = ReadCommandLine(argc, argv);
    if (const auto* const info = std::get_if<InfoArguments>(&command)) return RunInfo(*info);
    if (const auto* const spot = std::get_if<SpotArguments>(&command)) return RunSpotCommand(*spot);
    if (const auto* const check = std::get_if<CheckArguments>(&command)) return RunCheck(*check);
    if (const auto* const prepare = std::get_if<PrepareArguments>(&command)) {
      return RunPrepareCommand(*prepare);
    }
    return std::get<int>(command);
  } catch (const std::bad_alloc&) {
    TellLackOfMemory();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora: %s\n", Printable(error.what()).c_str());
  }
  return trouble;
}
