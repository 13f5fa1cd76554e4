#include "Report/FactsJson.h"

#include <initializer_list>
#include <map>
#include <ostream>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "Report/EventStates.h"
#include "Report/Markup.h"
#include "Report/Tracks.h"
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

/// Files by numbers: a session names the same few again and again, and most share a folder.
class PathTable {
 public:
  /// Its number, or null for no path.
  [[nodiscard]] Json NumberOf(const std::string& path) {
    if (path.empty()) return {};
    const auto [entry, isNew] = numbers_.try_emplace(path, numbers_.size());
    if (isNew) paths_.push_back(&entry->first);
    return entry->second;
  }

  /// By number.
  [[nodiscard]] const std::vector<const std::string*>& Paths() const { return paths_; }
  /// Folder by number, and name.
  [[nodiscard]] Json Row(const std::string& text) {
    const std::string folder = text.substr(0, text.rfind('/') + 1);
    const auto [entry, isNew] = folderNumbers_.try_emplace(folder, folders_.size());
    if (isNew) folders_.push_back(folder);
    return Json::array({entry->second, text.substr(folder.size())});
  }
  /// Those that rows named so far.
  [[nodiscard]] const Json& Folders() const { return folders_; }

 private:
  std::unordered_map<std::string, std::size_t> numbers_, folderNumbers_;
  std::vector<const std::string*> paths_;
  Json folders_ = Json::array();
};

/// What a row ends with if there is something to tell.
void AppendShape(const host::RegionShape& shape, Json& row) {
  if (shape == host::RegionShape{}) return;
  row.insert(row.end(), {shape.fadeIn, shape.fadeOut, shape.gainDb});
}

/// Writes the object's members; only one row of a table is held at a time.
class FactsWriter {
 public:
  explicit FactsWriter(std::ostream& out) : out_(out) {}

  void Member(std::string_view key, Json value) {
    Key(key);
    Value(std::move(value));
  }
  /// A row for each of `elements`, of the values that `columns` names.
  template <class Elements, class ToRow>
  void Table(const char* key, std::initializer_list<const char*> columns, const Elements& elements,
             ToRow toRow) {
    columns_[key] = columns;
    Key(key);
    out_ << '[';
    const char* separator = "";
    for (const auto& element : elements) {
      out_ << std::exchange(separator, ",");
      Value(toRow(element));
    }
    out_ << ']';
  }
  void End() {
    Member("columns", std::move(columns_));
    out_ << "\n}";
  }

 private:
  void Key(std::string_view key) {
    out_ << separator_ << '"' << key << "\":";
    separator_ = ",\n";
  }
  void Value(Json value) { out_ << ScriptJson(host::JsonText(std::move(value))); }

  std::ostream& out_;
  std::string_view separator_ = "{\n";
  Json columns_ = Json::object();
};

/// By number. Those that events name.
std::map<std::int32_t, const host::RecordedEvent*> SourcesOf(const host::SpotRecord& record) {
  std::map<std::int32_t, const host::RecordedEvent*> sources;
  for (const host::RecordedEvent& event : record.events) {
    if (event.source) sources.emplace(*event.source, &event);
  }
  return sources;
}

void WriteSources(const host::SpotRecord& record, PathTable& paths, FactsWriter& facts) {
  facts.Table("sources", {"source", "name", "path"}, SourcesOf(record), [&](const auto& entry) {
    const auto& [source, event] = entry;
    return Json::array({source, event->name, paths.NumberOf(event->path)});
  });
}

void WriteEvents(const host::TargetInput& input, FactsWriter& facts) {
  const std::vector<EventState> states = StatesOf(input);
  std::size_t place = 0;
  facts.Table("events",
              {"entry", "kind", "state", "source", "track", "position", "end", "fadeIn", "fadeOut",
               "gainDb"},
              input.record.events, [&](const host::RecordedEvent& event) {
                Json row = {event.entry, event.kind, NameOf(states[place++])};
                if (!event.IsCut()) return row;
                row.insert(row.end(), {OrNull(event.source), input.record.TrackNumber(event.track),
                                       event.position, event.end});
                AppendShape({event.fadeIn, event.fadeOut, event.gainDb}, row);
                return row;
              });
}

void WriteRegions(const host::TargetInput& input, PathTable& paths, FactsWriter& facts) {
  facts.Table("regions",
              {"name", "path", "track", "position", "start", "stop", "event", "piece", "fadeIn",
               "fadeOut", "gainDb"},
              input.session.Regions(), [&](const host::SessionRegion& region) {
                const std::optional<host::RegionOrigin>& origin = region.origin;
                Json row = {region.name,
                            paths.NumberOf(region.path),
                            input.record.TrackNumber(region.track),
                            region.position,
                            region.start,
                            region.stop,
                            origin ? Json(origin->event) : Json(),
                            origin ? Json(NameOf(origin->piece)) : Json()};
                AppendShape(region.shape, row);
                return row;
              });
}

void WriteFiles(const ReportData& data, PathTable& paths, FactsWriter& facts) {
  facts.Table("files", {"what", "state", "event", "path", "folder", "bytes", "sha256"}, data.files,
              [&](const FileRow& file) {
                Json row = {file.what, file.state, OrNull(file.event), paths.NumberOf(file.path),
                            file.isFolder};
                if (!file.sum.sha256.empty()) {
                  row.insert(row.end(), {file.sum.bytes, file.sum.sha256});
                }
                return row;
              });
}

void WriteMessages(const ReportData& data, FactsWriter& facts) {
  facts.Table("messages",
              {"weight", "kind", "code", "line", "event", "entry", "text", "effect", "remedy"},
              data.messages, [](const MessageRow& row) {
                return Json{NameOf(row.weight), row.kind,           OrNull(row.code),
                            OrNull(row.line),   OrNull(row.event),  OrNull(row.entry),
                            row.text,           OrNull(row.effect), OrNull(row.remedy)};
              });
}

}  // namespace

void WriteFacts(const host::TargetInput& input, const ReportData& data, std::ostream& out) {
  const host::SpotRecord& record = input.record;
  FactsWriter facts(out);
  PathTable paths;
  facts.Member("project", ProjectJson(record));
  facts.Member("rates", RatesJson(input));
  facts.Member("plan", record.isPlan);
  facts.Member("options", OptionsJson(record.options));
  facts.Member("summary", SummaryJson(input.session.Summary()));
  facts.Table("tracks", {"track", "cuts", "regions", "first", "end"}, TracksOf(input),
              [](const TrackRow& row) {
                Json json = {row.number, row.cuts, row.regions};
                if (row.regions > 0) json.insert(json.end(), {row.first, row.end});
                return json;
              });
  WriteSources(record, paths, facts);
  WriteEvents(input, facts);
  WriteRegions(input, paths, facts);
  WriteFiles(data, paths, facts);
  WriteMessages(data, facts);
  facts.Table("paths", {"folder", "name"}, paths.Paths(),
              [&](const std::string* path) { return paths.Row(*path); });
  facts.Member("folders", paths.Folders());
  facts.End();
}

}  // namespace velmora::report
