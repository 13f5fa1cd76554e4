#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "Model/SparseColumn.h"

namespace velmora {

/// The state of an event's check box; events of a track that is off have none.
enum class EventBox : std::uint8_t { Off, On, Placeholder };

/// The view's model: what the four tables and the spot read. Main thread only; the one exception is
/// `project`, which a worker shares so that a load cannot pull it from under a run.
class ViewModel {
 public:
  /// Loads a project and fills the model; all boxes are on again. False means that the file does
  /// not load, "File NG.", and leaves the tables as they were; `loadFailure` has the reason. A
  /// project without any cut loads, but fills neither tracks nor event rows.
  bool LoadFile(const std::string& path);

  /// Builds the event rows anew from the events whose track is on.
  void setupEventList();

  /// Kept for the view's interface; nothing reads the number.
  void SetTrackNo(std::int32_t trackNo);

  /// Edits of check boxes, ignored while a spot runs, with no project, and for rows not there.
  void SetTrackBox(std::int32_t row, bool on);
  void SetEventBox(std::int32_t row, bool on);

  /// Sets the boxes of all tracks that a cut uses at once, as so many edits would.
  void SetTrackBoxes(const std::function<bool(std::int32_t track)>& on);

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

  // By row of the event table.
  std::vector<std::int32_t> eventIndices;
  std::vector<std::string> eventTypes;
  std::vector<std::string> eventNumbers;  ///< "%04d\n" of the event index
  std::vector<std::string> eventCh;
  std::vector<std::string> eventName;
  std::vector<bool> eventFound;

  // Of listed cuts alone, without gaps for other events: such rows show the next cut's values.
  std::vector<std::string> eventTrack;
  std::vector<std::string> eventIn;
  std::vector<std::string> eventOut;

  std::string errorMessage;    ///< the one line of user messages
  std::string totalStartTime;  ///< start of the project's material, as shown
  std::string totalEndTime;    ///< end of the project's material, as shown
  bool spotRunning = false;    ///< no box changes while this is set

 private:
  bool Load(const std::string& path);
  void FillProjectInfomation();
  bool FindSpan();
  void FillTracks();
  void ListEvent(std::int32_t index, const AES31Event& event);
};

}  // namespace velmora
