#pragma once

#include <atomic>

#include "Session/SessionPreset.h"
#include "View/HostInterfaces.h"

namespace velmora::desktop {

/// The session as the view asks for it: what the session bar shows is what these two answer. The
/// main thread sets the rates; a spot's thread may ask at the same time.
class SessionSettings final : public AAX_IController, public AAX_ITransport {
 public:
  [[nodiscard]] host::SessionRates Rates() const { return {sampleRate_, frameRate_}; }
  void SetRates(const host::SessionRates& rates) {
    sampleRate_ = rates.sampleRate;
    frameRate_ = rates.frameRate;
  }

  std::int32_t GetSampleRate(float* sampleRate) const override {
    *sampleRate = sampleRate_;
    return 0;
  }
  std::int32_t GetTimeCodeInfo(std::int32_t* frameRate, std::int32_t* offset) const override {
    *frameRate = frameRate_;
    *offset = 0;
    return 0;
  }

 private:
  std::atomic<float> sampleRate_ = host::SessionRates().sampleRate;
  std::atomic<std::int32_t> frameRate_ = host::SessionRates().frameRate;
};

}  // namespace velmora::desktop
