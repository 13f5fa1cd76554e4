#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Field/Encoding.h"
#include "Field/FieldProject.h"

namespace velmora::field {

/// A value's text as UTF-8, its escapes undone; `_` stays.
[[nodiscard]] std::string DecodedText(TextDecoder& decoder, const Value& value);

/// What the readers of a project share: its times and texts. Notes the marks of each time.
class ProjectReader {
 public:
  /// The project's tree and encoding must have been read.
  explicit ProjectReader(Project& project);

  // In this order:
  void ReadHeader();
  void ReadSources();
  void ReadEvents();

  /// A time in samples at the project's rate; none if it is not given.
  std::optional<std::int64_t> ReadSamples(const Value& value, TimeRole role);
  /// A text as UTF-8; empty if it is not given.
  std::string ReadText(const Value& value);

  [[nodiscard]] const Tree& GetTree() const { return project_.tree; }

 private:
  void NoteMarks(const Value& value, const StampMarks& marks, TimeRole role);

  Project& project_;
  TextDecoder decoder_;
  /// Place in Project::marks that each role used last: nearly all times of a project share one.
  std::array<std::size_t, 4> lastMarks_{};
};

}  // namespace velmora::field
