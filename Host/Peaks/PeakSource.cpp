#include "Peaks/PeakSource.h"

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

#include "Base/FileAccess.h"
#include "Media/WaveHeader.h"

namespace velmora::peaks {
namespace {

/// Read at once. Larger blocks fall out of the processor's own memory before they are looked at.
constexpr std::size_t kBlockBytes = std::size_t{256} << 10;

std::size_t FittingFrames(std::size_t frameBytes) {
  return std::max<std::size_t>(kBlockBytes / frameBytes, 1);
}

std::optional<SampleForm> FormOf(int encoding) {
  switch (encoding) {
    case SF_FORMAT_PCM_16:
      return SampleForm::Integers16;
    case SF_FORMAT_PCM_24:
      return SampleForm::Integers24;
    case SF_FORMAT_PCM_32:
      return SampleForm::Integers32;
    case SF_FORMAT_FLOAT:
      return SampleForm::Floats32;
    default:
      return std::nullopt;
  }
}

/// The form of a wave file whose samples lie where its header says, as libsndfile sees them too.
std::optional<SampleForm> PlainForm(const media::SoundFile& sound,
                                    const std::optional<media::WaveHeader>& header) {
  const SF_INFO& info = sound.Info();
  const std::optional<SampleForm> form = FormOf(sound.Encoding());
  if (std::endian::native != std::endian::little || !form || !header) return std::nullopt;
  if (sound.HasForeignByteOrder() || header->channels != info.channels ||
      header->Frames() != info.frames ||
      header->ContainerBytes() != static_cast<std::int32_t>(BytesOf(*form)) ||
      header->blockAlign % header->channels != 0) {
    return std::nullopt;
  }
  return form;
}

/// Reads blocks of frames and shares each out to the stretches that it touches.
/// @param fill reads frames: (first, count) to how many there were
/// @param peakOf the peak of some frames of the last block: (first in the block, count)
template <typename Fill, typename PeakOf>
std::int64_t ReadInBlocks(std::int64_t first, std::int64_t end, std::int64_t stretch,
                          std::int64_t blockFrames, Peak* peaks, const Stopped& stopped,
                          const Fill& fill, const PeakOf& peakOf) {
  std::int64_t frame = first;
  while (frame < end && !(stopped && stopped())) {
    const std::int64_t wanted = std::min(blockFrames, end - frame);
    const std::int64_t got = fill(frame, wanted);
    for (std::int64_t done = 0; done < got;) {
      const std::int64_t index = (frame + done - first) / stretch;
      const std::int64_t place = (frame + done - first) % stretch;
      const std::int64_t part = std::min(stretch - place, got - done);
      if (place == 0) peaks[index] = {};
      peaks[index].Add(peakOf(done, part));
      done += part;
    }
    frame += std::max<std::int64_t>(got, 0);
    if (got < wanted) break;
  }
  return frame < end ? (frame - first) / stretch : (end - first + stretch - 1) / stretch;
}

}  // namespace

PeakSource::PeakSource(std::unique_ptr<media::SoundFile> sound) : sound_(std::move(sound)) {
  frames_ = std::max<std::int64_t>(sound_->Info().frames, 0);
  const std::optional<media::WaveHeader> header = media::ReadWaveHeader(sound_->Stream());
  form_ = PlainForm(*sound_, header);
  if (form_) dataPlace_ = header->dataPlace;
}

std::unique_ptr<PeakSource> PeakSource::Open(const std::string& path) {
  std::string trouble;
  std::unique_ptr<media::SoundFile> sound = media::SoundFile::Open(path, trouble);
  if (sound == nullptr) return nullptr;
  return std::unique_ptr<PeakSource>(new PeakSource(std::move(sound)));
}

std::int64_t PeakSource::Read(std::int64_t first, std::int64_t end, std::int64_t stretch,
                              Peak* peaks, const Stopped& stopped) {
  end = std::min(end, frames_);
  if (first < 0 || first >= end) return 0;
  return form_ ? ReadPlain(first, end, stretch, peaks, stopped)
               : ReadBySoundFile(first, end, stretch, peaks, stopped);
}

std::int64_t PeakSource::ReadPlain(std::int64_t first, std::int64_t end, std::int64_t stretch,
                                   Peak* peaks, const Stopped& stopped) const {
  const auto channels = static_cast<std::size_t>(Channels());
  const std::size_t frameBytes = channels * BytesOf(*form_);
  const std::size_t blockFrames = FittingFrames(frameBytes);
  std::vector<std::uint8_t> block(blockFrames * frameBytes + kSpareBytes);
  const auto fill = [&](std::int64_t frame, std::int64_t count) {
    const std::int64_t place = dataPlace_ + frame * static_cast<std::int64_t>(frameBytes);
    const std::size_t got =
        ReadAt(Stream(), place, block.data(), static_cast<std::size_t>(count) * frameBytes);
    return static_cast<std::int64_t>(got / frameBytes);
  };
  const auto peakOf = [&](std::int64_t frame, std::int64_t count) {
    return PeakOfBytes(*form_, block.data() + static_cast<std::size_t>(frame) * frameBytes,
                       static_cast<std::size_t>(count) * channels);
  };
  return ReadInBlocks(first, end, stretch, static_cast<std::int64_t>(blockFrames), peaks, stopped,
                      fill, peakOf);
}

std::int64_t PeakSource::ReadBySoundFile(std::int64_t first, std::int64_t end, std::int64_t stretch,
                                         Peak* peaks, const Stopped& stopped) {
  const auto channels = static_cast<std::size_t>(Channels());
  const std::size_t blockFrames = FittingFrames(channels * sizeof(double));
  if (!sound_->Seek(first)) return 0;
  std::vector<double> block(blockFrames * channels);
  const auto fill = [&](std::int64_t /*frame*/, std::int64_t count) -> std::int64_t {
    return sound_->ReadFractions(block.data(), count);
  };
  const auto peakOf = [&](std::int64_t frame, std::int64_t count) {
    return PeakOfFractions(block.data() + static_cast<std::size_t>(frame) * channels,
                           static_cast<std::size_t>(count) * channels);
  };
  return ReadInBlocks(first, end, stretch, static_cast<std::int64_t>(blockFrames), peaks, stopped,
                      fill, peakOf);
}

}  // namespace velmora::peaks
