#include "BWF/KeptChunks.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "BWF/ChunkWalk.h"

namespace velmora {

/// Finds the chunks of a file again, one by one.
class KeptChunks::Finder {
 public:
  Finder(std::string path, std::int64_t riffEnd) : reader_(std::move(path)), walk_(riffEnd) {
    waypoints_[0] = walk_.Place();
  }

  /// Goes to the kept chunk of that index; false if the file has none.
  [[nodiscard]] bool Find(std::int64_t index, ChunkPlace& chunk) {
    const std::int64_t waypoint = std::min(index / stride_, reached_ - 1);
    if (index < nextIndex_ || waypoint * stride_ > nextIndex_) {
      walk_.GoOnFrom(waypoints_[static_cast<std::size_t>(waypoint)]);
      nextIndex_ = waypoint * stride_;
    }
    for (;;) {
      Remember();
      do {
        if (!walk_.Next(reader_, chunk)) return false;
      } while (!IsKeptChunk(chunk.identifier));
      if (nextIndex_++ == index) return true;
    }
  }

  /// The body of the chunk found last, as much of it as the file holds.
  [[nodiscard]] std::vector<std::uint8_t> Body(const ChunkPlace& chunk) {
    reader_.GoTo(chunk.body);
    return reader_.Bytes(chunk.size);
  }

 private:
  /// Notes the walk's place if it is the next waypoint. When there is no room for one more, every
  /// other one goes.
  void Remember() {
    if (nextIndex_ != reached_ * stride_) return;
    if (reached_ == static_cast<std::int64_t>(waypoints_.size())) {
      for (std::size_t i = 1; 2 * i < waypoints_.size(); ++i) waypoints_[i] = waypoints_[2 * i];
      reached_ /= 2;
      stride_ *= 2;
    }
    waypoints_[static_cast<std::size_t>(reached_++)] = walk_.Place();
  }

  HeaderReader reader_;
  ChunkWalk walk_;
  std::int64_t nextIndex_ = 0;  ///< of the kept chunk that the walk meets next
  /// Where the walk stood before the chunks of index 0, stride_, 2 * stride_ and so on.
  std::array<std::int64_t, 1024> waypoints_{};
  std::int64_t reached_ = 1;  ///< waypoints that are known
  std::int64_t stride_ = 1;
};

KeptChunks::KeptChunks() = default;
KeptChunks::~KeptChunks() = default;

void KeptChunks::Reset(std::string path, std::int64_t riffEnd, std::size_t count) {
  path_ = std::move(path);
  riffEnd_ = riffEnd;
  count_ = count;
  held_.clear();
  finder_.reset();
}

BwfChunk* KeptChunks::At(std::int64_t index) {
  if (index < 0 || std::cmp_greater_equal(index, count_)) return nullptr;
  const auto known = held_.find(index);
  if (known != held_.end()) return &known->second;
  try {
    return Read(index);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

BwfChunk* KeptChunks::Read(std::int64_t index) {
  if (finder_ == nullptr) finder_ = std::make_unique<Finder>(path_, riffEnd_);
  ChunkPlace place;
  if (!finder_->Find(index, place)) return nullptr;
  BwfChunk chunk;
  chunk.identifier = place.identifier;
  chunk.data = finder_->Body(place);
  chunk.size = static_cast<std::uint32_t>(chunk.data.size());
  return &held_.emplace(index, std::move(chunk)).first->second;
}

BwfChunk& KeptChunks::operator[](std::size_t index) {
  BwfChunk* const chunk = At(static_cast<std::int64_t>(index));
  if (chunk != nullptr) return *chunk;
  none_ = {};
  return none_;
}

}  // namespace velmora
