#include "Media/ConversionOutputs.h"

#include "Media/SampleBlocks.h"

namespace velmora::media {

bool Outputs::Create(const std::vector<std::uint8_t>& bext, std::int32_t channels) {
  for (const ConversionTarget& target : targets_) {
    const std::int32_t written = target.channel ? 1 : channels;
    files_.push_back(std::make_unique<NewFile>(target.to));
    NewFile& file = *files_.back();
    if (!file.IsOpen() || !file.Write(WaveFileHead(ShapeOf(plan_, written), bext))) {
      result_.trouble = file.Trouble();
      return false;
    }
  }
  return true;
}

bool Outputs::Write(std::span<const std::int32_t> frames, std::int32_t channels,
                    const std::vector<std::int32_t>& places) {
  for (std::size_t i = 0; i < files_.size(); ++i) {
    PackSamples(frames, channels, places[i], plan_.bits, bytes_);
    if (!WriteBytes(i, bytes_)) return false;
  }
  return GoesOn();
}

bool Outputs::WriteBytes(std::size_t file, std::span<const std::uint8_t> bytes) {
  if (!files_[file]->Write(bytes)) {
    result_.trouble = files_[file]->Trouble();
    return false;
  }
  bytesDone_ += static_cast<std::int64_t>(bytes.size());
  return true;
}

bool Outputs::GoesOn() {
  result_.cancelled = progress_ && !progress_(bytesDone_);
  return !result_.cancelled;
}

void Outputs::Finish(std::int32_t channels) {
  for (std::size_t i = 0; i < files_.size(); ++i) {
    const std::int32_t written = targets_[i].channel ? 1 : channels;
    if (!files_[i]->Write(WaveFileTail(ShapeOf(plan_, written))) || !files_[i]->Close()) {
      result_.trouble = files_[i]->Trouble();
      return;
    }
  }
  for (const auto& file : files_) file->Keep();
  result_.done = true;
  result_.frames = plan_.frames;
}

bool Outputs::Blame(const std::string& why) {
  result_.trouble = source_ + ": " + why;
  return false;
}

}  // namespace velmora::media
