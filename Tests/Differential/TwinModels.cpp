#include "TwinModels.h"

#include <algorithm>
#include <cstdio>

#include "Description.h"
#include "Model/Tables.h"
#include "Support/CapturedStandardError.h"

namespace velmora::test::differential {
namespace {

struct TableForm {
  const char* identifier;
  std::vector<const char*> columns;
};

const std::vector<TableForm> kTables = {
    {"ProjectInfomationTable", {"Title", "Data", "Space"}},
    {"TrackTable", {"Space", "Track", "Type", "Start", "End", "Name"}},
    {"EventListTable",
     {"Space", "Type", "Event", "Ch", "In", "Out", "Track", "Name", "Start", "space"}},
    {"numberOfTracksTable", {"ItemName", "Number", "Title"}},
    {"Tracktable", {"Space", "Track"}},
};

// Rows of a table, and some that it does not have. Of a long table the ends.
std::vector<std::int32_t> RowsToAsk(std::int32_t rows) {
  std::vector<std::int32_t> asked = {-1, -2147483647 - 1, 2147483647, rows};
  for (std::int32_t row = 0; row < std::min(rows, 60); ++row) asked.push_back(row);
  for (std::int32_t row = std::max(60, rows - 5); row < rows; ++row) asked.push_back(row);
  return asked;
}

std::string CellOf(const ViewModel& model, const char* table, const char* column,
                   std::int32_t row) {
  const CellValue value = ObjectValue(model, table, column, row);
  switch (value.kind) {
    case CellValue::None:
      return "none";
    case CellValue::Integer:
      return std::to_string(value.integer);
    case CellValue::Text:
      return Quoted(value.text);
  }
  return "a cell of no kind";
}

std::string StyleText(const CellStyle& style) {
  std::string text;
  switch (style.background) {
    case Background::Untouched:
      text = "untouched";
      break;
    case Background::White:
      text = "white";
      break;
    case Background::Stripe:
      text = "stripe";
      break;
    case Background::Red:
      text = "red";
      break;
  }
  text += style.alignment < 0 ? " untouched " : style.alignment == 0 ? " left " : " right ";
  return text + std::to_string(static_cast<int>(style.fontSize));
}

std::string SlowText(const SlowModel& model) {
  std::string lines = "message " + Quoted(model.message) + "\nspan " + Quoted(model.totalStart) +
                      " " + Quoted(model.totalEnd) + "\n";
  if (model.project != nullptr)
    lines += std::string("cuts ") + (model.firstEvent == nullptr ? "none" : model.firstEvent) +
             " " + (model.lastEvent == nullptr ? "none" : model.lastEvent) + "\n";
  for (const std::int32_t number :
       {model.numEvents, model.minTrack, model.maxTrack, model.trackCount, model.listedEvents})
    lines += std::to_string(number) + " ";
  lines += "\n";
  for (const TableForm& table : kTables) {
    const std::int32_t rows = model.RowsOf(table.identifier);
    lines += std::string(table.identifier) + " " + std::to_string(rows) + "\n";
    for (const std::int32_t row : RowsToAsk(rows)) {
      for (const char* const column : table.columns) {
        lines += std::string(column) + " at " + std::to_string(row) + ": " +
                 model.Cell(table.identifier, column, row);
        if (row >= 0 && row < rows) lines += " " + model.StyleOf(table.identifier, column, row);
        lines += "\n";
      }
    }
  }
  for (const SlowModel::Box box : model.eventEnable)
    lines += box == SlowModel::Box::Off ? '0' : box == SlowModel::Box::On ? '1' : '-';
  if (model.project != nullptr)
    for (const AES31Event& event : model.project->events)
      lines += "\nboxes " + std::to_string(event.eventOn) + std::to_string(event.trackOn);
  return lines + "\n";
}

std::string FastText(const ViewModel& model) {
  std::string lines = "message " + Quoted(model.errorMessage) + "\nspan " +
                      Quoted(model.totalStartTime) + " " + Quoted(model.totalEndTime) + "\n";
  if (model.project != nullptr)
    lines += std::string("cuts ") + (model.firstEvent == nullptr ? "none" : model.firstEvent) +
             " " + (model.lastEvent == nullptr ? "none" : model.lastEvent) + "\n";
  for (const std::int32_t number :
       {model.numEvents, model.minTrack, model.maxTrack, model.trackCount, model.enableEvents})
    lines += std::to_string(number) + " ";
  lines += "\n";
  for (const TableForm& table : kTables) {
    const std::int32_t rows = NumberOfRows(model, table.identifier);
    lines += std::string(table.identifier) + " " + std::to_string(rows) + "\n";
    for (const std::int32_t row : RowsToAsk(rows)) {
      for (const char* const column : table.columns) {
        lines += std::string(column) + " at " + std::to_string(row) + ": " +
                 CellOf(model, table.identifier, column, row);
        if (row >= 0 && row < rows)
          lines += " " + StyleText(Style(model, table.identifier, column, row));
        lines += "\n";
      }
    }
  }
  for (std::size_t i = 0; i < model.eventEnable.size(); ++i) {
    const EventBox box = model.eventEnable[i];
    lines += box == EventBox::Off ? '0' : box == EventBox::On ? '1' : '-';
  }
  if (model.project != nullptr)
    for (std::int32_t i = 0; i < model.project->GetEventCount(); ++i) {
      const AES31Event* const event = model.project->GetEvent(i);
      lines += "\nboxes " + std::to_string(event->eventOn) + std::to_string(event->trackOn);
    }
  return lines + "\n";
}

// The lists of the event table, which others read beside the tables.
template <class Fast>
std::string ListDifference(const char* name, const std::vector<std::string>& slow,
                           const Fast& fast) {
  if (slow.size() != fast.size())
    return std::string(name) + " has " + std::to_string(fast.size()) + " rows, and should have " +
           std::to_string(slow.size());
  for (std::size_t row = 0; row < slow.size(); ++row)
    if (std::string(fast[row]) != slow[row])
      return std::string(name) + " at " + std::to_string(row) + ": " +
             Quoted(std::string(fast[row])) + ", not " + Quoted(slow[row]);
  return {};
}

std::int32_t RowBelow(RandomAdl& random, std::int32_t rows) {
  return static_cast<std::int32_t>(random.Below(static_cast<std::uint32_t>(std::max(rows, 1))));
}

}  // namespace

template <class Fast>
void TwinModels::Hold(const char* name, const std::vector<std::string>& slow, const Fast& fast) {
  if (difference_.empty()) difference_ = ListDifference(name, slow, fast);
}

void TwinModels::Load(const std::string& text) {
  std::remove(path_.c_str());
  folder_.Write("project.adl", text);
  const bool slowLoads = slow_.Load(text, folder_.Path());
  const CapturedStandardError error;
  const bool fastLoads = fast_.LoadFile(path_);
  Note("load " + Quoted(text));
  if (difference_.empty() && fastLoads != slowLoads)
    difference_ = slowLoads ? "does not load, and should" : "loads, and should not";
}

void TwinModels::EditSomething(RandomAdl& random) {
  const bool on = random.OneIn(2);
  switch (random.Below(12)) {
    case 0:
      SetSpotRunning(random.OneIn(3));
      break;
    case 1:
      SetTrackBox(random.OneIn(2) ? -1 : slow_.trackCount, on);
      break;
    case 2:
      SetEventBox(random.OneIn(2) ? -1 : slow_.listedEvents, on);
      break;
    case 3:
      EditOtherCells(on ? 1 : 0);
      break;
    case 4:
      SetTracksAtOnce(1 + random.Below(5));
      break;
    case 5:
    case 6:
    case 7:
      SetTrackBox(RowBelow(random, std::min(slow_.trackCount, 12)), on);
      break;
    default:
      SetEventBox(RowBelow(random, slow_.listedEvents), on);
      break;
  }
}

void TwinModels::SetTrackBox(std::int32_t row, bool on) {
  Note("track row " + std::to_string(row) + (on ? " on" : " off"));
  slow_.SetTrackBox(row, on);
  SetObjectValue(fast_, "TrackTable", "Space", row, on ? 1 : 0);
}

void TwinModels::SetEventBox(std::int32_t row, bool on) {
  Note("event row " + std::to_string(row) + (on ? " on" : " off"));
  slow_.SetEventBox(row, on);
  SetObjectValue(fast_, "EventListTable", "Space", row, on ? 7 : -7);
}

void TwinModels::SetSpotRunning(bool runs) {
  Note(runs ? "spot begins" : "spot ends");
  slow_.spotRuns = fast_.spotRunning = runs;
}

const std::string& TwinModels::Difference() {
  if (difference_.empty()) difference_ = FirstDifference(SlowText(slow_), FastText(fast_));
  Hold("eventTypes", slow_.eventTypes, fast_.eventTypes);
  Hold("eventNumbers", slow_.eventNumbers, fast_.eventNumbers);
  Hold("eventCh", slow_.eventCh, fast_.eventCh);
  Hold("eventName", slow_.eventName, fast_.eventName);
  Hold("eventTrack", slow_.eventTrack, fast_.eventTrack);
  Hold("eventIn", slow_.eventIn, fast_.eventIn);
  Hold("eventOut", slow_.eventOut, fast_.eventOut);
  return difference_;
}

void TwinModels::EditOtherCells(std::int32_t value) {
  for (const char* const column : {"Type", "Track", "space", ""})
    SetObjectValue(fast_, "EventListTable", column, 0, value);
  SetObjectValue(fast_, "numberOfTracksTable", "Space", 0, value);
}

void TwinModels::SetTracksAtOnce(std::uint32_t divisor) {
  if (!fast_.HasCuts()) return;
  Note("tracks that " + std::to_string(divisor) + " divides on");
  const auto isOn = [divisor](std::int32_t track) {
    return static_cast<std::uint32_t>(track) % divisor == 0;
  };
  slow_.SetTrackBoxes(isOn);
  fast_.SetTrackBoxes(isOn);
}

}  // namespace velmora::test::differential
