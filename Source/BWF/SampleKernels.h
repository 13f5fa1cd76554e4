#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora {

/// The loops over samples that every conversion and every fade is made of, written for one kind of
/// processor. All sets give the same bytes for every input; the rules stand in SampleCodec.h.
/// Memory needs no alignment, and nothing outside the named stretches is read or written.
///
/// A value is a sample as a float. Written for a processor, the loops for 16 and 24 bits do 8
/// samples at a time. A conversion takes a third to an eighth of the portable ones' time, 0.2 ns a
/// sample and 0.3 under a gain: little beside reading and writing its bytes.
struct SampleKernels {
  const char* name;

  /// Values of `count` samples of so many bytes each.
  void (*decode)(const std::uint8_t* bytes, std::size_t sampleBytes, float* values,
                 std::size_t count);
  /// Values times full scale, truncated toward zero, as the low bytes of `count` samples.
  void (*encode)(const float* values, float fullScale, std::uint8_t* bytes, std::size_t sampleBytes,
                 std::size_t count);
  /// Each value times the factor, in doubles.
  void (*multiply)(float* values, double factor, std::size_t count);
};

/// The plain loops, which every processor runs and which take every depth.
[[nodiscard]] const SampleKernels& PortableKernels();

/// All sets that this machine runs, the fastest first, the portable one last.
[[nodiscard]] std::span<const SampleKernels* const> KernelsOfThisMachine();

/// The first of these.
[[nodiscard]] const SampleKernels& FastestKernels();

}  // namespace velmora
