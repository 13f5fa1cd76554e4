#include "Spot/SpotChoices.h"

#include "Base/Wrapping.h"
#include "Timecode/AdlTime.h"

namespace velmora {

SpotOptions BuildSpotOptions(const SpotChoices& choices, const SessionRates& rates) {
  SpotOptions options;
  options.sessionRate = Truncate<std::int32_t>(rates.sampleRate);
  options.positionMode = choices.positionMode;
  options.frameRate = rates.frameRate;
  options.doFades = choices.fades;
  options.doGain = choices.gain;
  const auto samples = [&](const std::string& timecode) {
    return TimecodeToSamples(timecode.c_str(), options.frameRate, options.sessionRate);
  };
  options.offsetSamples = samples(choices.offset);
  options.startSamples = samples(choices.start);
  const bool is16Bit = choices.depth == 0;
  options.bitDepth = is16Bit ? 16 : 24;
  options.depthSuffix = is16Bit ? "_16bit" : "_24bit";
  options.copyFolder = choices.copyFolder;
  options.copySource = choices.copy && !choices.copyFolder.empty() ? 1 : 0;
  return options;
}

}  // namespace velmora
