#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "Model/Tables.h"
#include "Model/ViewModel.h"
#include "Support/ProjectBuilder.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora {

inline bool operator==(const CellValue& a, const CellValue& b) {
  return a.kind == b.kind && a.text == b.text && a.integer == b.integer;
}

inline void PrintTo(const CellValue& cell, std::ostream* out) {
  if (cell.kind == CellValue::None) *out << "no value";
  if (cell.kind == CellValue::Text) *out << '"' << cell.text << '"';
  if (cell.kind == CellValue::Integer) *out << cell.integer;
}

namespace test {

inline const CellValue kNoValue{};
inline CellValue TextCell(const std::string& text) {
  return {CellValue::Text, text, 0};
}
inline CellValue IntegerCell(std::int32_t value) {
  return {CellValue::Integer, {}, value};
}

constexpr const char* kFilesMissing = "Some files not found. Check event list.";

/// A model and a folder with two wave files, `a.wav` and `b.wav`, to load projects from.
class ModelTest : public testing::Test {
 protected:
  ModelTest() {
    folder.Write("a.wav", PlainWave({}, {1, 2, 3}));
    folder.Write("b.wav", PlainWave({}, {1, 2, 3}));
  }
  /// Sources 1 and 2 are there, source 3 is missing.
  static ProjectBuilder Sources() {
    ProjectBuilder builder;
    builder.Source(1, "a.wav").Source(2, "b.wav").Source(3, "missing.wav");
    return builder;
  }
  bool Load(const ProjectBuilder& builder) {
    return model.LoadFile(builder.WriteTo(folder, "project" + std::to_string(++loads) + ".adl"));
  }
  bool LoadCuts(const std::vector<CutSpec>& cuts) {
    ProjectBuilder builder = Sources();
    for (const CutSpec& cut : cuts) builder.Cut(cut);
    return Load(builder);
  }
  /// A load that fails: a cut with too few values.
  bool LoadBad() { return Load(ProjectBuilder().Entry("(Cut) I 1 1 1")); }

  CellValue Cell(std::string_view table, std::string_view column, std::int32_t row) const {
    return ObjectValue(model, table, column, row);
  }
  /// A column from its first row to its last.
  std::vector<std::string> Column(std::string_view table, std::string_view column) const {
    std::vector<std::string> texts;
    for (std::int32_t row = 0; row < NumberOfRows(model, table); ++row) {
      texts.push_back(testing::PrintToString(Cell(table, column, row)));
    }
    return texts;
  }
  /// Start and end of the track in a row.
  std::vector<std::string> Track(std::int32_t row) const {
    const std::string* start = model.trackStart.At(row);
    const std::string* end = model.trackEnd.At(row);
    return {start != nullptr ? *start : "none", end != nullptr ? *end : "none"};
  }
  void Tick(std::string_view table, std::int32_t row, std::int32_t value) {
    SetObjectValue(model, table, "Space", row, value);
  }
  std::vector<std::int32_t> TrackFlags() const {
    std::vector<std::int32_t> flags;
    for (const AES31Event& event : model.project->events) flags.push_back(event.trackOn);
    return flags;
  }
  std::vector<std::int32_t> EventFlags() const {
    std::vector<std::int32_t> flags;
    for (const AES31Event& event : model.project->events) flags.push_back(event.eventOn);
    return flags;
  }

  TemporaryFolder folder;
  ViewModel model;
  int loads = 0;
};

}  // namespace test
}  // namespace velmora
