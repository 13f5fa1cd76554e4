#include "Program/FindingsHint.h"

#include <cstdint>
#include <iostream>

#include "Program/TextTable.h"

namespace velmora::program {

void HintAtFindings(const std::string& path, const std::optional<LoadFailure>& failure,
                    check::CheckOptions options) {
  constexpr std::int64_t kFileAsAWhole = 0;
  if (failure && failure->line == kFileAsAWhole) return;
  options.atAGlance = true;
  media::FolderListings listings;
  const check::CheckedProject checked = CheckProject(path, options, listings);
  const std::string summary = SummaryLine(checked);
  if (checked.project == nullptr || summary.empty()) return;
  std::cerr << "velmora: " << summary << "; see velmora check " << Printable(path) << '\n';
}

}  // namespace velmora::program
