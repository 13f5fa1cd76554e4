#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::host {

/// How targets name a region in what they tell: `region 4 "Wind" (track 2, 00:00:10:00)`. The
/// number is its index in Session::Regions(). The name stands as the project has it, so the text
/// may hold any bytes.
[[nodiscard]] std::string RegionLabel(const TargetInput& input, std::size_t region);

// What targets tell of a region, in the same words. Each stands after its label and ": ".

inline constexpr const char* kHasNoLength = "it has no length and is left out";

/// The file of a region has another sample rate than the session, both in Hz.
[[nodiscard]] std::string OfAnotherRate(const SessionRegion& region, std::int64_t fileRate,
                                        std::int64_t sessionRate);

/// What is odd about how a region with a length sounds: that it begins before its file, that it
/// runs past it, which has `frames` samples, and that it is a fade piece of a wave file of 8 bits.
/// The system writes these with signs, and wave files have none there.
[[nodiscard]] std::vector<std::string> OddAbout(const SessionRegion& region, std::int64_t frames,
                                                bool isWaveOf8Bits);

}  // namespace velmora::host
