#pragma once

#include <cstdint>
#include <iosfwd>

#include "Model/ViewModel.h"
#include "Program/CommandLine.h"

namespace velmora::program {

/// Rows of a table that are shown: a project may claim as many tracks as it likes.
inline constexpr std::int32_t kMostTableRows = 100000;

/// Shows what a project holds. Returns the exit status.
int RunInfo(const InfoArguments& arguments);

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, std::ostream& out);
void PrintInfoJson(const InfoArguments& arguments, const ViewModel& model, std::ostream& out);

/// Says on standard error that the project does not load, and why.
void ComplainAboutLoad(const std::string& path, const ViewModel& model);

}  // namespace velmora::program
