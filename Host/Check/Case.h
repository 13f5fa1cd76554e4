#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Check/CheckProject.h"
#include "Check/Findings.h"
#include "Check/SystemReading.h"
#include "Field/FieldProject.h"
#include "Field/Keyword.h"

namespace velmora::check {

/// A line that makes the system refuse the project, now or once what hides it is gone.
struct FaultyLine {
  Fault fault = Fault::None;
  std::uint32_t offset = 0;                ///< of its opening parenthesis
  std::optional<field::EntryPlace> place;  ///< none for a label inside a comment
  std::string_view label;                  ///< of the file, or of the system's copy of it
};

/// What the judges have before them: a project as it was meant, its files, and what the system
/// makes of the same bytes.
class Case {
 public:
  Case(const field::Project& fieldProject, const SourceMediaList& sourceMedia,
       const CheckOptions& checkOptions, std::string folder, SystemReading systemReading);

  const field::Project& project;
  const SourceMediaList& media;  ///< one for each source of the project, in its order
  const CheckOptions& options;
  const std::string folder;  ///< the ADL's, absolute, without a slash at its end
  const SystemReading system;

  /// A cut that is on, so that it is to be heard. The one test of "live".
  [[nodiscard]] static bool IsLive(const field::Event& event) {
    return event.kind == field::EventKind::Cut && !event.IsOff();
  }
  /// The severity of what concerns a source: a note at most if no live cut uses it.
  [[nodiscard]] Severity OfSource(std::size_t source, Severity severity) const {
    return used_[source] ? severity : Severity::Note;
  }
  /// The same of what concerns a cut that may be off.
  [[nodiscard]] static Severity OfCut(const field::Event& event, Severity severity) {
    return event.IsOff() ? Severity::Note : severity;
  }
  [[nodiscard]] bool IsUsed(std::size_t source) const { return used_[source]; }

  /// Whether the line is the cut in whose values the file ends.
  [[nodiscard]] bool IsCutOffCut(std::optional<field::EntryPlace> place) const;

  /// The line as the system sees it, null if it does not.
  [[nodiscard]] const AES31Entry* System(field::EntryPlace place) const { return seen_[place]; }

  [[nodiscard]] const field::Entry& Line(field::EntryPlace place) const {
    return project.tree.entries[place];
  }
  [[nodiscard]] std::span<const field::Value> Values(field::EntryPlace place) const {
    return project.tree.ValuesOf(Line(place));
  }
  /// A value of a line; null if it has no such one.
  [[nodiscard]] const field::Value* ValueAt(field::EntryPlace place, std::size_t i) const;
  [[nodiscard]] std::size_t OffsetOf(field::EntryPlace place) const {
    return project.tree.OffsetOf(Line(place).label);
  }
  /// Where a label is told to stand: at its opening parenthesis.
  [[nodiscard]] std::size_t LabelOffset(field::EntryPlace place) const;
  /// Where the value of a line stands, or the line itself if it has no such value.
  [[nodiscard]] std::size_t ValueOffset(field::EntryPlace place, std::size_t i) const;

  /// Lines that the system refuses, and those that it would refuse if it came so far.
  [[nodiscard]] const std::vector<FaultyLine>& FaultyLines() const { return faultyLines_; }
  /// Calls `take` with each line of the sections of that name outside reference lists.
  template <class Take>
  void ForEachLine(std::string_view section, const Take& take) const {
    for (const field::Section& candidate : project.tree.sections) {
      if (candidate.inReferenceList || !field::IsKeyword(candidate.name, section)) continue;
      for (std::uint32_t i = 0; i < candidate.entryCount; ++i) take(candidate.firstEntry + i);
    }
  }

  /// "(Infade) 00:00:00.05/0000": a label and one of its values, as UTF-8.
  [[nodiscard]] std::string Show(field::EntryPlace place, std::size_t value) const;
  /// A label with its values, shortened if it is long.
  [[nodiscard]] std::string Show(field::EntryPlace place) const;
  /// A path, told from the project's folder on if it lies below that.
  [[nodiscard]] std::string ShowPath(const std::string& path) const;
  /// A piece of the file as UTF-8, shortened if it is long.
  [[nodiscard]] std::string Show(std::string_view piece) const;

  /// The bytes of a value as the system has them: quotation marks included.
  [[nodiscard]] std::string_view RawOf(const field::Value& value) const {
    return project.tree.RawText(value);
  }
  /// Whether the system has a line's value as the field reader has it.
  [[nodiscard]] bool SeesValue(field::EntryPlace place, std::size_t i) const;
  /// The text of a value as the system reads it; where it does not see the line, as the file has
  /// it.
  [[nodiscard]] std::string SystemText(field::EntryPlace place, std::size_t i) const;

  [[nodiscard]] Place AtLine(field::EntryPlace place) const {
    return {.offset = LabelOffset(place)};
  }
  /// Place of an event's edit, or of its (Entry) if it has none.
  [[nodiscard]] Place AtEdit(std::size_t event) const;

 private:
  void FindFaultyLines();
  template <class Rules>
  void FindFaultyLines(std::string_view section);

  std::vector<const AES31Entry*> seen_;  ///< by entry place
  std::vector<bool> used_;               ///< by source
  std::vector<FaultyLine> faultyLines_;  ///< in file order
};

}  // namespace velmora::check
