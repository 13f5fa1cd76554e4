#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>
#include <vector>

#include "Check/CheckProject.h"

namespace velmora::program {

/// The options that say how a project is read and where its media are, as they are typed.
struct RawReadingOptions {
  std::vector<std::string> mediaFolders;
  std::string trust = "marks";
  std::string encoding;
  std::string frameRate;
  double sessionRate = 0;
};

/// Adds them to a command.
void AddReadingOptions(CLI::App& command, RawReadingOptions& raw);
/// Adds those that are about the project alone, not about the session: the names of all of them.
std::vector<std::string> AddProjectOptions(CLI::App& command, RawReadingOptions& raw);

/// Takes over what the validators have let through. Folders become absolute; whether they are there
/// is not looked at.
[[nodiscard]] check::CheckOptions FinishReadingOptions(const RawReadingOptions& raw,
                                                       const CLI::App& command);

/// What is wrong with the media folders, naming the option; empty if all are there.
[[nodiscard]] std::string ComplaintAboutMediaFolders(const check::CheckOptions& options);

struct CheckArguments {
  std::vector<std::string> projects;  ///< as typed: files and folders
  check::CheckOptions options;
  std::size_t jobs = 0;  ///< projects that are read side by side; 0: one for each processor
  bool json = false;
};

}  // namespace velmora::program
