#pragma once

#include <cstdint>

#include "Model/ViewModel.h"
#include "Program/BlockOutput.h"
#include "Program/CommandLine.h"

namespace velmora::program {

/// Rows of a table in JSON, and of tracks beyond what a project's events can use: it may claim as
/// many as it likes.
inline constexpr std::int32_t kMostTableRows = 100000;

/// Shows what a project holds. Returns the exit status.
int RunInfo(const InfoArguments& arguments);

void PrintInfoText(const InfoArguments& arguments, const ViewModel& model, BlockOutput& out);
void PrintInfoJson(const InfoArguments& arguments, const ViewModel& model, BlockOutput& out);

/// Says on standard error that the project does not load, and why.
void ComplainAboutLoad(const std::string& path, const ViewModel& model);

}  // namespace velmora::program
