#pragma once

#include <cstdint>
#include <vector>

#include "BWF/AES31BWF.h"

namespace velmora {

/// Frames of a file, one after the other, as GetSampleAt gives them, for whoever needs a long run
/// of them. Numbers of frames have 64 bits, of which the low 32 count.
///
/// GetSampleAt seeks for nearly every sample, and each seek is a call to the system. A run reads
/// whole blocks where that gives the same samples, which it does for files with whole bytes for a
/// sample and no gaps; everything else goes through GetSampleAt. A fade takes an eightieth of the
/// time that way. Afterwards the file's stream may stand anywhere: it is to be closed.
class FrameRun {
 public:
  /// @param first    the number of the run's first frame in the file
  /// @param channels that are wanted of each frame; those that the file lacks are silent
  FrameRun(AES31BWF& file, std::int64_t first, std::uint32_t channels);

  /// Takes the memory that reading so many frames at once needs, so that none lacks later.
  void Reserve(std::int64_t frames);

  /// Reads frames of the run, counted from its first one, into `values`, channel by channel. The
  /// file's stream has to be open. What could not be read the file's TakeReadError tells.
  void Read(std::int64_t begin, std::int64_t frames, float* values);

  /// The same for two runs, whose samples are read in turns, this run's before the other's. Where
  /// both are of one file they move one stream, and the order of the reads matters.
  void ReadWith(FrameRun& other, std::int64_t begin, std::int64_t frames, float* values,
                float* otherValues);

 private:
  /// The low 32 bits of a frame's number in the file, as GetSampleAt takes it.
  [[nodiscard]] std::int32_t FrameAt(std::int64_t begin) const;
  [[nodiscard]] bool IsInFile(std::int64_t begin) const;
  /// How many frames from `begin` on, at most `frames`, lie all inside the file or all outside.
  [[nodiscard]] std::int64_t CountAlike(std::int64_t begin, std::int64_t frames) const;
  /// Where the file holds a frame.
  [[nodiscard]] std::int64_t PlaceOf(std::int64_t begin) const;
  float SampleAt(std::int64_t begin, std::uint32_t channel);
  /// Frames that all lie inside the file, which is one for blocks. False after a read error: then
  /// nothing has changed.
  [[nodiscard]] bool ReadBlock(std::int64_t begin, std::int64_t frames, float* values);
  /// The same from a place, past the stream, which stays where it stands.
  [[nodiscard]] bool ReadBytes(std::int64_t place, std::int64_t frames, float* values);
  /// Frames that lie all inside the file or all outside.
  void ReadAlike(std::int64_t begin, std::int64_t frames, float* values);
  /// Reads frames that are alike, those of another run on this file being outside it.
  void ReadAlone(std::int64_t begin, std::int64_t frames, float* values);
  /// Moves the stream to where reading this frame leaves it.
  void LeaveStreamAfter(std::int64_t frame);
  [[nodiscard]] bool ReadBlocksInTurns(FrameRun& other, std::int64_t begin, std::int64_t frames,
                                       float* values, float* otherValues);
  void ReadSamplesInTurns(FrameRun& other, std::int64_t begin, std::int64_t frames, float* values,
                          float* otherValues);
  /// Of frames that both runs read in turns: how many come before the next sample whose place
  /// equals the tracked position, so that GetSampleAt reads it from where the stream stands.
  [[nodiscard]] std::int64_t CountBeforeStale(const FrameRun& other, std::int64_t begin,
                                              std::int64_t frames) const;

  AES31BWF& file_;
  std::int64_t first_;
  std::uint32_t channels_;
  std::int64_t sampleBytes_;
  bool forBlocks_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace velmora
