#pragma once

#include <memory>
#include <string>

#include "ADL/AES31Event.h"
#include "BWF/AES31BWF.h"
#include "BWF/OutputFile.h"

namespace velmora {

// What a spot makes of an event's source file.

/// The event's whole source file under the event's gain, as RenderScaledInto does it. Null also for
/// an event without gain or source. A path is created, or emptied if it is there.
std::unique_ptr<AES31BWF> RenderGainInto(OutputFile& file, const AES31Event& event);
std::unique_ptr<AES31BWF> RenderGainFile(const AES31Event& event, const char* path);

/// A free name in `folder` for a copy of the event's source, as OutputNames finds it. Not reserved:
/// what must not be shared with another run is made as a NewFile.
[[nodiscard]] std::string BuildCopyPath(const AES31Event& event, const char* folder);

/// A free name for a file derived from the event's source, `suffix` after its stem; beside the
/// source if `folder` is null. Not reserved.
[[nodiscard]] std::string BuildDerivedPath(const AES31Event& event, const char* folder,
                                           const char* suffix);

/// The path of the event's source file; empty if it has none.
[[nodiscard]] std::string SourcePath(const AES31Event& event);

}  // namespace velmora
