#pragma once

#include <cstdint>

namespace velmora {

class AES31BWF;

// The records of the event list. All texts point into the project's file block, in raw form, and
// are null where the file gave none. The records are plain and zero-initialised as a whole.

/// (Cut): a stretch of a source on a track of the timeline.
///
///     source    |----[sourceIn ========== )-----|
///                     \                    \.
///     timeline  -------[destIn ==== destOut )---     on track destChannel
struct AES31Cut {
  const char* sourceType;
  const char* sourceIn;  ///< timestamp in the source's own time
  const char* destIn;    ///< timestamp on the timeline
  const char* destOut;   ///< timestamp on the timeline, exclusive
  const char* cutTail;
  std::int32_t sourceIndex;  ///< number in the source index
  std::int32_t sourceChannel;
  std::int32_t destChannel;  ///< track number
  std::int32_t cutMark1;
  std::int32_t cutMark2;
};

/// (Silence) and (Aux).
struct AES31Silence {
  const char* silenceText1;
  const char* silenceText2;
  const char* silenceText3;
  std::int32_t silenceNumber;
  std::int32_t silenceMark;
};

/// (Vid).
struct AES31Vid {
  const char* vidText0;
  const char* vidText1;
  const char* vidText2;
  const char* vidText3;
};

/// (Alt): no edit in its own right; it never becomes an event's label.
struct AES31Alt {
  const char* altType;
  const char* altTime;
  std::int32_t altIndex;  ///< number in the source index
  std::int32_t altChannel;
  std::int32_t altMark;
};

/// (Infade) and (Outfade).
struct AES31Fade {
  bool present;
  const char* length;  ///< timestamp
  const char* fadeText1;
  const char* fadeText5;
  const char* fadeText7;
  std::int32_t fadeNumber6;
  double fadeParam2;
  double fadeParam3;
  double fadeParam4;
};

/// (Xfade): stored, but crossfades are made from a pair of Outfade and Infade.
struct AES31Crossfade {
  bool present;
  const char* xfadeText1;
  const char* xfadeText2;
  const char* xfadeText3;
  const char* xfadeText5;
  std::int32_t xfadeNumber0;
  std::int32_t xfadeNumber4;
};

/// (Gain).
struct AES31Gain {
  bool present;
  std::int32_t gainNumber;
  double gainDb;
};

/// One (Entry) of the EVENT_LIST section. Copied bytewise.
struct AES31Event {
  const char* label;  ///< the edit keyword as the file spells it; null if there was none
  union {
    AES31Cut cut;
    AES31Silence silence;
    AES31Vid vid;
    AES31Alt alt;
  };
  AES31Fade infade;
  AES31Fade outfade;
  AES31Crossfade xfade;
  AES31Gain gain;
  std::int32_t entryNumber;
  AES31BWF* sourceFile;      ///< the source's file, shared by its events; the project owns it
  const char* sourceStart;   ///< timestamp of the source file's first sample
  const char* sourceLength;  ///< the source's fourth (F) value
  std::int32_t eventOn;      ///< the event's check box, see IsOn
  std::int32_t trackOn;      ///< the check box of the event's track
  AES31BWF* renderedFile;    ///< made by a spot for this event, which owns it while it is set
};

enum class EditKind { None, Cut, Silence, Vid, Alt };

/// Which member of the edit part the event holds.
[[nodiscard]] EditKind KindOf(const AES31Event& event);

// A user may change the boxes while an aborted worker still looks at its last event, so those two
// read and write them atomically.
[[nodiscard]] bool IsOn(const std::int32_t& box);
void SetBox(std::int32_t& box, bool on);

/// True for an event whose label is "Cut" in any case: the only kind that a spot places.
[[nodiscard]] bool IsCut(const AES31Event& event);

}  // namespace velmora
