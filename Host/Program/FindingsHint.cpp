#include "Program/FindingsHint.h"

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "Program/TextTable.h"

namespace velmora::program {
namespace {

/// A smaller project is looked through in less time than a thread takes to begin.
constexpr std::int64_t kWorthAThread = std::int64_t{1} << 20;

bool IsLarge(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_size >= kWorthAThread;
}

/// "does not load, misplaces cuts and loses something", as far as it applies. Without numbers: a
/// check that looks for audio in all folders may come to others.
std::string ListOf(bool fails, bool misplaces, bool loses) {
  const auto troubles = std::to_array<std::pair<bool, const char*>>(
      {{fails, "does not load"}, {misplaces, "misplaces cuts"}, {loses, "loses something"}});
  std::vector<std::string> words;
  for (const auto& [applies, text] : troubles) {
    if (applies) words.emplace_back(text);
  }
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? " and " : ", ";
    list += words[i];
  }
  return list.empty() ? list : "this project " + list;
}

}  // namespace

FindingsHint::FindingsHint(std::string path, check::CheckOptions options)
    : path_(std::move(path)), options_(std::move(options)) {
  options_.atAGlance = true;
  if (!IsLarge(path_)) return;
  try {
    std::packaged_task<check::GlanceResult()> look([this] { return Look(); });
    std::future<check::GlanceResult> result = look.get_future();
    thread_ = HelperThread(std::move(look));
    look_ = std::move(result);
  } catch (const std::exception&) {  // neither thread nor memory is to be had: Tell looks itself
  }
}

FindingsHint::~FindingsHint() {
  cancelled_ = true;
}

check::GlanceResult FindingsHint::Look() const {
  return check::GlanceAt(path_, options_, [this] { return cancelled_.load(); });
}

void FindingsHint::Tell(const ViewModel& model) {
  constexpr std::int64_t kFileAsAWhole = 0;
  if (model.loadFailure && model.loadFailure->line == kFileAsAWhole) return;
  std::string troubles;
  try {
    troubles = Troubles(model);
  } catch (
      const std::bad_alloc&) {  // the project itself had enough, and that is what was asked for
  }
  if (troubles.empty()) return;
  std::cerr << "velmora: " << troubles << "; velmora check " << Printable(path_)
            << " says why and what helps\n";
}

/// What is wrong with the project, in words; empty for nothing.
std::string FindingsHint::Troubles(const ViewModel& model) {
  if (model.project != nullptr) {
    const check::GlanceResult result = look_.valid() ? look_.get() : Look();
    if (const std::optional<check::Glance> found = result.For(model.project->events.size())) {
      return ListOf(false, found->misplaces, found->loses);
    }
  }
  media::FolderListings listings;
  const check::CheckedProject checked = CheckProject(path_, options_, listings);
  if (checked.project == nullptr) return {};
  if (checked.verdict == check::Verdict::Unreadable) return "this is no ADL";
  const auto has = [&checked](check::Severity severity) { return checked.Count(severity) > 0; };
  return ListOf(has(check::Severity::Fails), has(check::Severity::Misplaced),
                has(check::Severity::Lost));
}

}  // namespace velmora::program
