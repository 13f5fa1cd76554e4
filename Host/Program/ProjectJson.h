#pragma once

#include <cstddef>
#include <string>

#include "ADL/AES31Event.h"
#include "ADL/AES31Section.h"
#include "BWF/AES31BWF.h"
#include "Session/JsonText.h"

namespace velmora::program {

using host::Json;

// The parts of a project as JSON.

/// A text of the project, read as Shift-JIS; null for none.
[[nodiscard]] Json ProjectText(const char* text);
/// A path of the file system, or null for the empty one.
[[nodiscard]] Json PathText(const std::string& path);
/// Null for what is not finite.
[[nodiscard]] Json Number(double number);

[[nodiscard]] Json SectionJson(const AES31Section& section);
[[nodiscard]] Json WaveFileJson(AES31BWF& file);
[[nodiscard]] Json EventJson(const AES31Event& event, std::size_t index);

}  // namespace velmora::program
