#pragma once

#include <cstdint>
#include <string>

#include "Check/CheckProject.h"
#include "Model/ViewModel.h"
#include "Spot/SpotWorker.h"

namespace velmora::test {

/// A project as it is meant: a line for each cut that sounds, with its track, place, stretch and
/// file, in the order of the lines. Cuts of several channels have none: they are no regions of this
/// system.
[[nodiscard]] std::string Meant(const check::CheckedProject& checked);

/// RunSpot, or what else spots a project.
using Spot = bool (*)(const SpotProject&, SpotOptions&, RegionHost&, SpotObserver&);

/// The same as the system spots it into a session of 48 kHz and 25 frames.
[[nodiscard]] std::string Spotted(const ViewModel& model, Spot spot);

}  // namespace velmora::test
