#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velmora::check {

/// One label with its values, as the system's readers get it.
struct LabelLine {
  std::string_view label;  ///< without parentheses
  std::size_t valueCount = 0;
  const char* first = nullptr;  ///< the first value, quotation marks included; null for none
};

/// What makes the system refuse a project as a whole.
enum class Fault : std::uint8_t {
  None,
  IndexMissing,   ///< an (Index) or (Entry) without any value
  ValuesMissing,  ///< a label with fewer values than its reader asks for
  FadeSeparator,  ///< a fade length with another mark than `;` or `,` before its frames
  FadeForm,       ///< a fade length that is no timestamp
};

/// Least number of values that the system's readers ask of a label; 0 for labels that they take
/// with any number.
[[nodiscard]] std::size_t ValuesNeeded(std::string_view label);

// The two sections that the system reads with checks. Each object follows one section, whose lines
// are to be handed over in file order: what comes before the first (Index) or (Entry) is not
// checked, and neither is a second edit of one event.

class SourceIndexRules {
 public:
  [[nodiscard]] Fault Take(const LabelLine& line);

 private:
  bool indexSeen_ = false;
};

class EventListRules {
 public:
  [[nodiscard]] Fault Take(const LabelLine& line);
  /// Whether the line taken last is one that the event keeps: no second edit, no unknown label, and
  /// not before the first (Entry).
  [[nodiscard]] bool Kept() const { return kept_; }

 private:
  bool entrySeen_ = false;
  bool editSeen_ = false;
  bool kept_ = false;
};

}  // namespace velmora::check
