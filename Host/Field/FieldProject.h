#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Field/ChannelRun.h"
#include "Field/FieldTime.h"
#include "Field/FieldTree.h"
#include "Field/FileStarts.h"
#include "Field/Seldom.h"

namespace velmora::field {

/// One source as the ADL tells it. Times are samples at the project's rate. Texts are UTF-8. The
/// values as they stand in the file are told by ReadSourceTexts of `fPlace`.
struct Source {
  std::int32_t index = 0;                  ///< the number under which events name it
  EntryPlace place = 0;                    ///< its (Index), its (F) if it has none
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

/// The status of a cut as a capital letter, `_` for a text that is none.
[[nodiscard]] inline char ReadStatus(std::string_view text) {
  const char c = text.size() == 1 ? text[0] : '_';
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  return c >= 'A' && c <= 'Z' ? c : '_';
}

/// Disabled, muted, or an error: a cut of that status is not to be heard.
[[nodiscard]] inline bool IsOffStatus(char status) {
  return status == 'D' || status == 'M' || status == 'E';
}

enum class EventKind { Cut, Silence, Aux, Video, Other };

/// One event. Places are samples at the project's rate. Texts are UTF-8. The values as they stand
/// in the file are told by ReadCutTexts of `edit`.
///
/// A second (Cut) after one (Entry) is an event of its own, with the same number.
struct Event {
  std::int32_t number = 0;  ///< its (Entry)
  bool numberMissing = false;
  EntryPlace place = 0;            ///< its (Entry), its (Cut) if it has none
  EntryPlace endPlace = 0;         ///< one past the last entry that belongs to it
  std::optional<EntryPlace> edit;  ///< its (Cut), (Silence), ...
  EventKind kind = EventKind::Other;
  std::string name;      ///< (Rem) NAME
  char status = '_';     ///< of a cut, as a capital letter: R, D, M, E, X, or `_`
  bool complete = true;  ///< false for a cut whose times are not given or that the text's end cuts

  // Of a cut:
  std::optional<std::size_t> source;        ///< position in Project::sources; none: no such index
  std::optional<std::int32_t> sourceIndex;  ///< the number that stands there; none for a file name
  bool indexIsName = false;                 ///< a file name stands in place of the index
  ChannelRun sourceChannels;
  ChannelRun tracks;
  std::int64_t sourceIn = 0;
  std::int64_t position = 0;  ///< destination in
  std::int64_t end = 0;       ///< destination out, exclusive
  // The last (Infade) and (Outfade), also those that make no fade: of no length, or none given.
  std::optional<EntryPlace> fadeInPlace;
  std::optional<EntryPlace> fadeOutPlace;
  Seldom<Fade> fadeIn;
  Seldom<Fade> fadeOut;
  std::vector<Gain> gains;  ///< as written; see GainOf

  [[nodiscard]] bool IsOff() const { return IsOffStatus(status); }
  /// The gain of one destination channel: of several lines that hold for it the last. None: 0 dB.
  [[nodiscard]] std::optional<double> GainOf(std::int32_t destinationChannel) const;
};

/// What a time is the time of.
enum class TimeRole { Header, Source, Cut, Fade };

/// Timestamps with the same marks and the same role.
struct MarksUse {
  StampMarks marks;  ///< of the first of them
  TimeRole role = TimeRole::Cut;
  std::string_view first;  ///< the first of them, in the file
  std::size_t count = 0;
};

/// What the header says of time. A keyword that stands twice counts as the later.
struct HeaderFacts {
  std::optional<EntryPlace> sampleRatePlace;    ///< (SEQ_SAMPLE_RATE)
  std::optional<EntryPlace> frameRatePlace;     ///< (SEQ_FRAME_RATE)
  std::optional<EntryPlace> destStartPlace;     ///< (SEQ_DEST_START)
  std::optional<EntryPlace> sourceOffsetPlace;  ///< (SYS_SRC_OFFSET)
  bool hasSourceOffset = false;                 ///< SYS_SRC_OFFSET is given and is not 0
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
  /// The encoding of `bytes`: the same, but UTF-8 if the file had to be converted as a whole.
  std::string bytesEncoding;
  bool isAdl = false;  ///< there is an <ADL> or an EVENT_LIST
  HeaderFacts header;
  TimeContext times;  ///< how timestamps were read
  /// The project's: those of the first cut in the text that has a time. Without one, those of the
  /// first source or else the first other event that has one, else the header's, else 48000 Hz and
  /// 30 frames.
  TimeRates rates;
  std::vector<MarksUse> marks;              ///< the different marks of its timestamps, by first use
  std::vector<Source> sources;              ///< in file order, the later of two with one number
  std::vector<EntryPlace> replacedSources;  ///< the (Index) of each that a later one replaces
  std::vector<Event> events;  ///< by rising number; events with one number in file order

  /// A text of the file as UTF-8, read in the project's encoding, with its escapes undone.
  [[nodiscard]] std::string TextOf(const Value& value) const;
  /// Offset of `sourceIn` in the source's file, in samples at the project's rate. None for an event
  /// without a source.
  [[nodiscard]] std::optional<std::int64_t> FileOffset(const Event& event) const;
};

/// Reads a project. Never fails; a text that is no ADL has `isAdl` false.
/// @param path absolute: encodings are told apart by the files that they name beside it
[[nodiscard]] std::unique_ptr<Project> ReadProject(std::string bytes, const std::string& path,
                                                   const ReadOptions& options);

/// Decides `fileStart` of every source. `audio` has one element for each source, in the order of
/// Project::sources; none for a file that is missing or that nothing reads.
///
/// A start that is not given, or under which no cut of the source lies inside the file though under
/// the file's time reference or under 0 all do, is decided between these two: the one under which
/// more cuts lie inside, the time reference if equal, 0 if none do. The cuts that count are those
/// that are on, or all if none is.
void DecideFileStarts(Project& project, const std::vector<std::optional<SourceAudio>>& audio);

}  // namespace velmora::field
