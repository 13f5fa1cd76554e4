#include "Program/InfoCommand.h"

#include <iostream>

#include "ADL/ShiftJis.h"
#include "Program/ExitStatus.h"
#include "Program/TextTable.h"

namespace velmora::program {

int RunInfo(const InfoArguments& arguments) {
  ViewModel model;
  const bool loaded = model.LoadFile(arguments.project);
  if (arguments.json) {
    PrintInfoJson(arguments, model, std::cout);
  } else if (loaded) {
    PrintInfoText(arguments, model, std::cout);
  }
  if (!loaded) ComplainAboutLoad(arguments.project, model);
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "velmora: standard output takes no more\n";
    return kLeftOut;
  }
  return loaded ? kAllDone : kDoesNotLoad;
}

void ComplainAboutLoad(const std::string& path, const ViewModel& model) {
  std::cerr << "velmora: " << model.errorMessage << ' ' << Printable(path);
  if (model.loadFailure) {
    const LoadFailure& failure = *model.loadFailure;
    if (failure.line > 0) std::cerr << ", line " << failure.line;
    std::cerr << ": ";
    if (!failure.section.empty()) {
      std::cerr << '<' << Printable(ShiftJisToUtf8(failure.section.c_str())) << "> ("
                << Printable(ShiftJisToUtf8(failure.label.c_str())) << "): ";
    }
    std::cerr << failure.reason;
  }
  std::cerr << '\n';
}

}  // namespace velmora::program
