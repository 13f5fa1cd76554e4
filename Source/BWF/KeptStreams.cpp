#include "BWF/KeptStreams.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <optional>
#include <typeinfo>
#include <utility>

namespace velmora {

int KeptStreams::HalfOfDescriptors() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
  return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, std::numeric_limits<int>::max()) / 2);
}

KeptStreams::Place KeptStreams::Find(const AES31BWF& file) {
  return std::find_if(kept_.begin(), kept_.end(),
                      [&](const Kept& kept) { return kept.file == &file; });
}

void KeptStreams::Open(AES31BWF& file) {
  if (const Place known = Find(file); known != kept_.end()) {
    Kept kept = std::move(*known);
    kept_.erase(known);
    // A seek would be a call to the system even to where the stream stands.
    if (kept.stream != nullptr && CurrentStamp(file.path) == kept.stamp &&
        (ftello(kept.stream.get()) == file.dataOffset ||
         fseeko(kept.stream.get(), file.dataOffset, SEEK_SET) == 0)) {
      file.stream = std::move(kept.stream);
      file.position = file.dataOffset;
      kept_.push_back(std::move(kept));
      return;
    }
  }
  file.OpenAtData();
  // What a class derived from AES31BWF opens is its own affair.
  if (file.stream == nullptr || typeid(file) != typeid(AES31BWF)) return;
  const std::optional<FileStamp> stamp = CurrentStamp(file.stream.get());
  if (!stamp || !IsSettled(*stamp)) return;
  if (kept_.size() == kMost) kept_.erase(kept_.begin());
  kept_.push_back({&file, *stamp, nullptr});
}

void KeptStreams::Close(AES31BWF& file) {
  const Place known = Find(file);
  const bool isSound = file.stream != nullptr && std::ferror(file.stream.get()) == 0 &&
                       std::feof(file.stream.get()) == 0;
  if (known != kept_.end() && known->stream == nullptr && isSound &&
      fileno(file.stream.get()) < mostDescriptor_) {
    known->stream = std::move(file.stream);
  } else {
    file.CloseFile();
  }
}

}  // namespace velmora
