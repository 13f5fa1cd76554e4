#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmora::program {

/// Says what is wrong with a command line and where help is. `command` is empty for the program as
/// a whole. Returns the exit status.
int BadUsage(const std::string& what, const std::string& command);

/// The same for a command line that the parser did not take, in plainer words than its own.
/// `firstWord` is empty if there is none.
int BadUsage(const CLI::App& program, const std::string& firstWord, const CLI::ParseError& error);

}  // namespace velmora::program
