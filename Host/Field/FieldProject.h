#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Field/FieldTime.h"
#include "Field/FieldTree.h"

namespace velmora::field {

/// Place of an Entry in Tree::entries.
using EntryPlace = std::uint32_t;

/// A run of channels or tracks, counted from 1: "3" is 3 to 3, "1~2" and "1-2" are 1 to 2, "_"
/// is 1.
struct ChannelRun {
  std::int32_t first = 1;
  std::int32_t last = 1;
  [[nodiscard]] std::int32_t Count() const { return last - first + 1; }
  bool operator==(const ChannelRun&) const = default;
};

/// One source as the ADL tells it. Times are samples at the project's rate. Texts are UTF-8.
struct Source {
  std::int32_t index = 0;                  ///< the number under which events name it
  EntryPlace place = 0;                    ///< its (Index)
  std::optional<EntryPlace> fPlace;        ///< its (F)
  std::string location;                    ///< first (F) value, as spelled, quotation marks off
  std::string reference;                   ///< second (F) value, empty for `_`
  std::optional<std::int64_t> givenStart;  ///< third (F) value
  std::optional<std::int64_t> length;      ///< fourth (F) value
  std::string name;                        ///< fifth (F) value, empty for `_`
  bool numberMissing = false;              ///< (Index) without a number: numbered by its place
  /// Position in time of the file's first sample; what DecideFileStarts makes of givenStart.
  std::int64_t fileStart = 0;
  bool startDecided = false;  ///< fileStart is not what the ADL gives (finding file-start-missing)
};

/// What is known of a source's audio file when file starts are decided. Rates are the file's own.
struct SourceAudio {
  double sampleRate = 0;
  std::int64_t frames = 0;
  std::optional<std::int64_t> timeReference;  ///< bext, in samples since midnight
};

struct Rendered {
  std::string source;  ///< source type and index of the rendered file, as the ADL has them
  std::optional<std::int64_t> in;  ///< samples at the project's rate
};

struct Fade {
  EntryPlace place = 0;                           ///< its (Infade) or (Outfade)
  std::int64_t length = 0;                        ///< above 0; samples at the project's rate
  std::string shape;                              ///< "LIN", "CURVE", empty for none
  std::array<std::optional<double>, 3> levelsDb;  ///< at 25, 50 and 75 %
  std::optional<Rendered> rendered;
};

struct Gain {
  EntryPlace place = 0;
  std::optional<ChannelRun> channels;  ///< destination channels; none: all of them
  double dB = 0;
};

enum class EventKind { Cut, Silence, Aux, Video, Other };

/// One event. Places are samples at the project's rate. Texts are UTF-8.
struct Event {
  std::int32_t number = 0;  ///< its (Entry)
  bool numberMissing = false;
  EntryPlace place = 0;            ///< its (Entry)
  std::optional<EntryPlace> edit;  ///< its (Cut), (Silence), ...
  EventKind kind = EventKind::Other;
  std::string name;      ///< (Rem) NAME
  char status = '_';     ///< of a cut, as a capital letter: R, D, M, E, X, or `_`
  bool complete = true;  ///< false for a cut whose times are not given or that the text's end cuts

  // Of a cut:
  std::optional<std::size_t> source;        ///< position in Project::sources; none: no such index
  std::optional<std::int32_t> sourceIndex;  ///< the number that stands there; none for a file name
  ChannelRun sourceChannels;
  ChannelRun tracks;
  std::int64_t sourceIn = 0;
  std::int64_t position = 0;  ///< destination in
  std::int64_t end = 0;       ///< destination out, exclusive
  std::optional<Fade> fadeIn;
  std::optional<Fade> fadeOut;
  std::vector<Gain> gains;  ///< as written; see GainOf

  [[nodiscard]] bool IsOff() const { return status == 'D' || status == 'M' || status == 'E'; }
  /// The gain of one destination channel: of several lines that hold for it the last. None: 0 dB.
  [[nodiscard]] std::optional<double> GainOf(std::int32_t destinationChannel) const;
};

/// How a text is to be read.
struct ReadOptions {
  Trust trust = Trust::Marks;
  std::string encoding;  ///< a name that iconv knows; empty: found out, see Encoding.h
};

/// A project as its writer meant it.
struct Project {
  std::string bytes;  ///< the file; Tree and views point into it
  Tree tree;
  std::string encoding;  ///< "ASCII", "UTF-8", "Shift-JIS", "Windows-1252", "GBK" or the one given
  bool isAdl = false;    ///< there is an <ADL> or an EVENT_LIST
  TimeContext times;     ///< how timestamps were read
  TimeRates rates;       ///< the project's: those of the first cut in the text
  std::vector<Source> sources;  ///< in file order, the later of two with one number
  std::vector<Event> events;    ///< by rising number; events with one number in file order

  /// A text of the file as UTF-8, read in the project's encoding, with its escapes undone.
  [[nodiscard]] std::string TextOf(const Value& value) const;
  /// Offset of `fileStart` in the source's file, in samples at the project's rate.
  [[nodiscard]] std::optional<std::int64_t> FileOffset(const Event& event) const;
};

/// Reads a project. Never fails; a text that is no ADL has `isAdl` false.
/// @param path absolute: encodings are told apart by the files that they name beside it
[[nodiscard]] std::unique_ptr<Project> ReadProject(std::string bytes, const std::string& path,
                                                   const ReadOptions& options);

/// Decides `fileStart` of every source. `audio` has one element for each source, in the order of
/// Project::sources; none for a file that is missing or that nothing reads.
void DecideFileStarts(Project& project, const std::vector<std::optional<SourceAudio>>& audio);

}  // namespace velmora::field
