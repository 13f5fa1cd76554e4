#include "Model/ViewModel.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <new>
#include <utility>

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Wrapping.h"
#include "Model/ProjectSummary.h"
#include "Spot/SpotWorker.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

constexpr std::int32_t kSpacer = -1;

/// The constant that fills each row of the project table.
constexpr auto kRowConstants =
    std::to_array<std::int32_t>({5, 6, 7, 8, 9, kSpacer, 15, 17, 18, 19, 20, 22, 23});

std::string SourceName(const AES31Event& event) {
  return event.sourceFile != nullptr ? FileNameOf(event.sourceFile->GetPath()) : std::string();
}

std::string EventNumber(std::int32_t index) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%04d\n", index);  // the line feed belongs to it
  return text.data();
}

std::shared_ptr<AES31Project> OpenProject(const std::string& path, bool& ok) {
  const auto release = [](AES31Project* project) {
    ReleaseRenderedFiles(*project);
    delete project;
  };
  return {new AES31Project(path.c_str(), nullptr, &ok), release};
}

}  // namespace

bool ViewModel::LoadFile(const std::string& path) {
  try {
    return Load(path);
  } catch (const std::bad_alloc&) {  // the view's event loop has no use for an exception
    firstEvent = lastEvent = nullptr;
    project.reset();
    loadDiagnostics.clear();
    // Texts so short need no memory.
    loadFailure = LoadFailure{LoadFailureCode::OutOfMemory, 0, "", "", "out of memory"};
    errorMessage = "File NG.";
    return false;
  }
}

bool ViewModel::Load(const std::string& path) {
  firstEvent = nullptr;  // they point into the project that goes now
  lastEvent = nullptr;
  project.reset();
  trackEnable.Clear();

  bool ok = false;
  project = OpenProject(path, ok);
  errorMessage.clear();
  loadFailure = project->failure;
  loadDiagnostics = project->diagnostics;
  if (!ok) {
    project.reset();
    errorMessage = "File NG.";
    return false;
  }
  FillProjectInfomation();
  numEvents = project->GetEventCount();
  const bool hasCuts = FindSpan();
  trackCount = WrapSubtract(WrapAdd(maxTrack, 1), minTrack);
  // Without a cut there is no start to show: the rest of the model stays as it was.
  if (!hasCuts) return true;

  totalStartTime = TimestampTimecode(firstEvent);
  totalEndTime = TimestampTimecode(lastEvent);
  FillTracks();
  for (AES31Event& event : project->events) {
    event.eventOn = 1;
    event.trackOn = 1;
  }
  setupEventList();
  return true;
}

/// A constant that the project lacks leaves the row as an earlier project had it.
void ViewModel::FillProjectInfomation() {
  for (std::size_t row = 0; row < kRowConstants.size(); ++row) {
    if (kRowConstants[row] == kSpacer) continue;
    const char* const text = project->GetConstant(static_cast<std::uint32_t>(kRowConstants[row]));
    if (text != nullptr) ProjectInfomation[row] = ShiftJisToUtf8(text);
  }
}

bool ViewModel::FindSpan() {
  const CutSpan span = SpanOfCuts(*project);
  minTrack = span.minTrack;
  maxTrack = span.maxTrack;
  firstEvent = span.earliest != nullptr ? span.earliest->destIn : nullptr;
  lastEvent = span.latest != nullptr ? span.latest->destOut : nullptr;
  return firstEvent != nullptr && lastEvent != nullptr;
}

/// Every number from the lowest track to the highest has a row; one that no cut uses shows the
/// whole project's span.
void ViewModel::FillTracks() {
  std::map<std::int32_t, CutSpan> spans;
  for (const AES31Event& event : project->events) {
    if (IsCut(event)) spans[event.cut.destChannel].Include(event.cut);
  }
  trackStart.Fill(trackCount, totalStartTime);
  trackEnd.Fill(trackCount, totalEndTime);
  trackEnable.Fill(trackCount, true);
  for (const auto& [track, span] : spans) {
    const std::int32_t row = WrapSubtract(track, minTrack);
    trackStart.Set(row, TimestampTimecode(span.earliest->destIn));
    trackEnd.Set(row, TimestampTimecode(span.latest->destOut));
  }
}

void ViewModel::setupEventList() {
  for (auto* const column :
       {&eventTypes, &eventNumbers, &eventTrack, &eventCh, &eventIn, &eventOut, &eventName}) {
    column->clear();
  }
  eventIndices.clear();
  eventFound.clear();
  eventEnable.clear();
  enableEvents = 0;
  errorMessage.clear();
  if (project == nullptr) return;

  bool missing = false;
  for (std::int32_t i = 0; i < numEvents; ++i) {
    const AES31Event& event = *project->GetEvent(i);
    if (event.trackOn == 0) {
      eventEnable.push_back(EventBox::Placeholder);
      continue;
    }
    eventEnable.push_back(event.eventOn != 0 ? EventBox::On : EventBox::Off);
    ListEvent(i, event);
    missing = missing || event.sourceFile == nullptr;
  }
  if (missing) errorMessage = "Some files not found. Check event list.";
}

void ViewModel::ListEvent(std::int32_t index, const AES31Event& event) {
  eventTypes.emplace_back(event.label != nullptr ? event.label : "");
  eventIndices.push_back(index);
  eventNumbers.push_back(EventNumber(index));
  eventCh.emplace_back("Mono");
  eventName.push_back(SourceName(event));
  eventFound.push_back(event.sourceFile != nullptr);
  ++enableEvents;
  if (!IsCut(event)) return;
  eventTrack.push_back(std::to_string(event.cut.destChannel));
  eventIn.push_back(TimestampTimecode(event.cut.destIn));
  eventOut.push_back(TimestampTimecode(event.cut.destOut));
}

void ViewModel::SetTrackNo(std::int32_t trackNo) {
  TrackNo = trackNo;
}

void ViewModel::SetTrackBox(std::int32_t row, bool on) {
  if (spotRunning || project == nullptr || !trackEnable.Set(row, on)) return;
  const std::int32_t track = WrapAdd(row, minTrack);
  for (AES31Event& event : project->events) {
    if (IsCut(event) && event.cut.destChannel == track) SetBox(event.trackOn, on);
  }
  setupEventList();
}

void ViewModel::SetTrackBoxes(const std::function<bool(std::int32_t track)>& on) {
  if (spotRunning || project == nullptr) return;
  bool edited = false;
  for (AES31Event& event : project->events) {
    if (!IsCut(event)) continue;
    const bool isOn = on(event.cut.destChannel);
    // A track has its box even where the numbers span too much for the table to have rows.
    trackEnable.Set(WrapSubtract(event.cut.destChannel, minTrack), isOn);
    SetBox(event.trackOn, isOn);
    edited = true;
  }
  if (edited) setupEventList();
}

void ViewModel::SetEventBox(std::int32_t row, bool on) {
  if (spotRunning || project == nullptr || row < 0 ||
      std::cmp_greater_equal(row, eventIndices.size())) {
    return;
  }
  const std::int32_t index = eventIndices[static_cast<std::size_t>(row)];
  if (index >= 0 && std::cmp_less(index, eventEnable.size())) {
    eventEnable[static_cast<std::size_t>(index)] = on ? EventBox::On : EventBox::Off;
  }
  AES31Event* const event = project->GetEvent(index);
  if (event != nullptr) SetBox(event->eventOn, on);
}

}  // namespace velmora
