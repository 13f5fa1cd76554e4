#include "Otio/OtioObjects.h"

#include <cmath>
#include <utility>

#include "Session/SessionClock.h"

namespace velmora::otio {
namespace {

constexpr const char* kOurName = "velmora";
constexpr const char* kMediaKey = "DEFAULT_MEDIA";  // what the library names a clip's only file

}  // namespace

OtioObjects::OtioObjects(const SessionRates& rates) {
  const double rate = static_cast<double>(host::SessionClock(rates).SampleRate());
  rate_ =
      rate == std::floor(rate) && rate < 1e15 ? Json(static_cast<std::int64_t>(rate)) : Json(rate);
}

Json OtioObjects::Time(std::int64_t samples) const {
  return {{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate_}, {"value", samples}};
}

Json OtioObjects::Range(std::int64_t start, std::int64_t duration) const {
  return {
      {"OTIO_SCHEMA", "TimeRange.1"}, {"start_time", Time(start)}, {"duration", Time(duration)}};
}

Json OtioObjects::Clip(ClipParts parts) const {
  Json files = Json::object();
  files[kMediaKey] = {{"OTIO_SCHEMA", "ExternalReference.1"},
                      {"name", ""},
                      {"metadata", Json::object()},
                      {"available_range", parts.available ? Range(0, *parts.available) : Json()},
                      {"available_image_bounds", nullptr},
                      {"target_url", std::move(parts.url)}};
  return {{"OTIO_SCHEMA", "Clip.2"},
          {"name", std::move(parts.name)},
          {"metadata", Metadata(std::move(parts.facts))},
          {"source_range", Range(parts.start, parts.duration)},
          {"effects", Json::array()},
          {"markers", Json::array()},
          {"enabled", true},
          {"media_references", std::move(files)},
          {"active_media_reference_key", kMediaKey}};
}

Json OtioObjects::Gap(std::int64_t duration) const {
  return {{"OTIO_SCHEMA", "Gap.1"},
          {"name", ""},
          {"metadata", Json::object()},
          {"source_range", Range(0, duration)},
          {"effects", Json::array()},
          {"markers", Json::array()},
          {"enabled", true}};
}

Json OtioObjects::Transition(const char* name, std::int64_t before, std::int64_t after) const {
  return {{"OTIO_SCHEMA", "Transition.1"}, {"name", name},
          {"metadata", Json::object()},    {"in_offset", Time(before)},
          {"out_offset", Time(after)},     {"transition_type", "SMPTE_Dissolve"}};
}

Json OtioObjects::Marker(const std::string& name, std::int64_t position, Json facts) const {
  return {{"OTIO_SCHEMA", "Marker.2"},
          {"name", name},
          {"metadata", Metadata(std::move(facts))},
          {"color", "RED"},
          {"marked_range", Range(position, 0)}};
}

Json OtioObjects::Metadata(Json facts) {
  Json metadata = Json::object();
  metadata[kOurName] = std::move(facts);
  return metadata;
}

}  // namespace velmora::otio
