#pragma once

#include <cstdint>

// What the view asks of its host. A shell implements these classes by adapters of its own, which
// pass the questions on to the host's objects, and hands the adapters to the view. It never hands
// over a host's own objects, even where their classes have the same names: a call goes by the
// layout of the class that is declared here, and the host's classes have other layouts. The
// compiler cannot see the mistake, since only a pointer crosses the border.
//
// The shell owns its adapters and keeps them alive for as long as the view controller holds their
// addresses; the view calls them on the main thread only, and never deletes them. They stand
// outside any namespace because shells and the view's Objective-C headers name them by forward
// declaration.

// Answers for the session as a whole.
class AAX_IController {
 public:
  virtual ~AAX_IController() = default;

  // Stores the session's sample rate in Hz. The returned status is not looked at.
  virtual std::int32_t GetSampleRate(float* sampleRate) const = 0;
};

// Answers for the session's clock.
class AAX_ITransport {
 public:
  virtual ~AAX_ITransport() = default;

  // Stores the session's frame-rate code (0 to 7 are known here) and a start offset, which this
  // system does not use. The returned status is not looked at.
  virtual std::int32_t GetTimeCodeInfo(std::int32_t* frameRate, std::int32_t* offset) const = 0;
};

// Held for the host, never called.
class AAX_IEffectParameters {
 public:
  virtual ~AAX_IEffectParameters() = default;
};

// Held for the host, never called.
class AAX_IViewContainer {
 public:
  virtual ~AAX_IViewContainer() = default;
};
