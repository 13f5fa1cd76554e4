#include "Program/InfoCommand.h"

#include <unistd.h>

#include <iostream>

#include "Model/ProjectSummary.h"
#include "Program/ExitStatus.h"
#include "Program/FindingsHint.h"
#include "Program/StandardOutput.h"
#include "Program/TextTable.h"

namespace velmora::program {

int RunInfo(const InfoArguments& arguments) {
  FindingsHint hint(arguments.project);
  ViewModel model;
  const bool loaded = model.LoadFile(arguments.project);
  BlockOutput out(STDOUT_FILENO);
  if (arguments.json) {
    PrintInfoJson(arguments, model, out);
  } else if (loaded) {
    PrintInfoText(arguments, model, out);
  }
  if (!loaded) ComplainAboutLoad(arguments.project, model);
  if (!out.Finish()) {
    const int lost = TellLostOutput();
    return loaded ? lost : kDoesNotLoad;
  }
  hint.Tell(model);
  return loaded ? kAllDone : kDoesNotLoad;
}

void ComplainAboutLoad(const std::string& path, const ViewModel& model) {
  std::cerr << "velmora: " << Printable(model.errorMessage) << ' ' << Printable(path);
  if (model.loadFailure) {
    const bool hasPlace = model.loadFailure->line > 0;
    std::cerr << (hasPlace ? ", " : ": ") << Printable(FailureText(*model.loadFailure));
  }
  std::cerr << '\n';
}

}  // namespace velmora::program
