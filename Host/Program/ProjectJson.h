#pragma once

#include <cstddef>
#include <cstdint>

#include "ADL/AES31Event.h"
#include "ADL/AES31Section.h"
#include "ADL/AES31SourceFile.h"
#include "Program/JsonStream.h"

namespace velmora::program {

// The parts of a project as JSON.

void WriteSourceJson(JsonStream& json, std::int32_t index, const AES31SourceFile& source);
/// @param index the event's place in the project's list
void WriteEventJson(JsonStream& json, const AES31Event& event, std::size_t index);
void WriteEntryJson(JsonStream& json, const AES31Entry& entry);

}  // namespace velmora::program
