#pragma once

#include <optional>
#include <string_view>

#include "Field/FieldProject.h"

namespace velmora::field {

/// A text of SEQ_SAMPLE_RATE in Hz: "S48000", "48000", "48 kHz", "44.1". None if unreadable.
[[nodiscard]] std::optional<double> ReadSampleRate(std::string_view text);

/// A text of SEQ_FRAME_RATE: "25", "29.97", "30D", "29.97 df", "23.976", "30000/1001". The sample
/// rate of the answer says nothing. None if unreadable.
[[nodiscard]] std::optional<TimeRates> ReadFrameRate(std::string_view text);

/// Reads what the header says of time, and how timestamps without a sample-rate mark are read.
void ReadTimeContext(Project& project);

// The project's rates are those of its first cut; without one those of the first source, without
// any those of another event, and then those of the header. What stands in other sections are other
// programs' matters.

/// Those of the first cut that has a time.
[[nodiscard]] std::optional<TimeRates> RatesOfCuts(const Project& project);

/// Those of the first time in the list of events, remarks apart.
[[nodiscard]] std::optional<TimeRates> RatesOfEvents(const Project& project);

/// Those of the first time in SYSTEM and SEQUENCE, else what SEQ_SAMPLE_RATE and SEQ_FRAME_RATE
/// say.
[[nodiscard]] TimeRates RatesOfHeader(const Project& project);

/// Labels of a section by its name, in file order, those of reference lists apart.
template <class Take>
void ForEachEntryOf(const Tree& tree, bool (*wanted)(std::string_view sectionName), Take take) {
  for (const Section& section : tree.sections) {
    if (section.inReferenceList || !wanted(section.name)) continue;
    for (std::uint32_t i = 0; i < section.entryCount; ++i) {
      const EntryPlace place = section.firstEntry + i;
      if (!take(tree.entries[place], place, i == 0 && !section.resumed)) return;
    }
  }
}

/// SYSTEM and SEQUENCE, whose constants may be times.
[[nodiscard]] bool IsProjectHeader(std::string_view sectionName);
[[nodiscard]] bool IsEventList(std::string_view sectionName);
[[nodiscard]] bool IsSourceIndex(std::string_view sectionName);

}  // namespace velmora::field
