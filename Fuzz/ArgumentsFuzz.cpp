// Command lines: the words of one are the lines of an input. Nothing is run.

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "Program/CommandLine.h"
#include "Program/ExitStatus.h"
#include "Support/Holds.h"
#include "Support/Input.h"

namespace velmora::fuzz {
namespace {

/// Absolute, or the empty word, which names no file.
bool IsAbsolute(const std::string& path) {
  return path.empty() || path[0] == '/';
}

/// A project's is never empty.
bool NamesAFile(const std::string& path) {
  return !path.empty() && path[0] == '/';
}

void HoldSpot(const program::SpotArguments& arguments) {
  Hold(NamesAFile(arguments.project), "a project has an absolute path", arguments.project);
  Hold(IsAbsolute(arguments.copyFolder), "so has a copy folder");
  Hold(arguments.bitDepth == 16 || arguments.bitDepth == 24, "a depth is one of two");
  Hold(arguments.positionMode >= 0 && arguments.positionMode <= 3, "a position is one of four");
  Hold(arguments.offset.size() == 12 && arguments.start.size() == 12, "a timecode is a field's");
  if (arguments.sessionFrameRate) {
    Hold(*arguments.sessionFrameRate >= 0 && *arguments.sessionFrameRate <= 7,
         "a frame rate is one of eight");
  }
  if (arguments.sessionRate) {
    Hold(*arguments.sessionRate >= 1 && *arguments.sessionRate <= 1e7F,
         "a sample rate is one that a session has");
  }
}

void HoldCommand(const program::Command& command) {
  if (const auto* const status = std::get_if<int>(&command)) {
    Hold(*status == program::kAllDone || *status == program::kBadUsage, "help, or bad usage",
         std::to_string(*status));
  } else if (const auto* const spot = std::get_if<program::SpotArguments>(&command)) {
    HoldSpot(*spot);
  } else if (const auto* const info = std::get_if<program::InfoArguments>(&command)) {
    Hold(NamesAFile(info->project), "a project has an absolute path", info->project);
  } else if (const auto* const prepare = std::get_if<program::PrepareArguments>(&command)) {
    Hold(IsAbsolute(prepare->options.into), "a folder has an absolute path", prepare->options.into);
  } else {
    Hold(!std::get<program::CheckArguments>(command).projects.empty(), "a check has a project");
  }
}

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::fuzz;
  constexpr std::size_t kMostWords = 24;
  Input input(bytes, size);
  std::vector<std::string> words = {"velmora"};
  while (!input.IsEmpty() && words.size() < kMostWords) {
    const std::string line(input.Line());
    words.emplace_back(line.c_str());  // a word ends at its first NUL
  }
  std::vector<const char*> pointers;
  for (const std::string& word : words) pointers.push_back(word.c_str());
  HoldCommand(
      velmora::program::ReadCommandLine(static_cast<int>(pointers.size()), pointers.data()));
  return 0;
}
