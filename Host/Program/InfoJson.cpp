#include <algorithm>
#include <string>

#include "ADL/ShiftJis.h"
#include "Model/Tables.h"
#include "Program/InfoCommand.h"
#include "Program/JsonObjectWriter.h"
#include "Program/ProjectJson.h"

namespace velmora::program {
namespace {

Json CellJson(const CellValue& cell, ColumnText text) {
  if (cell.kind == CellValue::Integer) return cell.integer;
  if (cell.kind == CellValue::None) return nullptr;
  return text == ColumnText::Project ? ShiftJisToUtf8(cell.text.c_str()) : cell.text;
}

Json RowJson(const ViewModel& model, const Table& table, std::int32_t row) {
  Json json = Json::object();
  for (const TableColumn& column : table.columns) {
    json[std::string(column.identifier)] = CellJson(column.value(model, row), column.text);
  }
  return json;
}

void WriteTables(JsonObjectWriter& json, std::ostream& out, const ViewModel& model) {
  json.Key("tables");
  JsonObjectWriter tables(out);
  for (const Table& table : Tables()) {
    const std::int32_t rows = std::min(table.rows(model), kMostTableRows);
    tables.Array(
        std::string(table.identifier).c_str(), static_cast<std::size_t>(rows),
        [&](std::size_t row) { return RowJson(model, table, static_cast<std::int32_t>(row)); });
  }
  tables.End();
}

Json FailureJson(const ViewModel& model) {
  if (!model.loadFailure) return nullptr;
  const LoadFailure& failure = *model.loadFailure;
  return {{"code", NameOf(failure.code)},
          {"line", failure.line},
          {"section", ProjectText(failure.section.c_str())},
          {"label", ProjectText(failure.label.c_str())},
          {"reason", failure.reason}};
}

void WriteDiagnostics(JsonObjectWriter& json, const ViewModel& model) {
  json.Array("diagnostics", model.loadDiagnostics.size(), [&model](std::size_t i) -> Json {
    const LoadDiagnostic& diagnostic = model.loadDiagnostics[i];
    return {{"code", NameOf(diagnostic.code)},
            {"line", diagnostic.line},
            {"text", ProjectText(diagnostic.text.c_str())}};
  });
}

Json SourceJson(std::int32_t index, const AES31SourceFile& source) {
  Json f = Json::array();
  for (const char* const text : source.fValues) f.push_back(ProjectText(text));
  Json t = Json::array();
  for (const char* const text : source.tValues) t.push_back(ProjectText(text));
  return {{"index", index},
          {"f", std::move(f)},
          {"t", std::move(t)},
          {"file", source.file != nullptr ? WaveFileJson(*source.file) : Json()}};
}

/// What the project holds; a project that did not load holds nothing.
void WriteContents(JsonObjectWriter& json, AES31Project* project) {
  Json constants = Json::object();
  for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
    constants[kProjectConstants[id].keyword] =
        project != nullptr ? ProjectText(project->constants[id]) : Json();
  }
  json.Member("constants", constants);

  const std::map<std::int32_t, AES31SourceFile> none;
  const auto& sources = project != nullptr ? project->sourceFiles : none;
  auto source = sources.begin();
  json.Array("sources", sources.size(), [&source](std::size_t) {
    const auto& [index, record] = *source++;
    return SourceJson(index, record);
  });
  json.Array("events", project != nullptr ? project->events.size() : 0,
             [project](std::size_t i) { return EventJson(project->events[i], i); });
  json.Array("sections", project != nullptr ? project->sections.size() : 0,
             [project](std::size_t i) { return SectionJson(project->sections[i]); });
  json.Array("refLists", project != nullptr ? project->refLists.size() : 0,
             [project](std::size_t i) {
               Json list = Json::array();
               for (const AES31Section& section : project->refLists[i]) {
                 list.push_back(SectionJson(section));
               }
               return list;
             });
  json.Array("comments", project != nullptr ? project->comments.size() : 0,
             [project](std::size_t i) { return ProjectText(project->comments[i]); });
}

}  // namespace

void PrintInfoJson(const InfoArguments& arguments, const ViewModel& model, std::ostream& out) {
  JsonObjectWriter json(out);
  json.Member("path", arguments.project);
  json.Member("folder", model.project != nullptr
                            ? model.project->folder
                            : arguments.project.substr(0, arguments.project.rfind('/')));
  json.Member("ok", model.project != nullptr);
  json.Member("message", model.errorMessage);
  WriteDiagnostics(json, model);
  json.Member("failure", FailureJson(model));
  WriteContents(json, model.project.get());
  json.Member("firstEvent", ProjectText(model.firstEvent));
  json.Member("lastEvent", ProjectText(model.lastEvent));
  json.Member("minTrack", model.minTrack);
  json.Member("maxTrack", model.maxTrack);
  json.Member("trackCount", model.trackCount);
  json.Member("totalStart", ProjectText(model.totalStartTime.c_str()));
  json.Member("totalEnd", ProjectText(model.totalEndTime.c_str()));
  WriteTables(json, out, model);
  json.End();
  out << '\n';
}

}  // namespace velmora::program
