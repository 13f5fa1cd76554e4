#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Model/Tables.h"
#include "Program/InfoCommand.h"
#include "Program/JsonPen.h"
#include "Program/JsonStream.h"
#include "Program/ProjectJson.h"

namespace velmora::program {
namespace {

/// Some 256 KiB of events: a fraction of a millisecond of work.
constexpr std::size_t kElementsPerBlock = 512;

/// The one object that is printed, with its large arrays formatted on all processors.
class InfoJson {
 public:
  InfoJson(const ViewModel& model, BlockOutput& out)
      : model_(model), project_(model.project.get()), out_(out), json_(out.Text()) {}

  void Write(const std::string& path);

 private:
  /// An array of `count` elements. `append` is called with a text and the first index and one past
  /// the last of those to add, perhaps by several threads. It puts the commas.
  template <class AppendElements>
  void WriteBlocks(std::size_t count, const AppendElements& append);
  /// The same with a call for each element.
  template <class WriteElement>
  void WriteArray(std::size_t count, const WriteElement& write);

  void WriteDiagnostics();
  void WriteFailure();
  void WriteConstants();
  void WriteSources();
  void WriteEntries(const AES31Entries& entries);
  void WriteSections(const std::vector<AES31Section>& sections);
  void WriteContents();
  void WriteSpan();
  void WriteTable(const Table& table);

  const ViewModel& model_;
  const AES31Project* const project_;  ///< null for one that did not load
  BlockOutput& out_;
  JsonStream json_;
};

template <class AppendElements>
void InfoJson::WriteBlocks(std::size_t count, const AppendElements& append) {
  json_.BeginArray();
  out_.InBlocks(count, kElementsPerBlock, append);
  json_.EndArray();
}

template <class WriteElement>
void InfoJson::WriteArray(std::size_t count, const WriteElement& write) {
  WriteBlocks(count, [&write](CharBuffer& text, std::size_t begin, std::size_t end) {
    JsonStream json(text);
    if (begin > 0) json.ContinueArray();
    for (std::size_t i = begin; i < end; ++i) write(json, i);
  });
}

void InfoJson::WriteDiagnostics() {
  json_.Key("diagnostics");
  WriteArray(model_.loadDiagnostics.size(), [this](JsonStream& json, std::size_t i) {
    const LoadDiagnostic& diagnostic = model_.loadDiagnostics[i];
    json.BeginObject();
    json.Key("code").Text(NameOf(diagnostic.code));
    json.Key("line").Integer(diagnostic.line);
    json.Key("text").ProjectText(diagnostic.text.c_str());
    json.EndObject();
  });
}

void InfoJson::WriteFailure() {
  json_.Key("failure");
  if (!model_.loadFailure) {
    json_.Null();
    return;
  }
  const LoadFailure& failure = *model_.loadFailure;
  json_.BeginObject();
  json_.Key("code").Text(NameOf(failure.code));
  json_.Key("line").Integer(failure.line);
  json_.Key("section").ProjectText(failure.section.c_str());
  json_.Key("label").ProjectText(failure.label.c_str());
  json_.Key("reason").Text(failure.reason);
  json_.EndObject();
}

void InfoJson::WriteConstants() {
  json_.Key("constants").BeginObject();
  for (std::size_t id = 0; id < kProjectConstants.size(); ++id) {
    json_.Key(kProjectConstants[id].keyword);
    json_.ProjectText(project_ != nullptr ? project_->constants[id] : nullptr);
  }
  json_.EndObject();
}

void InfoJson::WriteSources() {
  std::vector<const std::map<std::int32_t, AES31SourceFile>::value_type*> sources;
  if (project_ != nullptr) {
    for (const auto& source : project_->sourceFiles) sources.push_back(&source);
  }
  json_.Key("sources");
  WriteArray(sources.size(), [&sources](JsonStream& json, std::size_t i) {
    WriteSourceJson(json, sources[i]->first, sources[i]->second);
  });
}

void InfoJson::WriteEntries(const AES31Entries& entries) {
  WriteBlocks(entries.size(), [&](CharBuffer& text, std::size_t begin, std::size_t end) {
    AppendEntriesJson(text, *project_, entries, begin, end);
  });
}

void InfoJson::WriteSections(const std::vector<AES31Section>& sections) {
  json_.BeginArray();
  for (const AES31Section& section : sections) {
    json_.BeginObject();
    json_.Key("name").ProjectText(section.name);
    json_.Key("entries");
    WriteEntries(section.entries);
    json_.EndObject();
  }
  json_.EndArray();
}

/// What the project holds; a project that did not load holds nothing.
void InfoJson::WriteContents() {
  WriteConstants();
  WriteSources();
  json_.Key("events");
  WriteBlocks(project_ != nullptr ? project_->events.size() : 0,
              [this](CharBuffer& text, std::size_t begin, std::size_t end) {
                AppendEventsJson(text, *project_, begin, end);
              });
  json_.Key("sections");
  static const std::vector<AES31Section> kNone;
  WriteSections(project_ != nullptr ? project_->sections : kNone);
  json_.Key("refLists").BeginArray();
  if (project_ != nullptr) {
    for (const auto& list : project_->refLists) WriteSections(list);
  }
  json_.EndArray();
  json_.Key("comments");
  WriteArray(project_ != nullptr ? project_->comments.size() : 0,
             [this](JsonStream& json, std::size_t i) { json.ProjectText(project_->comments[i]); });
}

void InfoJson::WriteSpan() {
  json_.Key("firstEvent").ProjectText(model_.firstEvent);
  json_.Key("lastEvent").ProjectText(model_.lastEvent);
  json_.Key("minTrack").Integer(model_.minTrack);
  json_.Key("maxTrack").Integer(model_.maxTrack);
  json_.Key("trackCount").Integer(model_.trackCount);
  json_.Key("totalStart").ProjectText(model_.totalStartTime.c_str());
  json_.Key("totalEnd").ProjectText(model_.totalEndTime.c_str());
}

/// The rows of a table, some dozens at a time: a column's cells cost less together.
class RowWriter {
 public:
  RowWriter(const ViewModel& model, const Table& table)
      : model_(model), columns_(table.columns), cells_(columns_.size()) {
    for (const TableColumn& column : columns_) {
      const char* const before = keys_.empty() ? "{\"" : ",\"";
      keys_.emplace_back(before + std::string(column.identifier) + "\":");
    }
  }

