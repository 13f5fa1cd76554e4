#include "Bounce/BounceFile.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "Bounce/BroadcastHeader.h"
#include "Bounce/TrackRenderer.h"

namespace velmora::bounce {
namespace {

// A block that stays in the processor's cache is the fastest. Where more files may sound than can
// be open at once, each block opens files anew, and large ones make that rare.
constexpr std::int64_t kBlockBytes = std::int64_t{1} << 19;
constexpr std::int64_t kBlockBytesOfManyFiles = std::int64_t{1} << 23;
constexpr std::int64_t kMostBlockFrames = std::int64_t{1} << 16;

class FileWriter {
 public:
  FileWriter(BouncePlan& plan, const BounceFile& file, AudioSink& sink,
             const host::TargetProgress& progress);
  BounceStop Write();

 private:
  [[nodiscard]] int WriteHeader();
  [[nodiscard]] std::int64_t NextSound() const;
  BounceStop WriteSilence(std::int64_t end);
  BounceStop WriteBlock();
  [[nodiscard]] bool GoesOn() const;

  BouncePlan& plan_;
  AudioSink& sink_;
  const host::TargetProgress& progress_;
  BroadcastFacts facts_;
  BroadcastSize size_;
  std::size_t frameBytes_ = 0;
  std::deque<TrackRenderer> tracks_;
  std::int64_t position_;
  std::vector<std::uint8_t> block_;
};

FileWriter::FileWriter(BouncePlan& plan, const BounceFile& file, AudioSink& sink,
                       const host::TargetProgress& progress)
    : plan_(plan), sink_(sink), progress_(progress), position_(plan.First()) {
  std::size_t channels = 0;
  for (const BounceTrack& track : file.tracks) {
    tracks_.emplace_back(plan, track, file.depth, channels * SampleBytes(file.depth));
    channels += track.width;
  }
  frameBytes_ = channels * SampleBytes(file.depth);
  facts_ = {file.depth,
            plan.SampleRate(),
            static_cast<std::uint32_t>(channels),
            plan.End() - plan.First(),
            plan.First(),
            file.description};
  size_ = SizeOf(facts_);
}

BounceStop FileWriter::Write() {
  if (!size_.complaint.empty()) return {size_.complaint, 0, false};
  if (const int error = WriteHeader(); error != 0) return {{}, error, false};
  while (position_ < plan_.End()) {
    const std::int64_t next = NextSound();
    BounceStop stop = next > position_ ? WriteSilence(next) : WriteBlock();
    if (stop.Happened()) return stop;
    if (!GoesOn()) return {{}, 0, true};
  }
  int error = sink_.Silence(size_.padBytes);
  if (error == 0) error = sink_.Finish();
  return {{}, error, false};
}

int FileWriter::WriteHeader() {
  const std::string header = BroadcastHeader(facts_, size_);
  return sink_.Write({reinterpret_cast<const std::uint8_t*>(header.data()), header.size()});
}

std::int64_t FileWriter::NextSound() const {
  std::int64_t next = plan_.End();
  for (const TrackRenderer& track : tracks_) {
    next = std::min(next, track.NextSound().value_or(next));
  }
  return next;
}

BounceStop FileWriter::WriteSilence(std::int64_t end) {
  const auto frameBytes = static_cast<std::int64_t>(frameBytes_);
  const std::int64_t atOnce = std::max<std::int64_t>(sink_.SilenceAtOnce() / frameBytes, 1);
  const std::int64_t frames = std::min(end - position_, atOnce);
  position_ += frames;
  return {{}, sink_.Silence(frames * frameBytes), false};
}

BounceStop FileWriter::WriteBlock() {
  const auto frameBytes = static_cast<std::int64_t>(frameBytes_);
  const std::int64_t bytes =
      tracks_.size() > plan_.Sources().MostOpen() ? kBlockBytesOfManyFiles : kBlockBytes;
  const std::int64_t most = std::clamp<std::int64_t>(bytes / frameBytes, 1, kMostBlockFrames);
  BounceBlock block;
  block.position = position_;
  block.end = position_ + std::min(most, plan_.End() - position_);
  block.frameBytes = frameBytes_;
  block_.assign(static_cast<std::size_t>(block.end - block.position) * frameBytes_, 0);
  block.bytes = block_.data();

  std::int64_t drawnUpTo = position_;
  for (TrackRenderer& track : tracks_) {
    if (!track.Draw(block)) return {plan_.Sources().Trouble(), 0, false};
    drawnUpTo = std::max(drawnUpTo, track.DrawnUpTo());
  }
  // What sounded in the session and not in the files is silence as any other.
  const auto drawn = static_cast<std::size_t>(drawnUpTo - position_) * frameBytes_;
  int error = sink_.Write({block_.data(), drawn});
  if (error == 0) error = sink_.Silence((block.end - drawnUpTo) * frameBytes);
  position_ = block.end;
  return {{}, error, false};
}

bool FileWriter::GoesOn() const {
  if (!progress_) return true;
  const double whole = static_cast<double>(plan_.End() - plan_.First());
  return progress_(static_cast<double>(position_ - plan_.First()) / whole);
}

}  // namespace

BounceStop WriteBounceFile(BouncePlan& plan, const BounceFile& file, AudioSink& sink,
                           const host::TargetProgress& progress) {
  return FileWriter(plan, file, sink, progress).Write();
}

}  // namespace velmora::bounce
