#pragma once

#include <cstddef>
#include <cstdint>

#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// Where the channels of one track lie in a block of interleaved frames, and what comes to them.
/// Channel c of the track, of `width` channels, takes channel c mod `sourceChannels`.
struct Placing {
  std::uint8_t* bytes = nullptr;   ///< of the track's first channel in the first frame
  std::size_t frameBytes = 0;      ///< from a frame to the next
  std::size_t width = 1;           ///< channels of the track
  std::size_t sourceChannels = 1;  ///< of the interleaved samples that are placed
  std::size_t frames = 0;
};

// Samples are little-endian. Integers lie at the left end of 32 bits, whatever their depth, and
// fractions of full scale are values from -1 to 1 and beyond. With n bits in the target:
//
//   to integers  value x 2^(n-1), to the nearest, ties to even, clipped; what is no number becomes
//   0 to floats    the value, to the nearest float, never clipped
//
// So an integer of n bits passes unchanged, one of 16 bits is multiplied by 256 on its way to 24,
// and floats are integers of n bits divided by 2^(n-1).

/// Samples that have the target's depth already.
void PlaceBytes(const std::uint8_t* samples, host::BounceDepth depth, const Placing& placing);

void PlaceIntegers(const std::int32_t* samples, host::BounceDepth depth, const Placing& placing);

void PlaceFractions(const double* samples, host::BounceDepth depth, const Placing& placing);

}  // namespace velmora::bounce