  void Append(CharBuffer& text, std::size_t begin, std::size_t end) {
    JsonPen json(text, {});
    for (std::size_t first = begin; first < end; first += kCells) {
      const std::size_t count = std::min(kCells, end - first);
      Fill(first, count);
      for (std::size_t i = 0; i < count; ++i) {
        if (first + i > 0) json.Part(",");
        for (std::size_t column = 0; column < columns_.size(); ++column) {
          json.Part(keys_[column]);
          WriteCell(json, columns_[column].text, cells_[column][i]);
        }
        json.Part("}");
      }
    }
  }

 private:
  static constexpr std::size_t kCells = 64;

  void Fill(std::size_t first, std::size_t count) {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      columns_[column].fill(model_, static_cast<std::int32_t>(first),
                            std::span(cells_[column]).first(count));
    }
  }

  [[gnu::always_inline]] static void WriteCell(JsonPen& json, ColumnText reading,
                                               const CellView& cell) {
    if (cell.kind == CellValue::None) {
      json.Part("null");
    } else if (cell.kind == CellValue::Integer) {
      json.Digits(cell.text);
    } else if (reading == ColumnText::Project) {
      json.ProjectText(cell.text);
    } else {
      json.Text(cell.text);
    }
  }

  const ViewModel& model_;
  std::span<const TableColumn> columns_;
  std::vector<JsonPiece> keys_;                      ///< each with what stands before it
  std::vector<std::array<CellView, kCells>> cells_;  ///< by column
};

void InfoJson::WriteTable(const Table& table) {
  const std::int32_t rows = std::min(table.rows(model_), kMostTableRows);
  json_.Key(table.identifier);
  WriteBlocks(static_cast<std::size_t>(rows),
              [&](CharBuffer& text, std::size_t begin, std::size_t end) {
                RowWriter(model_, table).Append(text, begin, end);
              });
}

void InfoJson::Write(const std::string& path) {
  json_.BeginObject();
  json_.Key("path").Text(path);
  json_.Key("folder").Text(project_ != nullptr ? project_->folder
                                               : path.substr(0, path.rfind('/')));
  json_.Key("ok").Boolean(project_ != nullptr);
  json_.Key("message").Text(model_.errorMessage);
  WriteDiagnostics();
  WriteFailure();
  WriteContents();
  WriteSpan();
  json_.Key("tables").BeginObject();
  for (const Table& table : Tables()) WriteTable(table);
  json_.EndObject();
  json_.EndObject();
  out_ << '\n';
}

}  // namespace

void PrintInfoJson(const InfoArguments& arguments, const ViewModel& model, BlockOutput& out) {
  InfoJson(model, out).Write(arguments.project);
}

}  // namespace velmora::program
