#pragma once

#include "Program/SpotReport.h"
#include "Spot/SpotOptions.h"
#include "Spot/SpotWorker.h"

namespace velmora::program {

/// A spot that makes no file, for somebody who wants to see what it would come to. Every live cut's
/// region is sent as a spot sends it, but with its source's file; fade pieces, if the options have
/// them, with the part of the source that they play. The recording gets the files that a spot with
/// these options would make.
/// @return false if it was stopped
bool PlanSpot(const SpotProject& project, SpotOptions& options, RegionHost& host,
              SpotReport& report, SpotRecording& recording);

}  // namespace velmora::program
