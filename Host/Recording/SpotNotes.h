#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Recording/LeftOut.h"
#include "Session/SessionPreset.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora::recording {

/// What the system's alerts do not say, in plain words: both sample rates if they differ, by how
/// many samples the session's timebase moves everything, and where the first region lands then; and
/// the cuts that every host refuses, for their tracks lie beyond all that a message can name.
/// @param truePosition the options take that move back
[[nodiscard]] std::vector<std::string> SpotNotes(const SpotProject& project,
                                                 const host::SessionRates& session,
                                                 const SpotOptions& options, bool truePosition);

/// Where a project lands, in words. As it was asked for: what takes the compensation back is an
/// offset, too.
[[nodiscard]] std::string PositionText(std::int32_t positionMode);

/// Notes each ticked cut whose file is not plain PCM, and so reads as silence.
void FindSilentCuts(const SpotProject& project, LeftOut& leftOut);

}  // namespace velmora::recording
