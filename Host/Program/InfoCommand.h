#pragma once

#include <iosfwd>

#include "Model/ViewModel.h"
#include "Program/CommandLine.h"

namespace velmora::program {

/// Shows what a project holds. Returns the exit status.
int RunInfo(const InfoArguments& arguments);

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, std::ostream& out);
void PrintInfoJson(const InfoArguments& arguments, const ViewModel& model, std::ostream& out);

/// Says on standard error that the project does not load, and why.
void ComplainAboutLoad(const std::string& path, const ViewModel& model);

}  // namespace velmora::program
