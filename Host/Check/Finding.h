#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "Check/SharedText.h"

namespace velmora::check {

/// What becomes of the project if nothing is done, the worst first.
enum class Severity : std::uint8_t { Fails, Misplaced, Lost, Note };

/// The name in JSON: "fails", "misplaced", "lost", "note".
[[nodiscard]] const char* NameOf(Severity severity);

enum class Code : std::uint8_t {
  NotAnAdl,
  FadeSeparator,
  FadeForm,
  ValuesMissing,
  IndexMissing,
  IndexName,
  IndexTwice,
  StrayText,
  EntryTwice,
  TextCutOff,
  FileStartMissing,
  SourceMissing,
  MediaMissing,
  MediaAmbiguous,
  MediaElsewhere,
  LocationForm,
  MediaKind,
  MediaChunks,
  MediaBroken,
  MediaRate,
  CutOutsideFile,
  Channels,
  EventOff,
  EventError,
  EventEmpty,
  FadeCurve,
  FadeRendered,
  XfadeLabel,
  FadeOverlong,
  GainChannels,
  RateMixed,
  MarksDiffer,
  RateCompensated,
  TextEncoding,
  NamesUnused,
  TracksUnused,
  AutomationUnused,
  MarkersUnused,
  OffsetUnused,
};

struct CodeRow {
  Code code;
  const char* name;   ///< what scripts compare with: a code keeps its name for good
  const char* title;  ///< for people: heads a group of findings
};

/// By code.
inline constexpr auto kCodes = std::to_array<CodeRow>({
    {Code::NotAnAdl, "not-an-adl", "This is no ADL"},
    {Code::FadeSeparator, "fade-separator",
     "Fade lengths with another mark than ; or , before the frames"},
    {Code::FadeForm, "fade-form", "Fade lengths that are no time"},
    {Code::ValuesMissing, "values-missing", "Lines with too few values"},
    {Code::IndexMissing, "index-missing", "Sources or entries without a number"},
    {Code::IndexName, "index-name", "Cuts that name a file in place of a source number"},
    {Code::IndexTwice, "index-twice", "Source numbers given twice"},
    {Code::StrayText, "stray-text", "Text that ends the reading of a section"},
    {Code::EntryTwice, "entry-twice", "Entry numbers given twice"},
    {Code::TextCutOff, "text-cut-off", "The file ends too early"},
    {Code::FileStartMissing, "file-start-missing",
     "Sources that do not say where their file starts"},
    {Code::SourceMissing, "source-missing", "Cuts of sources that are not listed"},
    {Code::MediaMissing, "media-missing", "Audio files that are nowhere"},
    {Code::MediaAmbiguous, "media-ambiguous", "Audio files of which there are several, or may be"},
    {Code::MediaElsewhere, "media-elsewhere",
     "Audio files in places where they are not looked for"},
    {Code::LocationForm, "location-form", "Locations in a form that hides the file"},
    {Code::MediaKind, "media-kind", "Audio files in a format that reads as silence or noise"},
    {Code::MediaChunks, "media-chunks", "Audio files whose header misleads the reader"},
    {Code::MediaBroken, "media-broken", "Audio files that nothing reads"},
    {Code::MediaRate, "media-rate", "Audio files at another sample rate"},
    {Code::CutOutsideFile, "cut-outside-file", "Cuts that reach outside their file"},
    {Code::Channels, "channels", "Cuts of several channels"},
    {Code::EventOff, "event-off", "Events that are switched off"},
    {Code::EventError, "event-error", "Events marked as errors"},
    {Code::EventEmpty, "event-empty", "Events without a length"},
    {Code::FadeCurve, "fade-curve", "Fades of another shape than a straight line"},
    {Code::FadeRendered, "fade-rendered", "Fades with a rendered file of their own"},
    {Code::XfadeLabel, "xfade-label", "(Xfade) lines"},
    {Code::FadeOverlong, "fade-overlong", "Fades longer than their cut"},
    {Code::GainChannels, "gain-channels", "Gains that differ between channels"},
    {Code::RateMixed, "rate-mixed", "Several rates in one project"},
    {Code::MarksDiffer, "marks-differ",
     "Times whose rate marks are missing or differ from the header"},
    {Code::RateCompensated, "rate-compensated", "Everything would move"},
    {Code::TextEncoding, "text-encoding", "Texts that would show other characters"},
    {Code::NamesUnused, "names-unused", "Names that go unused"},
    {Code::TracksUnused, "tracks-unused", "Track names that go unused"},
    {Code::AutomationUnused, "automation-unused", "Automation that goes unused"},
    {Code::MarkersUnused, "markers-unused", "Markers that go unused"},
    {Code::OffsetUnused, "offset-unused", "A source offset that goes unused"},
});

[[nodiscard]] constexpr const CodeRow& RowOf(Code code) {
  return kCodes[static_cast<std::size_t>(code)];
}

/// One thing that will go wrong, or is worth knowing. Texts are UTF-8, for a sound engineer. Small,
/// since odd files have millions; numbers of 32 bits hold every place of a file that is checked.
struct Finding {
  Code code = Code::NotAnAdl;
  Severity severity = Severity::Note;
  std::int32_t line = 0;               ///< from 1; 0: the file as a whole
  std::int32_t column = 0;             ///< in bytes, from 1; 0: the file as a whole
  std::optional<std::int32_t> entry;   ///< number of the (Entry)
  std::optional<std::int32_t> source;  ///< number of the (Index)
  SharedText text;                     ///< what stands there
  SharedText effect;                   ///< what the system will do with it
  SharedText remedy;                   ///< what helps
};

}  // namespace velmora::check
