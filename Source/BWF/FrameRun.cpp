#include "BWF/FrameRun.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <typeinfo>
#include <utility>

#include "BWF/SampleKernels.h"
#include "Base/FileAccess.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

/// Whether neighbouring samples of the file are neighbouring bytes whose places fit the 32 bits
/// that GetSampleAt works them out in. A class derived from AES31BWF may read in ways of its own.
bool IsForBlocks(const AES31BWF& file, std::uint32_t channels) {
  const BwfFormat& format = file.format;
  const std::uint32_t sampleBytes = format.bitsPerSample / 8U;
  return typeid(file) == typeid(AES31BWF) && format.formatTag == kIntegerPcm && channels >= 1 &&
         format.channels == channels && format.bitsPerSample % 8 == 0 && sampleBytes >= 1 &&
         sampleBytes <= 4 && format.blockAlign == sampleBytes * channels &&
         std::cmp_equal(file.bytesPerSample, sampleBytes) &&
         file.frames <= std::uint64_t{std::numeric_limits<std::int32_t>::max()} / format.blockAlign;
}

}  // namespace

FrameRun::FrameRun(AES31BWF& file, std::int64_t first, std::uint32_t channels)
    : file_(file),
      first_(first),
      channels_(channels),
      sampleBytes_(file.format.bitsPerSample / 8),
      forBlocks_(IsForBlocks(file, channels)) {}

void FrameRun::Reserve(std::int64_t frames) {
  if (forBlocks_) bytes_.reserve(static_cast<std::size_t>(frames * channels_ * sampleBytes_));
}

std::int32_t FrameRun::FrameAt(std::int64_t begin) const {
  return static_cast<std::int32_t>(WrapAdd(first_, begin));
}

bool FrameRun::IsInFile(std::int64_t begin) const {
  const std::int32_t frame = FrameAt(begin);
  return frame >= 0 && std::cmp_less(frame, file_.frames);
}

std::int64_t FrameRun::CountAlike(std::int64_t begin, std::int64_t frames) const {
  constexpr std::int64_t kEnd = std::int64_t{1} << 31;  // the number after the last frame's
  const std::int64_t frame = FrameAt(begin);
  const std::int64_t end = frame < 0         ? 0
                           : IsInFile(begin) ? static_cast<std::int64_t>(file_.frames)
                                             : kEnd;
  return std::min(frames, end - frame);
}

std::int64_t FrameRun::PlaceOf(std::int64_t begin) const {
  return file_.dataOffset + std::int64_t{FrameAt(begin)} * file_.format.blockAlign;
}

float FrameRun::SampleAt(std::int64_t begin, std::uint32_t channel) {
  return file_.GetSampleAt(FrameAt(begin), channel);
}

void FrameRun::Read(std::int64_t begin, std::int64_t frames, float* values) {
  while (frames > 0) {
    const std::int64_t count = forBlocks_ ? CountAlike(begin, frames) : frames;
    ReadAlike(begin, count, values);
    begin += count;
    frames -= count;
    values += count * channels_;
  }
}

void FrameRun::ReadAlike(std::int64_t begin, std::int64_t frames, float* values) {
  if (forBlocks_ && !IsInFile(begin)) {
    std::fill_n(values, frames * channels_, 0.0F);
    return;
  }
  if (forBlocks_ && ReadBlock(begin, frames, values)) return;
  for (std::int64_t i = begin; i < begin + frames; ++i) {
    for (std::uint32_t c = 0; c < channels_; ++c) *values++ = SampleAt(i, c);
  }
}

bool FrameRun::ReadBlock(std::int64_t begin, std::int64_t frames, float* values) {
  const std::int64_t place = PlaceOf(begin);
  // Places and the tracked position grow alike. Where they differ they differ for good, and every
  // read by GetSampleAt seeks first: then it does not matter where the stream stands.
  if (place != file_.position) return ReadBytes(place, frames, values);
  const std::int64_t stood = ftello(file_.stream.get());
  if (!ReadBytes(stood, frames, values)) return false;
  file_.SeekTo(stood + static_cast<std::int64_t>(bytes_.size()));
  return true;
}

