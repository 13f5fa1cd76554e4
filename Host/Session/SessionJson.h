#pragma once

#include <cstddef>
#include <iosfwd>

#include "Session/JsonText.h"
#include "Session/Session.h"

namespace velmora::host {

/// Writes a session as one JSON object:
///
///     summary   tracks, regions, files, first, end
///     tracks    for each track in rising order
///       track     from 0
///       regions   in order of arrival: index, name, path, position, length, start, stop, stream;
///                 fadeIn, fadeOut, gainDb (RegionShape); event, entry, source, piece
///                 (RegionOrigin), null where only the message is known
///       visible   what is heard, in rising position: region (its index), position, end
///
/// Positions and lengths are in samples, ends exclusive. The output is valid UTF-8 whatever the
/// names hold: bytes that are not become U+FFFD.
/// @return false if the stream took not all of it
[[nodiscard]] bool WriteSessionJson(const Session& session, std::ostream& out);

/// A region, and what a session amounts to, as that object has them. Texts are not mended yet:
/// JsonText does that.
[[nodiscard]] Json RegionJson(std::size_t index, const SessionRegion& region);
[[nodiscard]] Json SummaryJson(const SessionSummary& summary);

}  // namespace velmora::host
