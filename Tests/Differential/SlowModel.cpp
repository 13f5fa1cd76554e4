#include "SlowModel.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <set>

#include "ADL/ShiftJis.h"
#include "Description.h"
#include "SlowTimes.h"

namespace velmora::test::differential {
namespace {

bool IsSlowCut(const AES31Event& event) {
  return event.label != nullptr && strcasecmp(event.label, "cut") == 0;
}

std::int32_t Wrapped(std::int64_t number) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

std::string Shown(const char* timestamp) {
  return SlowTimecode(timestamp);
}

std::string Text(const std::vector<std::string>& column, std::int32_t row) {
  if (row < 0 || static_cast<std::size_t>(row) >= column.size()) return "none";
  return Quoted(column[static_cast<std::size_t>(row)]);
}

}  // namespace

std::string SlowModel::TrackColumn::At(std::int32_t row) const {
  const auto found = used.find(row);
  return found == used.end() ? common : found->second;
}

std::int32_t SlowModel::TrackOf(std::int32_t row) const {
  return Wrapped(std::int64_t{minTrack} + row);
}

std::int32_t SlowModel::RowOf(std::int32_t track) const {
  return Wrapped(std::int64_t{track} - minTrack);
}

bool SlowModel::Load(const std::string& text, const std::string& folder) {
  project.reset();
  trackEnable_ = {};
  auto loaded = std::make_unique<SlowProject>(text, folder);
  message.clear();
  firstEvent = lastEvent = nullptr;
  if (!loaded->IsLoaded()) {
    message = "File NG.";
    return false;
  }
  project = std::move(loaded);
  const std::array<int, 13> constants = {5, 6, 7, 8, 9, -1, 15, 17, 18, 19, 20, 22, 23};
  for (std::size_t row = 0; row < constants.size(); ++row) {
    if (constants[row] < 0) continue;
    const char* const constant = project->constants[static_cast<std::size_t>(constants[row])];
    if (constant != nullptr) information[row] = ShiftJisToUtf8(constant);
  }
  FindSpan();
  if (firstEvent == nullptr) return true;  // the tables stay as they were
  totalStart = Shown(firstEvent);
  totalEnd = Shown(lastEvent);
  FillTracks();
  for (AES31Event& event : project->events) event.eventOn = event.trackOn = 1;
  ListEvents();
  return true;
}

void SlowModel::FindSpan() {
  numEvents = static_cast<std::int32_t>(project->events.size());
  minTrack = std::numeric_limits<std::int32_t>::max();
  maxTrack = std::numeric_limits<std::int32_t>::min();
  for (const AES31Event& event : project->events) {
    if (!IsSlowCut(event)) continue;
    if (firstEvent == nullptr) {
      firstEvent = event.cut.destIn;
      lastEvent = event.cut.destOut;
    }
    if (SlowDifference(firstEvent, event.cut.destIn) < 0) firstEvent = event.cut.destIn;
    if (SlowDifference(lastEvent, event.cut.destOut) > 0) lastEvent = event.cut.destOut;
    minTrack = std::min(minTrack, event.cut.destChannel);
    maxTrack = std::max(maxTrack, event.cut.destChannel);
  }
  trackCount = Wrapped(std::int64_t{maxTrack} + 1 - minTrack);
}

void SlowModel::FillTracks() {
  const std::int32_t rows = std::max(trackCount, 0);
  trackStart_ = {rows, totalStart, {}};
  trackEnd_ = {rows, totalEnd, {}};
  trackEnable_ = {rows, "1", {}};
  std::set<std::int32_t> tracks;
  for (const AES31Event& event : project->events)
    if (IsSlowCut(event)) tracks.insert(event.cut.destChannel);
  for (const std::int32_t track : tracks) {
    const char* start = nullptr;
    const char* end = nullptr;
    for (const AES31Event& event : project->events) {
      if (!IsSlowCut(event) || event.cut.destChannel != track) continue;
      if (start == nullptr || SlowDifference(start, event.cut.destIn) < 0) start = event.cut.destIn;
      if (end == nullptr || SlowDifference(end, event.cut.destOut) > 0) end = event.cut.destOut;
    }
    trackStart_.used[RowOf(track)] = Shown(start);
    trackEnd_.used[RowOf(track)] = Shown(end);
  }
}

void SlowModel::ListEvents() {
  for (auto* const column :
       {&eventTypes, &eventNumbers, &eventCh, &eventName, &eventTrack, &eventIn, &eventOut})
    column->clear();
  eventFound.clear();
  eventEnable.clear();
  listedEvents = 0;
  bool isMissing = false;
  for (std::size_t i = 0; i < project->events.size(); ++i) {
    const AES31Event& event = project->events[i];
    if (event.trackOn == 0) {
      eventEnable.push_back(Box::Placeholder);
      continue;
    }
    eventEnable.push_back(event.eventOn != 0 ? Box::On : Box::Off);
    eventTypes.emplace_back(event.label == nullptr ? "" : event.label);
    std::string number = std::to_string(i);
    while (number.size() < 4) number.insert(0, "0");
    eventNumbers.push_back(number + "\n");
    eventCh.emplace_back("Mono");
    if (IsSlowCut(event)) {
      eventTrack.push_back(std::to_string(event.cut.destChannel));
      eventIn.push_back(Shown(event.cut.destIn));
      eventOut.push_back(Shown(event.cut.destOut));
    }
    const std::string* const file = project->FileOfEvent(i);
    eventName.push_back(file == nullptr ? "" : file->substr(file->rfind('/') + 1));
    eventFound.push_back(file != nullptr);
    if (file == nullptr) isMissing = true;
    ++listedEvents;
  }
  message = isMissing ? "Some files not found. Check event list." : "";
}

void SlowModel::SetTrackBox(std::int32_t row, bool on) {
  if (spotRuns || project == nullptr || !trackEnable_.Has(row)) return;
  trackEnable_.used[row] = on ? "1" : "0";
  for (AES31Event& event : project->events)
    if (IsSlowCut(event) && event.cut.destChannel == TrackOf(row)) event.trackOn = on ? 1 : 0;
  ListEvents();
}

void SlowModel::SetTrackBoxes(const std::function<bool(std::int32_t track)>& on) {
  if (spotRuns) return;
  for (AES31Event& event : project->events) {
    if (!IsSlowCut(event)) continue;
    const std::int32_t track = event.cut.destChannel;
    event.trackOn = on(track) ? 1 : 0;
    if (trackEnable_.Has(RowOf(track))) trackEnable_.used[RowOf(track)] = on(track) ? "1" : "0";
  }
  ListEvents();
}

void SlowModel::SetEventBox(std::int32_t row, bool on) {
  if (spotRuns || project == nullptr || row < 0 || row >= listedEvents) return;
  const int index = SlowNumber(eventNumbers[static_cast<std::size_t>(row)].c_str());
  eventEnable[static_cast<std::size_t>(index)] = on ? Box::On : Box::Off;
  if (static_cast<std::size_t>(index) < project->events.size())
    project->events[static_cast<std::size_t>(index)].eventOn = on ? 1 : 0;
}

std::int32_t SlowModel::RowsOf(const std::string& table) const {
  if (table == "ProjectInfomationTable") return 13;
  if (table == "TrackTable") return std::max(trackCount, 0);
  if (table == "EventListTable") return listedEvents;
  if (table == "numberOfTracksTable") return 8;
  return 0;
}

std::string SlowModel::Cell(const std::string& table, const std::string& column,
                            std::int32_t row) const {
  if (row < 0 || row >= RowsOf(table)) return "none";
  if (table == "ProjectInfomationTable") return InformationCell(column, row);
  if (table == "TrackTable") return TrackCell(column, row);
  if (table == "EventListTable") return EventCell(column, row);
  return NumberCell(column, row);
}

std::string SlowModel::InformationCell(const std::string& column, std::int32_t row) const {
  static const std::array<const char*, 13> kTitles = {
      "Project Title",  "Proj Orijinator",  "Proj Create Data",
      "Proj Note",      "Proj Client Data", "",
      "Sequence Title", "Seq Sample Rate",  "Seq Frame Rate",
      "Seq ADL Level",  "Seq Clean",        "Seq Multichan",
      "Seq Dest Start"};
  if (column == "Title") return Quoted(kTitles[static_cast<std::size_t>(row)]);
  if (column == "Data") return Quoted(information[static_cast<std::size_t>(row)]);
  return "none";
}

std::string SlowModel::TrackCell(const std::string& column, std::int32_t row) const {
  if (column == "Track") return Quoted(std::to_string(TrackOf(row)));
  if (column == "Type") return Quoted("Mono");
  if (column == "Space")
    return trackEnable_.Has(row) ? (trackEnable_.At(row) == "0" ? "0" : "1") : "none";
  if (column == "Start") return trackStart_.Has(row) ? Quoted(trackStart_.At(row)) : "none";
  if (column == "End") return trackEnd_.Has(row) ? Quoted(trackEnd_.At(row)) : "none";
  return "none";
}

std::string SlowModel::EventCell(const std::string& column, std::int32_t row) const {
  if (column == "Space") {
    const int index = SlowNumber(eventNumbers[static_cast<std::size_t>(row)].c_str());
    return eventEnable[static_cast<std::size_t>(index)] == Box::Off ? "0" : "1";
  }
  if (column == "Type") return Text(eventTypes, row);
  if (column == "Event") return Text(eventNumbers, row);
  if (column == "Ch") return Text(eventCh, row);
  if (column == "In") return Text(eventIn, row);
  if (column == "Out") return Text(eventOut, row);
  if (column == "Track") return Text(eventTrack, row);
  if (column == "Name") return Text(eventName, row);
  return "none";
}

std::string SlowModel::NumberCell(const std::string& column, std::int32_t row) const {
  if (column == "Number") return Quoted(row == 0 ? std::to_string(trackCount) : "0");
  if (column != "ItemName") return "none";
  if (row == 0) return Quoted("Mono");
  return Quoted(row == 1 ? "Stereo" : std::to_string(row + 1) + " Ch.");
}

std::string SlowModel::StyleOf(const std::string& table, const std::string& column,
                               std::int32_t row) const {
  if (table == "ProjectInfomationTable")
    return column == "Title" ? "untouched right 11" : "untouched left 11";
  if (table == "numberOfTracksTable")
    return column == "ItemName" ? "untouched left 11" : "untouched right 11";
  std::string background = row % 2 == 0 ? "white" : "stripe";
  if (table == "EventListTable" && !eventFound[static_cast<std::size_t>(row)]) background = "red";
  return background + " untouched 0";
}

}  // namespace velmora::test::differential