bool FrameRun::ReadBytes(std::int64_t place, std::int64_t frames, float* values) {
  constexpr std::uint8_t kPastTheEnd = 0xFF;  // as ReadSample takes such a byte
  const auto samples = static_cast<std::size_t>(frames * channels_);
  const auto sampleBytes = static_cast<std::size_t>(sampleBytes_);
  bytes_.resize(samples * sampleBytes);
  const std::size_t got = ReadAt(file_.stream.get(), place, bytes_.data(), bytes_.size());
  if (got < bytes_.size() && errno != 0) return false;
  std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(got), bytes_.end(), kPastTheEnd);
  FastestKernels().decode(bytes_.data(), sampleBytes, values, samples);
  file_.position += static_cast<std::int64_t>(bytes_.size());
  return true;
}

void FrameRun::ReadWith(FrameRun& other, std::int64_t begin, std::int64_t frames, float* values,
                        float* otherValues) {
  const bool oneFile = &file_ == &other.file_;
  while (frames > 0) {
    std::int64_t count = frames;
    if (oneFile && forBlocks_) {
      count = std::min(CountAlike(begin, frames), other.CountAlike(begin, frames));
    }
    if (!oneFile && (forBlocks_ || other.forBlocks_)) {
      Read(begin, count, values);
      other.Read(begin, count, otherValues);
    } else if (forBlocks_ && !(IsInFile(begin) && other.IsInFile(begin))) {
      ReadAlone(begin, count, values);
      other.ReadAlone(begin, count, otherValues);
    } else if (!forBlocks_) {
      ReadSamplesInTurns(other, begin, count, values, otherValues);
    } else {
      const std::int64_t plain = CountBeforeStale(other, begin, count);
      count = std::max<std::int64_t>(plain, 1);
      if (plain == 0 || !ReadBlocksInTurns(other, begin, count, values, otherValues)) {
        ReadSamplesInTurns(other, begin, count, values, otherValues);
      }
    }
    begin += count;
    frames -= count;
    values += count * channels_;
    otherValues += count * channels_;
  }
}

void FrameRun::ReadAlone(std::int64_t begin, std::int64_t frames, float* values) {
  const bool seeks = IsInFile(begin) && PlaceOf(begin) != file_.position;
  ReadAlike(begin, frames, values);
  if (seeks) LeaveStreamAfter(begin + frames - 1);
}

void FrameRun::LeaveStreamAfter(std::int64_t frame) {
  file_.SeekTo(PlaceOf(frame) + file_.format.blockAlign);
}

std::int64_t FrameRun::CountBeforeStale(const FrameRun& other, std::int64_t begin,
                                        std::int64_t frames) const {
  // Sample k of this run is read when the position has grown by 2 k samples, that of the other run
  // when it has grown by 2 k + 1. Its place has grown by k.
  const std::int64_t samples = frames * channels_;
  std::int64_t count = frames;
  const auto meet = [&](std::int64_t ahead, std::int64_t late) {
    const std::int64_t sample = ahead / sampleBytes_ - late;
    if (ahead % sampleBytes_ == 0 && sample >= 0 && sample < samples) {
      count = std::min(count, sample / channels_);
    }
  };
  meet(PlaceOf(begin) - file_.position, 0);
  meet(other.PlaceOf(begin) - file_.position, 1);
  return count;
}

bool FrameRun::ReadBlocksInTurns(FrameRun& other, std::int64_t begin, std::int64_t frames,
                                 float* values, float* otherValues) {
  const std::int64_t tracked = file_.position;
  if (!ReadBytes(PlaceOf(begin), frames, values) ||
      !other.ReadBytes(other.PlaceOf(begin), frames, otherValues)) {
    file_.position = tracked;
    return false;
  }
  other.LeaveStreamAfter(begin + frames - 1);
  return true;
}

void FrameRun::ReadSamplesInTurns(FrameRun& other, std::int64_t begin, std::int64_t frames,
                                  float* values, float* otherValues) {
  for (std::int64_t i = begin; i < begin + frames; ++i) {
    for (std::uint32_t c = 0; c < channels_; ++c) {
      *values++ = SampleAt(i, c);
      *otherValues++ = other.SampleAt(i, c);
    }
  }
}

}  // namespace velmora
