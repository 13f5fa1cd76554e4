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
          {"timecode",
           {{"nominal", clock.Rate().nominal},
            {"numerator", clock.Rate().numerator},
            {"denominator", clock.Rate().denominator},
            {"drop", clock.Rate().dropFrame}}},
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

/// Paths as whole texts, or by numbers: a session names the same few again and again, and most
/// share a folder.
class PathTable {
 public:
  explicit PathTable(FactsForm form) : form_(form) {}

  /// The path itself or its number, null for none.
  [[nodiscard]] Json Tell(const std::string& path) {
    if (path.empty()) return {};
    if (form_ == FactsForm::Objects) return path;
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
  const FactsForm form_;
  std::unordered_map<std::string, std::size_t> numbers_, folderNumbers_;
  std::vector<const std::string*> paths_;
  Json folders_ = Json::array();
};

/// What there is to tell only of few: 0 is told by leaving it out.
template <class Number>
Json OrNothing(Number value) {
  return value == 0 ? Json() : Json(value);
}

/// Writes the object's members; only one row of a table is held at a time.
class FactsWriter {
 public:
  FactsWriter(FactsForm form, std::ostream& out) : form_(form), out_(out) {}

  void Member(std::string_view key, Json value) {
    Key(key);
    Value(std::move(value));
  }
  /// A row for each of `elements`. @param toRow gives an array of the values that `columns` names
  template <class Elements, class ToRow>
  void Table(const char* key, std::initializer_list<const char*> columns, const Elements& elements,
             ToRow toRow) {
    if (form_ == FactsForm::Rows) columns_[key] = columns;
    Key(key);
    out_ << '[';
    const char* separator = "";
    for (const auto& element : elements) {
      out_ << std::exchange(separator, ",");
      Value(form_ == FactsForm::Rows ? WithoutEnd(toRow(element)) : Named(columns, toRow(element)));
    }
    out_ << ']';
  }
  void End() {
    if (form_ == FactsForm::Rows) Member("columns", std::move(columns_));
    out_ << "\n}";
  }

 private:
  /// A row without the nulls at its end.
  static Json WithoutEnd(Json row) {
    while (!row.empty() && row.back().is_null()) row.erase(row.size() - 1);
    return row;
  }
  /// A row as an object, without what is null.
  static Json Named(std::initializer_list<const char*> columns, Json row) {
    Json object = Json::object();
    auto value = row.begin();
    for (const char* column : columns) {
      if (!value->is_null()) object[column] = std::move(*value);
      ++value;
    }
    return object;
  }

  void Key(std::string_view key) {
    out_ << separator_ << '"' << key << "\":";
    separator_ = ",\n";
  }
  void Value(Json value) { out_ << ScriptJson(host::JsonText(std::move(value))); }

  const FactsForm form_;
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
    return Json::array({source, event->name, paths.Tell(event->path)});
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
                if (event.IsCut()) {
                  row.insert(row.end(),
                             {OrNull(event.source), input.record.TrackNumber(event.track),
                              event.position, event.end, OrNothing(event.fadeIn),
                              OrNothing(event.fadeOut), OrNothing(event.gainDb)});
                }
                row.get_ref<Json::array_t&>().resize(10);
                return row;
              });
}

void WriteRegions(const host::TargetInput& input, PathTable& paths, FactsWriter& facts) {
  facts.Table("regions",
              {"name", "path", "track", "position", "start", "stop", "event", "piece", "fadeIn",
               "fadeOut", "gainDb"},
              input.session.Regions(), [&](const host::SessionRegion& region) {
                const std::optional<host::RegionOrigin>& origin = region.origin;
                return Json{region.name,
                            paths.Tell(region.path),
                            input.record.TrackNumber(region.track),
                            region.position,
                            region.start,
                            region.stop,
                            origin ? Json(origin->event) : Json(),
                            origin ? Json(NameOf(origin->piece)) : Json(),
                            OrNothing(region.shape.fadeIn),
                            OrNothing(region.shape.fadeOut),
                            OrNothing(region.shape.gainDb)};
              });
}

void WriteFiles(const ReportData& data, PathTable& paths, FactsWriter& facts) {
  facts.Table("files", {"what", "state", "event", "path", "bytes", "sha256", "noSha256", "folder"},
              data.files, [&](const FileRow& file) {
                return Json{file.what,
                            file.state,
                            OrNull(file.event),
                            paths.Tell(file.path),
                            OrNull(file.bytes),
                            OrNull(file.sha256),
                            OrNull(file.noSha256),
                            file.isFolder ? Json(true) : Json()};
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

void WriteFacts(const host::TargetInput& input, const ReportData& data, FactsForm form,
                std::ostream& out) {
  const host::SpotRecord& record = input.record;
  FactsWriter facts(form, out);
  PathTable paths(form);
  facts.Member("project", ProjectJson(record));
  facts.Member("rates", RatesJson(input));
  facts.Member("plan", record.isPlan);
  facts.Member("options", OptionsJson(record.options));
  facts.Member("summary", SummaryJson(input.session.Summary()));
  facts.Table("tracks", {"track", "cuts", "regions", "first", "end"}, TracksOf(input),
              [](const TrackRow& row) {
                const bool isUsed = row.regions > 0;
                return Json{row.number, row.cuts, row.regions, isUsed ? Json(row.first) : Json(),
                            isUsed ? Json(row.end) : Json()};
              });
  WriteSources(record, paths, facts);
  WriteEvents(input, facts);
  WriteRegions(input, paths, facts);
  WriteFiles(data, paths, facts);
  WriteMessages(data, facts);
  if (form == FactsForm::Rows) {
    facts.Table("paths", {"folder", "name"}, paths.Paths(),
                [&](const std::string* path) { return paths.Row(*path); });
    facts.Member("folders", paths.Folders());
  }
  facts.End();
}

}  // namespace velmora::report
