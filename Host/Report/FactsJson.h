#pragma once

#include <iosfwd>

#include "Report/ReportData.h"

namespace velmora::report {

/// Writes what the page tells as one JSON object, safe inside a script element:
///
///     project    path, title, constants (keyword to text or null)
///     rates      sampleRate (Hz), frameRate (the host's code), frameRateName, projectRate or null
///     plan       true if nothing was made but the page
///     options    bitDepth, fades, gain, native, copyTo (null for none), position, timelineOffset
///     summary    as the session's JSON has it
///     tracks     track (from 0), number (the project's), regions
///     regions    as the session's JSON has them, each with `track`, in order of arrival
///     sources    source, file (null for a missing one), of those that events name
///     events     event, entry, kind, name, state (as the page has it), source, track (the
///                project's number), position, end, source, track, position and end are null for
///                what is no cut; fadeIn, fadeOut, gainDb stand there unless 0
///     files      what, state, path; event, folder (true), bytes, sha256 where they apply
///     messages   weight, kind, code, line, event, entry, text, effect, remedy
///
/// Positions and lengths are in samples of the session, ends exclusive.
void WriteFacts(const host::TargetInput& input, const ReportData& data, std::ostream& out);

}  // namespace velmora::report
