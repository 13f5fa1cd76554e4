#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "Model/EventColumn.h"
#include "Model/EventRows.h"
#include "Model/EventSurvey.h"
#include "Model/SparseColumn.h"

namespace velmora {

/// The view's model: what the four tables and the spot read. Main thread only; the one exception is
/// `project`, which a worker shares so that a load cannot pull it from under a run.
class ViewModel {
 public:
  /// Loads a project and fills the model; all boxes are on again. False means that the file does
  /// not load, "File NG.", and leaves the tables as they were; `loadFailure` has the reason. A
  /// project without any cut loads, but fills neither tracks nor event rows.
  bool LoadFile(const std::string& path);

  /// Lists the events whose track is on, anew from what the project's events hold.
  void setupEventList();

  /// Kept for the view's interface; nothing reads the number.
  void SetTrackNo(std::int32_t trackNo);

  /// Edits of check boxes, ignored while a spot runs, with no project, and for rows not there. They
  /// touch no event but those concerned: flags that were set by hand show after setupEventList.
  /// Without memory they change nothing but `errorMessage`.
  void SetTrackBox(std::int32_t row, bool on);
  void SetEventBox(std::int32_t row, bool on);

  /// Sets the boxes of all tracks that a cut uses at once, as so many edits would; asks once for
  /// each track.
  void SetTrackBoxes(const std::function<bool(std::int32_t track)>& on);

  /// What the event columns show.
  [[nodiscard]] const EventRows& Rows() const { return *eventIndices.Rows(); }

  [[nodiscard]] bool HasCuts() const { return project != nullptr && firstEvent != nullptr; }

  std::shared_ptr<AES31Project> project;   ///< null before the first load and after a failed one
  std::optional<LoadFailure> loadFailure;  ///< of the last load; set if that failed
  std::vector<LoadDiagnostic> loadDiagnostics;  ///< of the last load, also of one that failed
  std::array<std::string, 13> ProjectInfomation;
  std::int32_t TrackNo = 0;
  std::int32_t numEvents = 0;
  std::int32_t minTrack = 0;         ///< lowest track of a cut
  std::int32_t maxTrack = 0;         ///< highest track of a cut
  std::int32_t trackCount = 0;       ///< rows of the track table, by 32-bit arithmetic that wraps
  std::int32_t enableEvents = 0;     ///< rows of the event table
  const char* firstEvent = nullptr;  ///< earliest destIn of all cuts; text of the project
  const char* lastEvent = nullptr;   ///< latest destOut of all cuts; text of the project

  // By row of the track table, which is the track number less minTrack.
  SparseColumn<bool> trackEnable;
  SparseColumn<std::string> trackStart;
  SparseColumn<std::string> trackEnd;

  // By event index.
  std::vector<EventBox> eventEnable;

  // By row of the event table. The columns hold nothing: a million cuts would be nine million
  // texts. Which events are rows stays as it was when they were listed; each cell is worked out
  // when asked for, from what no box changes. When the project goes and its rows stay, as after a
  // failed load, they keep copies of the texts.
  template <auto Cell>
  using Column = EventColumn<&EventRows::Size, Cell>;
  Column<&EventRows::Index> eventIndices{EventRows::None()};
  Column<&EventRows::Type> eventTypes{EventRows::None()};
  Column<&EventRows::Number> eventNumbers{EventRows::None()};  ///< "%04d\n" of the event index
  Column<&EventRows::Ch> eventCh{EventRows::None()};
  Column<&EventRows::Name> eventName{EventRows::None()};
  Column<&EventRows::Found> eventFound{EventRows::None()};

  // Of listed cuts alone, without gaps for other events: such rows show the next cut's values.
  template <auto Cell>
  using CutColumn = EventColumn<&EventRows::Cuts, Cell>;
  CutColumn<&EventRows::Track> eventTrack{EventRows::None()};
  CutColumn<&EventRows::In> eventIn{EventRows::None()};
  CutColumn<&EventRows::Out> eventOut{EventRows::None()};

  std::string errorMessage;    ///< the one line of user messages
  std::string totalStartTime;  ///< start of the project's material, as shown
  std::string totalEndTime;    ///< end of the project's material, as shown
  bool spotRunning = false;    ///< no box changes while this is set

 private:
  enum class TrackEdit : std::uint8_t { None, Off, On };

  /// Rows of the event table, and the line of messages that goes with them.
  struct Listed {
    std::shared_ptr<const EventRows> rows;
    std::shared_ptr<const EventMarks> marks;
    std::string message;
  };

  bool Load(const std::string& path);
  void FillProjectInfomation();
  void KeepRows();
  /// The events that the model goes by.
  [[nodiscard]] std::span<AES31Event> Events() const;
  void PrepareTrackEdit();
  void FillTracks(const std::vector<CutSpan>& spans);
  [[nodiscard]] static TrackEdit EditOf(bool on) { return on ? TrackEdit::On : TrackEdit::Off; }
  /// Of edits by place in `places_`: what will be listed, and then the edits themselves.
  [[nodiscard]] Listed ListAfter(const std::vector<TrackEdit>& edits) const;
  void EditTracks(const std::vector<TrackEdit>& edits, Listed listed);
  template <class Change>
  void ForEachEdited(const std::vector<TrackEdit>& edits, const Change& change) const;
  [[nodiscard]] Listed MakeListed(std::shared_ptr<const EventMarks> marks, EventSet listed) const;
  void ShowListed(Listed listed);
  void TellNoMemory();
  void ListNothing();
  void Show(const std::shared_ptr<const EventRows>& rows);

  // Of the events as they were listed. An edit of boxes reads these few bytes of each event and no
  // more: the events themselves are five cache lines each.
  std::shared_ptr<const EventMarks> marks_;
  /// Made by a load; a later listing leaves it empty, and the next edit of a track makes it anew.
  TrackPlaces places_;
};

}  // namespace velmora
