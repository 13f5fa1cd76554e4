#include "Model/ViewModel.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "ADL/ShiftJis.h"
#include "Base/Wrapping.h"
#include "Spot/SpotWorker.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

constexpr std::int32_t kSpacer = -1;

/// The constant that fills each row of the project table.
constexpr auto kRowConstants =
    std::to_array<std::int32_t>({5, 6, 7, 8, 9, kSpacer, 15, 17, 18, 19, 20, 22, 23});

EventBox BoxOf(const AES31Event& event) {
  return IsOn(event.eventOn) ? EventBox::On : EventBox::Off;
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
    if (!Rows().AreKept()) ListNothing();
    project.reset();
    loadDiagnostics.clear();
    // Texts so short need no memory.
    loadFailure = LoadFailure{LoadFailureCode::OutOfMemory, 0, "", "", "out of memory"};
    errorMessage = "File NG.";
    return false;
  }
}

bool ViewModel::Load(const std::string& path) {
  KeepRows();
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
  const bool hasCuts = std::any_of(project->events.begin(), project->events.end(), IsCut);
  const Spans spans = hasCuts ? SurveyAndTickAll() : Spans();
  minTrack = spans.project.minTrack;
  maxTrack = spans.project.maxTrack;
  trackCount = WrapSubtract(WrapAdd(maxTrack, 1), minTrack);
  // Without a cut there is no start to show: the rest of the model stays as it was.
  if (!hasCuts) return true;

  firstEvent = spans.project.earliest->destIn;
  lastEvent = spans.project.latest->destOut;
  totalStartTime = TimestampTimecode(firstEvent);
  totalEndTime = TimestampTimecode(lastEvent);
  FillTracks(spans.tracks);
  std::vector<EventBox> boxes(trackPlaces_.size(), EventBox::On);
  ListEvents(EventSet(EventCount(), true));
  eventEnable = std::move(boxes);
  return true;
}

/// The rows may outlive the project that goes now.
void ViewModel::KeepRows() {
  if (!Rows().AreKept()) Show(std::make_shared<EventRows>(Rows().Kept()));
}

/// A constant that the project lacks leaves the row as an earlier project had it.
void ViewModel::FillProjectInfomation() {
  for (std::size_t row = 0; row < kRowConstants.size(); ++row) {
    if (kRowConstants[row] == kSpacer) continue;
    const char* const text = project->GetConstant(static_cast<std::uint32_t>(kRowConstants[row]));
    if (text != nullptr) ProjectInfomation[row] = ShiftJisToUtf8(text);
  }
}

std::int32_t ViewModel::EventCount() const {
  return std::clamp(numEvents, 0, static_cast<std::int32_t>(project->events.size()));
}

/// One pass that reads of the events all that rows and boxes need. `visit` sees each event, with
/// its index and the place of its track.
template <class Visit>
void ViewModel::SurveyEvents(const Visit& visit) {
  std::vector<AES31Event>& events = project->events;
  const std::int32_t count = EventCount();
  auto marks = std::make_shared<EventMarks>(count);
  NumberPlaces tracks;
  std::vector<std::int32_t> places;
  places.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    AES31Event& event = events[static_cast<std::size_t>(i)];
    const bool isCut = IsCut(event);
    places.push_back(isCut ? tracks.PlaceOf(event.cut.destChannel) : NumberPlaces::kNone);
    if (isCut) marks->cuts.Put(i, true);
    if (event.sourceFile != nullptr) marks->found.Put(i, true);
    visit(i, event, places.back());
  }
  marks_ = std::move(marks);
  tracks_ = std::move(tracks);
  trackPlaces_ = std::move(places);
}

ViewModel::Spans ViewModel::SurveyAndTickAll() {
  Spans spans;
  SurveyEvents([&spans](std::int32_t, AES31Event& event, std::int32_t track) {
    event.eventOn = 1;
    event.trackOn = 1;
    if (track == NumberPlaces::kNone) return;
    const auto place = static_cast<std::size_t>(track);
    if (place == spans.tracks.size()) spans.tracks.emplace_back();
    const CutTimes times = TimesOf(event.cut);  // once for both: two timestamps take 40 ns
    spans.project.Include(event.cut, times);
    spans.tracks[place].Include(event.cut, times);
  });
  return spans;
}

/// Every number from the lowest track to the highest has a row; one that no cut uses shows the
/// whole project's span.
void ViewModel::FillTracks(const std::vector<CutSpan>& spans) {
  trackStart.Fill(trackCount, totalStartTime);
  trackEnd.Fill(trackCount, totalEndTime);
  trackEnable.Fill(trackCount, true);
  std::vector<std::pair<std::int32_t, const CutSpan*>> rows;
  rows.reserve(spans.size());
  for (const CutSpan& span : spans) rows.emplace_back(WrapSubtract(span.minTrack, minTrack), &span);
  std::sort(rows.begin(), rows.end());
  for (const auto& [row, span] : rows) {
    trackStart.Set(row, TimestampTimecode(span->earliest->destIn));
    trackEnd.Set(row, TimestampTimecode(span->latest->destOut));
  }
}

