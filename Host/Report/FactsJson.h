#pragma once

#include <iosfwd>

#include "Report/ReportData.h"

namespace velmora::report {

/// How the tables are told.
enum class FactsForm {
  Objects,  ///< a row is an object, its path a text: for whoever reads the page by a script
  Rows,     ///< a row is an array, its path a number: half as long, for pages that grow too large
};

/// Writes what the page tells as one JSON object, safe inside a script element:
///
///     project    path, title, constants (keyword to text or null)
///     rates      sampleRate (Hz), frameRate (the host's code), frameRateName, projectRate or null,
///                timecode: nominal frames a second, the true rate numerator/denominator, drop
///     plan       true if nothing was made but the page
///     options    bitDepth, fades, gain, native, copyTo (null for none), position, timelineOffset
///     summary    as the session's JSON has it
///     tracks     [{track, cuts, regions, first, end}]
///     sources    [{source, name, path}]: no path if the file is missing
///     events     [{entry, kind, state, source, track, position, end, fadeIn, fadeOut, gainDb}]
///     regions    [{name, path, track, position, start, stop, event, piece, fadeIn, fadeOut,
///     gainDb}] files      [{what, state, event, path, bytes, sha256, noSha256, folder}]: why there
///     is no
///                checksum (more than kMostSummedFiles files have none); true for a folder
///     messages   [{weight, kind, code, line, event, entry, text, effect, remedy}]
///
/// What a row lacks does not apply to it or is not known; fades and gain that are missing are 0. An
/// `event` is a place in `events`, a `track` the project's number. Positions and lengths are in
/// samples of the session, `start` and `stop` inside a file, ends exclusive. Words are those of the
/// page.
///
/// With FactsForm::Rows a row is an array of these values in this order, without the nulls at its
/// end, and `columns` names them by table. A `path` is a place in `paths`, [{folder, name}], a
/// `folder` of these one in `folders`, texts that end with a slash.
void WriteFacts(const host::TargetInput& input, const ReportData& data, FactsForm form,
                std::ostream& out);

}  // namespace velmora::report
