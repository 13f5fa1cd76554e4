#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ADL/AES31Section.h"
#include "Check/Requirements.h"

namespace velmora::check {

/// One event as the system has it. The entries are those of SystemReading's tree, null for none.
struct SystemEvent {
  const AES31Entry* entry = nullptr;  ///< its (Entry)
  const AES31Entry* edit = nullptr;   ///< the edit that counts: the first, alternatives apart
  const AES31Entry* infade = nullptr;
  const AES31Entry* outfade = nullptr;
  const AES31Entry* gain = nullptr;
  std::int32_t number = 0;
  bool kept = true;  ///< false: a later event of that number replaces it
};

/// One source as the system has it.
struct SystemSource {
  const AES31Entry* index = nullptr;
  const AES31Entry* file = nullptr;  ///< its last (F), null for none
  std::int32_t number = 0;
  bool kept = true;  ///< false: a later source of that number replaces it
};

/// A line that the system's readers refuse.
struct SystemFault {
  const AES31Entry* line = nullptr;
  Fault fault = Fault::None;
};

/// What the system itself makes of a project's text. Its own scanner reads a copy of the bytes; the
/// pointers in its tree tell which label and which value of the file it sees, and how it reads
/// them.
class SystemReading {
 public:
  /// Copies the bytes. Everything else is to be asked after Read.
  explicit SystemReading(std::string_view bytes);
  /// Reads the copy. Called once; it may run while others use the bytes that were copied.
  void Read();

  /// The line whose label begins at that offset; null if the system does not see it. `hint` makes
  /// questions in file order cheap: begin with 0 and hand it over again.
  [[nodiscard]] const AES31Entry* LineAt(std::size_t offset, std::size_t& hint) const;
  [[nodiscard]] std::size_t OffsetOf(const char* text) const {
    return static_cast<std::size_t>(text - block_.get());
  }
  /// The event whose (Entry) is this line; null for none.
  [[nodiscard]] const SystemEvent* EventOf(const AES31Entry* entry) const;
  /// The source that a cut of that number plays; null for none.
  [[nodiscard]] const SystemSource* SourceOf(std::int32_t number) const;
  /// Place of a line among all lines that the system sees, in file order.
  [[nodiscard]] std::size_t LineCount() const { return lines_.size(); }
  [[nodiscard]] const AES31Entry& Line(std::size_t i) const { return *lines_[i]; }

  [[nodiscard]] const std::vector<SystemEvent>& Events() const { return events_; }
  [[nodiscard]] const std::vector<SystemSource>& Sources() const { return sources_; }
  [[nodiscard]] const std::vector<SystemFault>& Faults() const { return faults_; }

 private:
  // Not const: the entries of a list that could be written to have places of their own.
  void TakeSources(AES31Section& section);
  void TakeEvents(AES31Section& section);
  void TakeLine(SystemEvent& event, const AES31Entry& line);

  std::unique_ptr<char[]> block_;
  char* blockEnd_;  ///< where the scanner's spare NUL stands
  std::vector<AES31Section> sections_;
  std::vector<const AES31Entry*> lines_;  ///< of sections outside reference lists, in file order
  std::vector<SystemEvent> events_;       ///< in file order
  std::vector<SystemSource> sources_;     ///< in file order
  std::vector<std::size_t> byNumber_;     ///< kept sources, by rising number
  std::vector<SystemFault> faults_;       ///< in file order
};

}  // namespace velmora::check
