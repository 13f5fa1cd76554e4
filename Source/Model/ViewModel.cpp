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
  EventSurvey survey = SurveyAndTickAll(hasCuts ? Events() : std::span<AES31Event>());
  minTrack = survey.project.minTrack;
  maxTrack = survey.project.maxTrack;
  trackCount = WrapSubtract(WrapAdd(maxTrack, 1), minTrack);
  // Without a cut there is no start to show: the rest of the model stays as it was.
  if (!hasCuts) return true;

  firstEvent = survey.project.earliest->destIn;
  lastEvent = survey.project.latest->destOut;
  totalStartTime = TimestampTimecode(firstEvent);
  totalEndTime = TimestampTimecode(lastEvent);
  FillTracks(survey.tracks);
  std::vector<EventBox> boxes(Events().size(), EventBox::On);
  ShowListed(survey.marks, EventSet(survey.marks->cuts.Events(), true));
  places_ = std::move(survey.places);
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

std::span<AES31Event> ViewModel::Events() const {
  std::vector<AES31Event>& events = project->events;
  return {events.data(), std::min(static_cast<std::size_t>(std::max(numEvents, 0)), events.size())};
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
  EventListing listing = ListEvents(Events());
  ShowListed(listing.marks, std::move(listing.listed));
  places_.ofEvents.clear();
  eventEnable = std::move(listing.boxes);
}

void ViewModel::ShowListed(std::shared_ptr<const EventMarks> marks, EventSet listed) {
  Show(std::make_shared<EventRows>(project, marks, std::move(listed)));
  marks_ = std::move(marks);
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
  PrepareTrackEdit();
  std::vector<TrackEdit> edits(places_.tracks.Numbers().size(), TrackEdit::None);
  const std::int32_t place = places_.tracks.Find(WrapAdd(row, minTrack));
  if (place != NumberPlaces::kNone)
    edits[static_cast<std::size_t>(place)] = on ? TrackEdit::On : TrackEdit::Off;
  EditTracks(edits);
}

/// Whoever has put in another project by hand, or another number of events, is served, too.
void ViewModel::PrepareTrackEdit() {
  const auto count = static_cast<std::size_t>(Rows().Listed().Events());
  const bool isListed = Events().size() == count && eventEnable.size() == count;
  if (!isListed || !Rows().AreOf(project)) setupEventList();
  if (places_.ofEvents.empty()) places_ = PlaceTracks(Events(), marks_->cuts);
}

void ViewModel::SetTrackBoxes(const std::function<bool(std::int32_t track)>& on) {
  if (spotRunning || project == nullptr) return;
  if (!std::any_of(project->events.begin(), project->events.end(), IsCut)) return;
  PrepareTrackEdit();
  std::vector<TrackEdit> edits;
  for (const std::int32_t track : places_.tracks.Numbers()) {
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
  for (std::size_t i = 0; i < places_.ofEvents.size(); ++i) {
    const std::int32_t place = places_.ofEvents[i];
    if (place == NumberPlaces::kNone) continue;
    const TrackEdit edit = edits[static_cast<std::size_t>(place)];
    if (edit == TrackEdit::None) continue;
    const bool on = edit == TrackEdit::On;
    AES31Event& event = project->events[i];
    SetBox(event.trackOn, on);
    eventEnable[i] = on ? BoxOf(event) : EventBox::Placeholder;
    listed.Put(static_cast<std::int32_t>(i), on);
  }
  ShowListed(marks_, std::move(listed));
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
