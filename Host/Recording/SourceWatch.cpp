#include "Recording/SourceWatch.h"

#include <cstdint>

#include "BWF/AES31BWF.h"

namespace velmora::recording {
namespace {

/// Other rights or another name are no other audio.
bool HoldTheSame(const std::optional<FileStamp>& a, const std::optional<FileStamp>& b) {
  if (!a || !b) return !a && !b;
  return a->device == b->device && a->number == b->number && a->size == b->size &&
         a->contentsChanged == b->contentsChanged;
}

}  // namespace

SourceWatch::SourceWatch(const SpotProject& project) {
  for (std::int32_t i = 0; i < project.numEvents; ++i) {
    const AES31Event& event = *project.project->GetEvent(i);
    if (!IsLive(event) || event.sourceFile == nullptr) continue;
    const auto [stamp, isNew] = stamps_.try_emplace(event.sourceFile->GetPath());
    if (isNew) stamp->second = CurrentStamp(stamp->first);
  }
}

std::vector<std::string> SourceWatch::TakeChanged() {
  std::vector<std::string> changed;
  for (auto& [path, stamp] : stamps_) {
    const std::optional<FileStamp> now = CurrentStamp(path);
    if (HoldTheSame(stamp, now)) continue;
    stamp = now;
    changed.push_back(path);
  }
  return changed;
}

}  // namespace velmora::recording
