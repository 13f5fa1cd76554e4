#include "Report/FactsJson.h"

#include <map>
#include <ostream>
#include <string_view>

#include "Report/EventStates.h"
#include "Report/Markup.h"
#include "Session/SessionClock.h"
#include "Session/SessionJson.h"

namespace velmora::report {
namespace {

using host::Json;

template <class Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json OrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json ProjectJson(const host::SpotRecord& record) {
  Json constants = Json::object();
  for (std::size_t id = 0; id < record.constants.size(); ++id) {
    constants[kProjectConstants[id].keyword] = OrNull(record.constants[id]);
  }
  return {{"path", OrNull(record.projectPath)},
          {"title", record.title},
          {"constants", std::move(constants)}};
}

Json RatesJson(const host::TargetInput& input) {
  const host::SessionClock clock(input.rates);
  const double projectRate = input.record.projectRate;
  return {{"sampleRate", input.rates.sampleRate},
          {"frameRate", input.rates.frameRate},
          {"frameRateName", clock.Rate().name},
          {"projectRate", projectRate > 0 ? Json(projectRate) : Json()}};
}

Json OptionsJson(const host::RecordedOptions& options) {
  return {{"bitDepth", options.bitDepth},
          {"fades", options.fades},
          {"gain", options.gain},
          {"native", options.native},
          {"copyTo", OrNull(options.copyFolder)},
          {"position", options.position},
          {"timelineOffset", options.timelineOffset}};
}

Json TracksJson(const host::TargetInput& input) {
  std::map<std::int64_t, std::size_t> regions;
  for (const host::SessionRegion& region : input.session.Regions()) ++regions[region.track];
  Json tracks = Json::array();
  for (const auto& [track, count] : regions) {
    tracks.push_back(
        {{"track", track}, {"number", input.record.TrackNumber(track)}, {"regions", count}});
  }
  return tracks;
}

Json EventJson(const host::RecordedEvent& event, const host::SpotRecord& record, bool isPlaced) {
  Json json = {{"event", event.event},       {"entry", event.entry},
               {"kind", event.kind},         {"name", event.name},
               {"on", event.isOn},           {"missing", event.isMissing},
               {"placed", isPlaced},         {"source", OrNull(event.source)},
               {"file", OrNull(event.path)}, {"track", nullptr},
               {"position", nullptr},        {"end", nullptr},
               {"fadeIn", event.fadeIn},     {"fadeOut", event.fadeOut},
               {"gainDb", event.gainDb}};
  if (event.IsCut()) {
    json["track"] = record.TrackNumber(event.track);
    json["position"] = event.position;
    json["end"] = event.end;
  }
  return json;
}

Json FileJson(const FileRow& file) {
  const bool isKnown = !file.sum.sha256.empty();
  return {{"what", file.what},
          {"state", file.state},
          {"event", OrNull(file.event)},
          {"path", file.path},
          {"folder", file.isFolder},
          {"bytes", isKnown ? Json(file.sum.bytes) : Json()},
          {"sha256", OrNull(file.sum.sha256)}};
}

Json MessageJson(const MessageRow& row) {
  return {{"weight", NameOf(row.weight)},
          {"kind", row.kind},
          {"code", OrNull(row.code)},
          {"line", OrNull(row.line)},
          {"event", OrNull(row.event)},
          {"entry", OrNull(row.entry)},
          {"text", row.text},
          {"effect", OrNull(row.effect)},
          {"remedy", OrNull(row.remedy)}};
}

/// Writes the object's members; only one element of an array is held at a time.
class FactsWriter {
 public:
  explicit FactsWriter(std::ostream& out) : out_(out) {}

  void Member(std::string_view key, Json value) {
    Key(key);
    Value(std::move(value));
  }
  template <class ToJson>
  void Array(std::string_view key, std::size_t count, ToJson toJson) {
    Key(key);
    out_ << '[';
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) out_ << ',';
      Value(toJson(i));
    }
    out_ << ']';
  }
  void End() { out_ << "\n}"; }

 private:
  void Key(std::string_view key) {
    out_ << separator_ << '"' << key << "\":";
    separator_ = ",\n";
  }
  void Value(Json value) { out_ << ScriptJson(host::JsonText(std::move(value))); }

  std::ostream& out_;
  std::string_view separator_ = "{\n";
};

}  // namespace

void WriteFacts(const host::TargetInput& input, const ReportData& data, std::ostream& out) {
  const host::SpotRecord& record = input.record;
  const std::vector<host::SessionRegion>& regions = input.session.Regions();
  const std::vector<EventState> states = StatesOf(input);
  FactsWriter facts(out);
  facts.Member("project", ProjectJson(record));
  facts.Member("rates", RatesJson(input));
  facts.Member("plan", record.isPlan);
  facts.Member("options", OptionsJson(record.options));
  facts.Member("summary", SummaryJson(input.session.Summary()));
  facts.Member("tracks", TracksJson(input));
  facts.Array("regions", regions.size(), [&](std::size_t i) {
    Json region = RegionJson(i, regions[i]);
    region["track"] = regions[i].track;
    return region;
  });
  facts.Array("events", record.events.size(), [&](std::size_t i) {
    return EventJson(record.events[i], record, states[i] == EventState::Placed);
  });
  facts.Array("files", data.files.size(), [&](std::size_t i) { return FileJson(data.files[i]); });
  facts.Array("messages", data.messages.size(),
              [&](std::size_t i) { return MessageJson(data.messages[i]); });
  facts.End();
}

}  // namespace velmora::report
