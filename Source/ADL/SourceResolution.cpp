// From texts to files: the audio of each source, and what each event needs of its source.

#include <climits>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "ADL/AES31Project.h"
#include "ADL/ShiftJis.h"
#include "ADL/SourceSearch.h"
#include "Base/FileAccess.h"
#include "Base/Text.h"

namespace velmora {
namespace {

constexpr std::int32_t kNoSource = -1;

std::int32_t SourceKeyOf(const AES31Event& event) {
  if (IsCut(event)) return event.cut.sourceIndex;
  // The readers never store this label; linking does not depend on how a label came to be.
  if (EqualsIgnoringCase(event.label, "Alt")) return event.alt.altIndex;
  return kNoSource;
}

}  // namespace

void AES31Project::ResolveSources() {
  for (auto& [index, source] : sourceFiles) {
    Retire(source);
    FoundSource found = OpenSourceFile(folder, source.fValues[0]);
    if (found.stream == nullptr) continue;
    source.file = new AES31BWF(std::move(found.path), std::move(found.stream));
  }
}

void AES31Project::Retire(AES31SourceFile& source) {
  if (source.file == nullptr) return;
  formerFiles_.push_back(source.file);
  source.file = nullptr;
}

/// Visits every pointer to a file that the project owns, those of the sources first, in their
/// order.
template <class Visit>
void AES31Project::ForEachFile(const Visit& visit) {
  for (auto& [index, source] : sourceFiles) visit(source.file);
  for (AES31BWF*& file : formerFiles_) visit(file);
}

/// Deletes each file once: a caller may have put one file into several sources.
void AES31Project::DeleteFiles() {
  try {
    std::set<const AES31BWF*> seen;
    ForEachFile([&seen](AES31BWF*& file) {
      if (!seen.insert(file).second) file = nullptr;
    });
  } catch (const std::bad_alloc&) {  // slow, but in need of no memory
    ForEachFile([this](AES31BWF*& file) {
      ForEachFile([&file](AES31BWF*& other) {
        if (&other != &file && other == file) other = nullptr;
      });
    });
  }
  ForEachFile([](const AES31BWF* file) { delete file; });
}

std::string FindSourceFile(const std::string& folder, const char* location) {
  return OpenSourceFile(folder, location).path;
}

FoundSource OpenSourceFile(const std::string& folder, const char* location) {
  if (location == nullptr || *location == '\0') return {};
  std::string text = ShiftJisToUtf8(location + 1);  // what stands there is taken for a quote
  if (text.empty()) return {};
  text.pop_back();  // and so is what stands here
  for (std::size_t slash = text.rfind('/'); slash != std::string::npos && slash > 0;
       slash = text.rfind('/', slash - 1)) {
    std::string candidate = folder + text.substr(slash);
    if (candidate.size() >= PATH_MAX) return {};  // and longer ends only make longer paths
    FileStream stream = OpenRegularFile(candidate.c_str());
    if (stream != nullptr) return {std::move(candidate), std::move(stream)};
  }
  return {};
}

void AES31Project::LinkEvents() {
  for (AES31Event& event : events) {
    const std::int32_t key = SourceKeyOf(event);
    if (key == kNoSource) continue;
    const auto source = sourceFiles.find(key);
    if (source == sourceFiles.end()) continue;
    event.sourceFile = source->second.file;
    event.sourceStart = source->second.fValues[2];
    event.sourceLength = source->second.fValues[3];
  }
}

}  // namespace velmora
