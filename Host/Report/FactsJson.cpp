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

/// The files by their sources: many events share one.
Json SourcesJson(const host::SpotRecord& record) {
  std::map<std::int32_t, const std::string*> files;
  for (const host::RecordedEvent& event : record.events) {
    if (event.source) files.emplace(*event.source, &event.path);
  }
  Json sources = Json::array();
  for (const auto& [source, path] : files) {
    sources.push_back({{"source", source}, {"file", OrNull(*path)}});
  }
  return sources;
}

Json EventJson(const host::RecordedEvent& event, const host::SpotRecord& record, EventState state) {
  Json json = {{"event", event.event}, {"entry", event.entry},   {"kind", event.kind},
               {"name", event.name},   {"state", NameOf(state)}, {"source", OrNull(event.source)},
               {"track", nullptr},     {"position", nullptr},    {"end", nullptr}};
  if (event.IsCut()) {
    json["track"] = record.TrackNumber(event.track);
    json["position"] = event.position;
    json["end"] = event.end;
  }
  if (event.fadeIn != 0) json["fadeIn"] = event.fadeIn;
  if (event.fadeOut != 0) json["fadeOut"] = event.fadeOut;
  if (event.gainDb != 0) json["gainDb"] = event.gainDb;
  return json;
}

Json FileJson(const FileRow& file) {
  Json json = {{"what", file.what}, {"state", file.state}, {"path", file.path}};
  if (file.event) json["event"] = *file.event;
  if (file.isFolder) json["folder"] = true;
  if (file.sum.sha256.empty()) return json;
  json["bytes"] = file.sum.bytes;
  json["sha256"] = file.sum.sha256;
  return json;
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
  facts.Member("sources", SourcesJson(record));
  facts.Array("events", record.events.size(),
              [&](std::size_t i) { return EventJson(record.events[i], record, states[i]); });
  facts.Array("files", data.files.size(), [&](std::size_t i) { return FileJson(data.files[i]); });
  facts.Array("messages", data.messages.size(),
              [&](std::size_t i) { return MessageJson(data.messages[i]); });
  facts.End();
}

}  // namespace velmora::report
