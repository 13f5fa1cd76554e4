// From texts to files: the audio of each source, and what each event needs of its source.

#include <cerrno>
#include <string>
#include <utility>

#include "ADL/AES31Project.h"
#include "ADL/ShiftJis.h"
#include "Base/Text.h"
#include "Base/FileAccess.h"

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
    source.file = nullptr;
    const std::string path = FindSource(source.fValues[0]);
    if (path.empty()) continue;
    openedFiles_.push_back(std::make_unique<AES31BWF>(path.c_str()));
    source.file = openedFiles_.back().get();
  }
}

/// The path of a source below `folder`, or the empty text. The location's ends are looked for from
/// its bare name on, then with one more folder each:
///
///     "file://srv/Vol/Audio/x.wav"  ->  x.wav, Audio/x.wav, Vol/Audio/x.wav, ...
///
/// The location is never used as a path by itself, and escapes in it mean nothing.
std::string AES31Project::FindSource(const char* location) const {
  if (location == nullptr || *location == '\0') return {};
  std::string text = ShiftJisToUtf8(location + 1);  // what stands there is taken for a quote
  if (text.empty()) return {};
  text.pop_back();  // and so is what stands here
  for (std::size_t slash = text.rfind('/'); slash != std::string::npos && slash > 0;
       slash = text.rfind('/', slash - 1)) {
    std::string candidate = folder + text.substr(slash);
    if (OpenRegularFile(candidate.c_str()) != nullptr) return candidate;
    // Longer ends only make longer paths.
    if (errno == ENAMETOOLONG) return {};
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
