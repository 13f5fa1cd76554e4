#pragma once

#include <atomic>

#include "View/HostInterfaces.h"
#include "Session/SessionPreset.h"

namespace velmora::desktop {

/// The session as the view asks for it: what the session bar shows is what these two answer.
class SessionSettings : public AAX_IController, public AAX_ITransport {
 public:
  velmora::host::SessionRates Rates() const { return {sampleRate_, frameRate_}; }
  void SetRates(const velmora::host::SessionRates& rates) {
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
  std::atomic<float> sampleRate_ = velmora::host::SessionRates().sampleRate;
  std::atomic<std::int32_t> frameRate_ = velmora::host::SessionRates().frameRate;
};

}  // namespace velmora::desktop
