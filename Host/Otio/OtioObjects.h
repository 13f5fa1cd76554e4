#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Session/JsonText.h"
#include "Session/Session.h"
#include "Spot/SessionRates.h"

namespace velmora::otio {

using host::Json;

/// What a clip plays.
struct ClipParts {
  std::size_t index = 0;  ///< of the region
  const host::SessionRegion& region;
  std::int64_t start = 0;                 ///< first sample in the file
  std::int64_t duration = 0;              ///< samples
  std::optional<std::int64_t> available;  ///< samples of the file, none if that is not known
};

/// Makes the objects of OpenTimelineIO, in the versions that its library of 0.15 and later writes.
/// All times are whole samples at one rate.
///
/// A long session has hundreds of thousands of them, all alike, and building each anew would take
/// most of the time. So there is one of each kind, and each call changes what differs: what it
/// returns is valid until the next call.
class OtioObjects {
 public:
  explicit OtioObjects(const SessionRates& rates);
  OtioObjects(const OtioObjects&) = delete;
  OtioObjects& operator=(const OtioObjects&) = delete;

  [[nodiscard]] Json Time(std::int64_t samples) const;
  [[nodiscard]] Json Range(std::int64_t start, std::int64_t duration) const;
  [[nodiscard]] const Json& Clip(const ClipParts& parts);
  [[nodiscard]] const Json& Gap(std::int64_t duration);
  /// Lies over the last `before` samples of what stands before it, and over the first `after` of
  /// what follows.
  [[nodiscard]] const Json& Transition(const char* name, std::int64_t before, std::int64_t after);
  [[nodiscard]] Json Marker(const std::string& name, std::int64_t position, Json facts) const;

  /// Metadata with our facts under our own name, so that they meet nobody else's.
  [[nodiscard]] static Json Metadata(Json facts);

 private:
  [[nodiscard]] Json MakeClip() const;

  Json rate_;
  Json clip_;
  Json gap_;
  Json transition_;
  // Parts of clip_.
  Json* facts_;
  Json* sourceRange_;
  Json* media_;
};

/// An object as text on one line. Texts in it must be UTF-8.
[[nodiscard]] std::string ObjectText(const Json& object);

}  // namespace velmora::otio
