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
///     tracks, sources, events, regions, files, messages, paths
///                tables: arrays of rows, a row being an array of values
///     columns    by table: what the values of a row are. What a row is too short for is null, of
///                fades and gain 0
///     folders    texts, each with its closing slash
///
/// An `event` is a place in `events`, a `track` the project's number, a `path` a place in `paths`,
/// a `folder` of `paths` one in `folders`; a source has no `path` if its file is missing. Positions
/// and lengths are in samples of the session, `start` and `stop` inside a file, ends exclusive.
/// Words are those of the page.
void WriteFacts(const host::TargetInput& input, const ReportData& data, std::ostream& out);

}  // namespace velmora::report
