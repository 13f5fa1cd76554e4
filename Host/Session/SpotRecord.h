#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ADL/ProjectConstants.h"

namespace velmora::host {

/// Something of a ticked cut that did not arrive, and where it would have been.
struct LeftOutPart {
  std::int32_t event = 0;     ///< position in the project's list
  std::int32_t entry = 0;     ///< number of the (Entry)
  std::int64_t track = 0;     ///< from 0, the session's first track
  std::int64_t position = 0;  ///< on the session's timeline, in samples
  std::string text;           ///< UTF-8, one line: what is missing, and why
  std::string remedy = {};    ///< what helps
};

/// An event of the project, also one that a spot leaves alone.
struct RecordedEvent {
  std::int32_t event = 0;              ///< position in the project's list
  std::int32_t entry = 0;              ///< number of the (Entry)
  std::string kind;                    ///< "cut", "silence", "vid", "alt", "none"
  std::string name;                    ///< of its source, as the event list shows it
  bool isOn = false;                   ///< both its box and its track's are ticked
  bool isMissing = false;              ///< a cut without a usable file
  std::optional<std::int32_t> source;  ///< number of the (Index), of a cut
  std::string path;                    ///< of its source's file; empty for none
  /// Of a cut: from 0, the session's first track; and samples on the session's timeline, the end
  /// exclusive.
  std::int64_t track = 0;
  std::int64_t position = 0;
  std::int64_t end = 0;
  std::int64_t fadeIn = 0;   ///< samples, as the project has it
  std::int64_t fadeOut = 0;  ///< samples, as the project has it
  double gainDb = 0;

  [[nodiscard]] bool IsCut() const { return kind == "cut"; }
};

/// A file that the run made, or could not make, or would make.
struct RecordedFile {
  enum class State { Made, Failed, Planned };
  State state = State::Made;
  std::string pass;        ///< "depth", "gain", "fade"
  std::int32_t event = 0;  ///< position in the project's list
  std::string path;        ///< of a planned file: that of its source
};

/// What another target of the same run came to.
struct RecordedTarget {
  std::string name;  ///< of its kind: "dawproject"
  std::string path;
  bool isPlanned = false;
  std::string trouble;               ///< as TargetOutcome has it, also the two that follow
  std::vector<std::string> leftOut;  ///< a line each
  std::vector<std::string> notes;    ///< a line each
};

/// Something that the run said.
struct RecordedMessage {
  enum class Kind {
    Warning,  ///< an alert of the system
    Note,     ///< what the program adds to it
    Trouble,  ///< a line of the file layer: what could not be written
    Remark,   ///< a region that was placed and is worth a look
  };
  Kind kind = Kind::Note;
  std::string text;
  std::string remedy = {};  ///< what helps; empty where nothing needs to be done
};

/// What a check of the project finds.
struct RecordedFinding {
  std::string severity;  ///< "fails", "misplaced", "lost", "note"
  std::string code;
  std::int64_t line = 0;  ///< from 1; 0: the file as a whole
  std::optional<std::int32_t> entry;
  std::optional<std::int32_t> source;
  std::string text;    ///< what stands there
  std::string effect;  ///< what the system does with it
  std::string remedy;  ///< what helps
};

/// The options of a spot, as far as a person reads them.
struct RecordedOptions {
  std::int32_t bitDepth = 24;
  bool fades = false;
  bool gain = false;
  bool native = false;
  std::string copyFolder;           ///< empty for none
  std::string position;             ///< in words: "as in the project"
  std::int64_t timelineOffset = 0;  ///< samples added to every position
};

/// What is known of a spot beside the session that it filled: what a target may want to write
/// along. Texts are UTF-8, paths and names any bytes.
struct SpotRecord {
  std::string projectPath;  ///< absolute; empty if only the session is known
  std::string title;        ///< of the sequence, else of the project, else the ADL's file name
  /// By id, without the quotation marks of the file; none for what the file does not give.
  std::array<std::optional<std::string>, kProjectConstants.size()> constants;
  std::int32_t firstTrackNumber = 1;  ///< the project's number of the session's track 0
  std::vector<LeftOutPart> leftOut;

  // What follows is filled for targets that tell what became of the spot (Use::Record).

  bool isPlan = false;  ///< nothing was made: the regions show their sources
  bool wasStopped = false;
  double projectRate = 0;             ///< Hz, of the earliest cut; 0 if it names none
  std::vector<RecordedEvent> events;  ///< in the project's order
  std::vector<RecordedFile> files;    ///< in order of making
  std::vector<RecordedTarget> targets = {};
  std::vector<RecordedMessage> messages;
  std::vector<RecordedFinding> findings;
  RecordedOptions options;

  /// The project's number of a session's track, by which targets name it.
  [[nodiscard]] std::int64_t TrackNumber(std::int64_t track) const {
    return track + firstTrackNumber;
  }
};

}  // namespace velmora::host
