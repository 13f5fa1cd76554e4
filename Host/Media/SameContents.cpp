#include "Media/SameContents.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

#include "Base/FileAccess.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kFirstBytes = 64 << 10;
constexpr std::int64_t kBlockBytes = 1 << 20;

constexpr std::int64_t kLargeBytes = 256 << 10;  // from here on an answer is worth keeping
constexpr std::size_t kMostKnown = 100000;

class Comparison {
 public:
  Comparison(const std::string& a, const std::string& b)
      : a_(OpenRegularFile(a.c_str())), b_(OpenRegularFile(b.c_str())) {}

  /// The ends first: takes of one length differ there, if not in their headers.
  bool Same(std::int64_t size) {
    if (a_ == nullptr || b_ == nullptr) return false;
    const std::int64_t head = std::min(size, kFirstBytes);
    return Same(0, head) && Same(size - head, size) && Same(head, size - head);
  }

 private:
  bool Same(std::int64_t begin, std::int64_t end) {
    for (std::int64_t place = begin; place < end; place += kBlockBytes) {
      const auto count = static_cast<std::size_t>(std::min(kBlockBytes, end - place));
      blockA_.resize(count);
      blockB_.resize(count);
      if (ReadAt(a_.get(), place, blockA_.data(), count) != count) return false;
      if (ReadAt(b_.get(), place, blockB_.data(), count) != count) return false;
      if (std::memcmp(blockA_.data(), blockB_.data(), count) != 0) return false;
    }
    return true;
  }

  FileStream a_;
  FileStream b_;
  std::vector<std::uint8_t> blockA_;
  std::vector<std::uint8_t> blockB_;
};

}  // namespace

std::optional<ContentComparison::Identity> ContentComparison::IdentityOf(const std::string& path) {
  struct stat facts {};
  if (stat(path.c_str(), &facts) != 0) return std::nullopt;
  return Identity{facts.st_dev, facts.st_ino, facts.st_size,
                  std::int64_t{facts.st_mtim.tv_sec} * 1000000000 + facts.st_mtim.tv_nsec};
}

bool ContentComparison::Same(const std::string& a, const std::optional<Identity>& identityOfA,
                             const std::string& b, const std::optional<Identity>& identityOfB) {
  if (!identityOfA || !identityOfB) return false;
  if (identityOfA->device == identityOfB->device && identityOfA->node == identityOfB->node) {
    return true;
  }
  const std::int64_t size = identityOfA->size;
  if (size != identityOfB->size) return false;
  if (size < kLargeBytes) return Comparison(a, b).Same(size);
  const Pair pair = std::minmax(*identityOfA, *identityOfB);
  {
    const std::lock_guard lock(mutex_);
    const auto known = known_.find(pair);
    if (known != known_.end()) return known->second;
  }
  const bool same = Comparison(a, b).Same(size);
  const std::lock_guard lock(mutex_);
  if (known_.size() >= kMostKnown) known_.clear();
  known_.emplace(pair, same);
  return same;
}

bool ContentComparison::Same(const std::string& a, const std::string& b) {
  return Same(a, IdentityOf(a), b, IdentityOf(b));
}

std::vector<std::size_t> ContentComparison::Different(const std::vector<std::string>& paths,
                                                      std::size_t most) {
  std::vector<std::size_t> different;
  std::vector<std::optional<Identity>> identities;  // of the different ones
  for (std::size_t i = 0; i < paths.size() && different.size() < most; ++i) {
    const std::optional<Identity> identity = IdentityOf(paths[i]);
    std::size_t earlier = 0;
    while (earlier < different.size() &&
           !Same(paths[different[earlier]], identities[earlier], paths[i], identity)) {
      ++earlier;
    }
    if (earlier < different.size()) continue;
    different.push_back(i);
    identities.push_back(identity);
  }
  return different;
}

}  // namespace velmora::media
