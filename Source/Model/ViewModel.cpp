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
  EventSet all(survey.marks->cuts.Events(), true);
  ShowListed(MakeListed(std::move(survey.marks), std::move(all)));
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
  ShowListed(MakeListed(std::move(listing.marks), std::move(listing.listed)));
  places_.ofEvents.clear();
  eventEnable = std::move(listing.boxes);
}

ViewModel::Listed ViewModel::MakeListed(std::shared_ptr<const EventMarks> marks,
                                        EventSet listed) const {
  auto rows = std::make_shared<EventRows>(project, marks, std::move(listed));
  std::string message = rows->LacksFiles() ? "Some files not found. Check event list." : "";
  return {std::move(rows), std::move(marks), std::move(message)};
}

void ViewModel::ShowListed(Listed listed) {
  Show(listed.rows);
  marks_ = std::move(listed.marks);
  errorMessage = std::move(listed.message);
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
  if (spotRunning || project == nullptr || !trackEnable.Has(row)) return;
  try {
    PrepareTrackEdit();
    std::vector<TrackEdit> edits(places_.tracks.Numbers().size(), TrackEdit::None);
    const std::int32_t place = places_.tracks.Find(WrapAdd(row, minTrack));
    if (place != NumberPlaces::kNone) edits[static_cast<std::size_t>(place)] = EditOf(on);
    Listed listed = ListAfter(edits);
    trackEnable.Set(row, on);
    EditTracks(edits, std::move(listed));
  } catch (const std::bad_alloc&) {
    TellNoMemory();
  }
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
  try {
    PrepareTrackEdit();
    std::vector<TrackEdit> edits;
    SparseColumn<bool> boxes = trackEnable;
    for (const std::int32_t track : places_.tracks.Numbers()) {
      const bool isOn = on(track);
      // A track has its box even where the numbers span too much for the table to have rows.
      boxes.Set(WrapSubtract(track, minTrack), isOn);
      edits.push_back(EditOf(isOn));
    }
    Listed listed = ListAfter(edits);
    trackEnable = std::move(boxes);
    EditTracks(edits, std::move(listed));
  } catch (const std::bad_alloc&) {
    TellNoMemory();
  }
}

template <class Change>
void ViewModel::ForEachEdited(const std::vector<TrackEdit>& edits, const Change& change) const {
  for (std::size_t i = 0; i < places_.ofEvents.size(); ++i) {
    const std::int32_t place = places_.ofEvents[i];
    if (place == NumberPlaces::kNone) continue;
    const TrackEdit edit = edits[static_cast<std::size_t>(place)];
    if (edit != TrackEdit::None) change(i, edit == TrackEdit::On);
  }
}

ViewModel::Listed ViewModel::ListAfter(const std::vector<TrackEdit>& edits) const {
  EventSet listed = Rows().Listed();
  ForEachEdited(
      edits, [&](std::size_t event, bool on) { listed.Put(static_cast<std::int32_t>(event), on); });
  return MakeListed(marks_, std::move(listed));
}

/// Touches no event but those whose track is edited. Needs no memory.
void ViewModel::EditTracks(const std::vector<TrackEdit>& edits, Listed listed) {
  ForEachEdited(edits, [&](std::size_t i, bool on) {
    AES31Event& event = project->events[i];
    SetBox(event.trackOn, on);
    eventEnable[i] = on ? BoxOf(event) : EventBox::Placeholder;
  });
  ShowListed(std::move(listed));
}

void ViewModel::TellNoMemory() {
  errorMessage = "Out of memory.";  // a text so short needs none
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
