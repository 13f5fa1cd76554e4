#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ADL/AES31Project.h"
#include "ADL/AES31Section.h"
#include "ADL/AES31SourceFile.h"
#include "Program/CharBuffer.h"
#include "Program/JsonStream.h"

namespace velmora::program {

// The parts of a project as JSON.

void WriteSourceJson(JsonStream& json, std::int32_t index, const AES31SourceFile& source);
// Of long lists those from `begin` to before `end`, with the commas that belong before them.

void AppendEventsJson(CharBuffer& text, const AES31Project& project, std::size_t begin,
                      std::size_t end);
/// @param entries of this project
void AppendEntriesJson(CharBuffer& text, const AES31Project& project, const AES31Entries& entries,
                       std::size_t begin, std::size_t end);

/// The bytes in which the texts of a project stand, with the NUL after them.
[[nodiscard]] std::string_view BlockOf(const AES31Project& project);

}  // namespace velmora::program
