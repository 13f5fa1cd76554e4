#pragma once

#include <vector>

#include "Media/Conversion.h"
#include "Media/ConversionOutputs.h"
#include "Media/ConversionPlan.h"
#include "Media/SoundFile.h"

namespace velmora::media {

/// Copies integer samples as they are. The source stands at its first wanted frame. False if it
/// failed or was cancelled, which `outputs` then know.
[[nodiscard]] bool CopyIntegers(const SoundFile& sound, const Plan& plan,
                                const std::vector<ConversionTarget>& targets, Outputs& outputs);

}  // namespace velmora::media
