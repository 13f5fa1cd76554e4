#include "Otio/OtioObjects.h"

#include <cmath>
#include <utility>

#include "Base/Utf8.h"
#include "Otio/FileUrl.h"
#include "Session/SessionClock.h"

namespace velmora::otio {
namespace {

constexpr const char* kOurName = "velmora";
constexpr const char* kMediaKey = "DEFAULT_MEDIA";  // what the library names a clip's only file

Json RateOf(const SessionRates& rates) {
  const double rate = static_cast<double>(host::SessionClock(rates).SampleRate());
  const bool isWhole = rate == std::floor(rate) && rate < 1e15;
  return isWhole ? Json(static_cast<std::int64_t>(rate)) : Json(rate);
}

void SetTime(Json& time, std::int64_t samples) {
  time["value"] = samples;
}

void SetRange(Json& range, std::int64_t start, std::int64_t duration) {
  SetTime(range["start_time"], start);
  SetTime(range["duration"], duration);
}

}  // namespace

OtioObjects::OtioObjects(const SessionRates& rates)
    : rate_(RateOf(rates)),
      clip_(MakeClip()),
      gap_({{"OTIO_SCHEMA", "Gap.1"},
            {"name", ""},
            {"metadata", Json::object()},
            {"source_range", Range(0, 0)},
            {"effects", Json::array()},
            {"markers", Json::array()},
            {"enabled", true}}),
      transition_({{"OTIO_SCHEMA", "Transition.1"},
                   {"name", ""},
                   {"metadata", Json::object()},
                   {"in_offset", Time(0)},
                   {"out_offset", Time(0)},
                   {"transition_type", "SMPTE_Dissolve"}}),
      facts_(&clip_["metadata"][kOurName]),
      sourceRange_(&clip_["source_range"]),
      media_(&clip_["media_references"][kMediaKey]) {}

Json OtioObjects::MakeClip() const {
  Json media = Json::object();
  media[kMediaKey] = {{"OTIO_SCHEMA", "ExternalReference.1"}, {"name", ""},
                      {"metadata", Json::object()},           {"available_range", nullptr},
                      {"available_image_bounds", nullptr},    {"target_url", ""}};
  Json facts = {{"region", 0},      {"gainDb", 0.0},     {"event", nullptr},
                {"entry", nullptr}, {"source", nullptr}, {"piece", nullptr}};
  return {{"OTIO_SCHEMA", "Clip.2"},
          {"name", ""},
          {"metadata", Metadata(std::move(facts))},
          {"source_range", Range(0, 0)},
          {"effects", Json::array()},
          {"markers", Json::array()},
          {"enabled", true},
          {"media_references", std::move(media)},
          {"active_media_reference_key", kMediaKey}};
}

Json OtioObjects::Time(std::int64_t samples) const {
  return {{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate_}, {"value", samples}};
}

Json OtioObjects::Range(std::int64_t start, std::int64_t duration) const {
  return {
      {"OTIO_SCHEMA", "TimeRange.1"}, {"start_time", Time(start)}, {"duration", Time(duration)}};
}

const Json& OtioObjects::Clip(const ClipParts& parts) {
  const host::SessionRegion& region = parts.region;
  clip_["name"] = ValidUtf8(region.name);
  SetRange(*sourceRange_, parts.start, parts.duration);

  Json& facts = *facts_;
  facts["region"] = parts.index;
  facts["gainDb"] = region.shape.gainDb;
  const auto& origin = region.origin;
  facts["event"] = origin ? Json(origin->event) : Json();
  facts["entry"] = origin ? Json(origin->entry) : Json();
  facts["source"] = origin && origin->source ? Json(*origin->source) : Json();
  facts["piece"] = origin ? Json(NameOf(origin->piece)) : Json();

  Json& media = *media_;
  media["target_url"] = FileUrl(region.path);
  Json& available = media["available_range"];
  if (!parts.available) {
    available = nullptr;
  } else if (available.is_null()) {
    available = Range(0, *parts.available);
  } else {
    SetRange(available, 0, *parts.available);
  }
  return clip_;
}

const Json& OtioObjects::Gap(std::int64_t duration) {
  SetRange(gap_["source_range"], 0, duration);
  return gap_;
}

const Json& OtioObjects::Transition(const char* name, std::int64_t before, std::int64_t after) {
  transition_["name"] = name;
  SetTime(transition_["in_offset"], before);
  SetTime(transition_["out_offset"], after);
  return transition_;
}

Json OtioObjects::Marker(const std::string& name, std::int64_t position, Json facts) const {
  return {{"OTIO_SCHEMA", "Marker.2"},
          {"name", ValidUtf8(name)},
          {"metadata", Metadata(std::move(facts))},
          {"color", "RED"},
          {"marked_range", Range(position, 0)}};
}

Json OtioObjects::Metadata(Json facts) {
  Json metadata = Json::object();
  metadata[kOurName] = std::move(facts);
  return metadata;
}

std::string ObjectText(const Json& object) {
  // The handler spares an exception; texts are UTF-8 already.
  return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace velmora::otio
