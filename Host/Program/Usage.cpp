#include "Program/Usage.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Program/ExitStatus.h"
#include "Program/TextTable.h"

namespace velmora::program {
namespace {

bool LooksLikeOption(const std::string& word) {
  return word.size() > 1 && word.front() == '-';
}

std::string Commands(const CLI::App& program) {
  std::string names;
  for (const CLI::App* const command : program.get_subcommands({})) {
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  return names;
}

/// A word that the parser could not place; an option among them is the likelier mistake.
std::string UnknownWord(const CLI::App& program) {
  constexpr bool kOfCommandsToo = true;
  const std::vector<std::string> words = program.remaining(kOfCommandsToo);
  const auto option = std::find_if(words.begin(), words.end(), LooksLikeOption);
  if (option != words.end()) return *option;
  return words.empty() ? "" : words.front();
}

std::string ProgramComplaint(const CLI::App& program, const std::string& firstWord) {
  if (firstWord.empty()) return "a command is missing; commands: " + Commands(program);
  if (LooksLikeOption(firstWord)) return "there is no option '" + firstWord + "'";
  return "there is no command '" + firstWord + "'; commands: " + Commands(program);
}

/// The option that the parser's text begins with or speaks of; null if it names none.
const CLI::Option* NamedOption(const CLI::App& command, const std::string& text) {
  const std::size_t start = text.find("--");
  if (start == std::string::npos) return nullptr;
  const std::size_t end = text.find_first_of(": =", start);
  return command.get_option_no_throw(text.substr(start, end - start));
}

std::string CommandComplaint(const CLI::App& program, const CLI::App& command,
                             const CLI::ParseError& error) {
  const std::string unknown = UnknownWord(program);
  if (LooksLikeOption(unknown)) {
    return "there is no option '" + unknown.substr(0, unknown.find('=')) + "'";
  }
  const auto* const option = NamedOption(command, error.what());
  const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
  if (kind == CLI::ExitCodes::RequiredError) return "the project is missing: name an ADL file";
  if (kind == CLI::ExitCodes::ArgumentMismatch && option != nullptr) {
    if (option->count() > 1) return option->get_name() + ": given more than once";
    return option->get_name() + ": a value must follow: " + option->get_type_name();
  }
  if (kind == CLI::ExitCodes::ConversionError && option != nullptr) {
    return option->get_name() + ": takes no value";
  }
  if (!unknown.empty()) return "'" + unknown + "' is one word too many";
  return error.what();  // a validator's words, which are our own
}

}  // namespace

int BadUsage(const std::string& what, const std::string& command) {
  std::fprintf(stderr, "velmora: %s\nTry 'velmora %s--help'.\n", Printable(what).c_str(),
               command.empty() ? "" : (command + " ").c_str());
  return kBadUsage;
}

int BadUsage(const CLI::App& program, const std::string& firstWord, const CLI::ParseError& error) {
  const std::vector<CLI::App*> commands = program.get_subcommands();
  if (commands.empty() || commands.front()->get_name() != firstWord) {
    return BadUsage(ProgramComplaint(program, firstWord), "");
  }
  return BadUsage(CommandComplaint(program, *commands.front(), error),
                  commands.front()->get_name());
}

}  // namespace velmora::program
