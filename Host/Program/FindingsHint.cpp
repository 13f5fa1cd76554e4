#include "Program/FindingsHint.h"

#include <array>
#include <cstdint>
#include <iostream>
#include <utility>
#include <vector>

#include "Program/TextTable.h"

namespace velmora::program {
namespace {

/// "does not load, misplaces cuts and loses something", as far as it applies. Without numbers: a
/// check that looks for audio in all folders may come to others.
std::string Troubles(const check::CheckedProject& checked) {
  constexpr auto kTroubles = std::to_array<std::pair<check::Severity, const char*>>({
      {check::Severity::Fails, "does not load"},
      {check::Severity::Misplaced, "misplaces cuts"},
      {check::Severity::Lost, "loses something"},
  });
  std::vector<std::string> words;
  for (const auto& [severity, text] : kTroubles) {
    if (checked.Count(severity) > 0) words.emplace_back(text);
  }
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? " and " : ", ";
    list += words[i];
  }
  return list;
}

}  // namespace

void HintAtFindings(const std::string& path, const std::optional<LoadFailure>& failure,
                    check::CheckOptions options) {
  constexpr std::int64_t kFileAsAWhole = 0;
  if (failure && failure->line == kFileAsAWhole) return;
  options.atAGlance = true;
  media::FolderListings listings;
  const check::CheckedProject checked = CheckProject(path, options, listings);
  if (checked.project == nullptr || checked.verdict == check::Verdict::Clean) return;
  const bool isAdl = checked.verdict != check::Verdict::Unreadable;
  std::cerr << "velmora: " << (isAdl ? "this project " + Troubles(checked) : "this is no ADL")
            << "; velmora check " << Printable(path) << " says why and what helps\n";
}

}  // namespace velmora::program
