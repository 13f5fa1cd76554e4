#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Session/JsonText.h"
#include "Spot/SessionRates.h"

namespace velmora::otio {

using host::Json;

/// What a clip plays.
struct ClipParts {
  std::string name;
  std::string url;
  std::int64_t start = 0;                 ///< first sample in the file
  std::int64_t duration = 0;              ///< samples
  std::optional<std::int64_t> available;  ///< samples of the file, none if that is not known
  Json facts;                             ///< under our name in the metadata
};

/// Makes the objects of OpenTimelineIO, in the versions that its library of 0.15 and later writes.
/// All times are whole samples at one rate.
class OtioObjects {
 public:
  explicit OtioObjects(const SessionRates& rates);

  [[nodiscard]] Json Time(std::int64_t samples) const;
  [[nodiscard]] Json Range(std::int64_t start, std::int64_t duration) const;
  [[nodiscard]] Json Clip(ClipParts parts) const;
  [[nodiscard]] Json Gap(std::int64_t duration) const;
  /// Lies over the last `before` samples of what stands before it, and over the first `after` of
  /// what follows.
  [[nodiscard]] Json Transition(const char* name, std::int64_t before, std::int64_t after) const;
  [[nodiscard]] Json Marker(const std::string& name, std::int64_t position, Json facts) const;

  /// Metadata with our facts under our own name, so that they meet nobody else's.
  [[nodiscard]] static Json Metadata(Json facts);

 private:
  Json rate_;
};

}  // namespace velmora::otio