void ViewModel::setupEventList() {
  if (project == nullptr) {
    ListNothing();
    errorMessage.clear();
    return;
  }
  EventSet listed(EventCount());
  std::vector<EventBox> boxes;
  boxes.reserve(static_cast<std::size_t>(EventCount()));
  SurveyEvents([&](std::int32_t index, const AES31Event& event, std::int32_t) {
    const bool isListed = IsOn(event.trackOn);
    listed.Put(index, isListed);
    boxes.push_back(isListed ? BoxOf(event) : EventBox::Placeholder);
  });
  ListEvents(std::move(listed));
  eventEnable = std::move(boxes);
}

void ViewModel::ListEvents(EventSet listed) {
  Show(std::make_shared<EventRows>(project, marks_, std::move(listed)));
  errorMessage = Rows().LacksFiles() ? "Some files not found. Check event list." : "";
}

void ViewModel::ListNothing() {
  Show(EventRows::None());
  eventEnable.clear();
}

void ViewModel::Show(const std::shared_ptr<const EventRows>& rows) {
  eventIndices = decltype(eventIndices)(rows);
  eventTypes = decltype(eventTypes)(rows);
  eventNumbers = decltype(eventNumbers)(rows);
  eventCh = decltype(eventCh)(rows);
  eventName = decltype(eventName)(rows);
  eventFound = decltype(eventFound)(rows);
  eventTrack = decltype(eventTrack)(rows);
  eventIn = decltype(eventIn)(rows);
  eventOut = decltype(eventOut)(rows);
  enableEvents = rows->Size();
}
void ViewModel::SetTrackNo(std::int32_t trackNo) {
  TrackNo = trackNo;
}

void ViewModel::SetTrackBox(std::int32_t row, bool on) {
  if (spotRunning || project == nullptr || !trackEnable.Set(row, on)) return;
  SurveyIfOthers();
  std::vector<TrackEdit> edits(tracks_.Numbers().size(), TrackEdit::None);
  const std::int32_t place = tracks_.Find(WrapAdd(row, minTrack));
  if (place != NumberPlaces::kNone)
    edits[static_cast<std::size_t>(place)] = on ? TrackEdit::On : TrackEdit::Off;
  EditTracks(edits);
}

/// Whoever has put another project in by hand is served, too.
void ViewModel::SurveyIfOthers() {
  if (!Rows().AreOf(project) || eventEnable.size() != trackPlaces_.size()) setupEventList();
}

void ViewModel::SetTrackBoxes(const std::function<bool(std::int32_t track)>& on) {
  if (spotRunning || project == nullptr) return;
  if (!std::any_of(project->events.begin(), project->events.end(), IsCut)) return;
  SurveyIfOthers();
  std::vector<TrackEdit> edits;
  for (const std::int32_t track : tracks_.Numbers()) {
    const bool isOn = on(track);
    // A track has its box even where the numbers span too much for the table to have rows.
    trackEnable.Set(WrapSubtract(track, minTrack), isOn);
    edits.push_back(isOn ? TrackEdit::On : TrackEdit::Off);
  }
  EditTracks(edits);
}

/// Touches no event but those whose track is edited.
void ViewModel::EditTracks(const std::vector<TrackEdit>& edits) {
  EventSet listed = Rows().Listed();
  for (std::size_t i = 0; i < trackPlaces_.size(); ++i) {
    const std::int32_t place = trackPlaces_[i];
    if (place == NumberPlaces::kNone) continue;
    const TrackEdit edit = edits[static_cast<std::size_t>(place)];
    if (edit == TrackEdit::None) continue;
    const bool on = edit == TrackEdit::On;
    AES31Event& event = project->events[i];
    SetBox(event.trackOn, on);
    eventEnable[i] = on ? BoxOf(event) : EventBox::Placeholder;
    listed.Put(static_cast<std::int32_t>(i), on);
  }
  ListEvents(std::move(listed));
}

void ViewModel::SetEventBox(std::int32_t row, bool on) {
  if (spotRunning || project == nullptr || row < 0 || row >= Rows().Size()) return;
  const std::int32_t index = Rows().Index(row);
  if (std::cmp_less(index, eventEnable.size())) {
    eventEnable[static_cast<std::size_t>(index)] = on ? EventBox::On : EventBox::Off;
  }
  AES31Event* const event = project->GetEvent(index);
  if (event != nullptr) SetBox(event->eventOn, on);
}

}  // namespace velmora
