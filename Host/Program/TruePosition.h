#pragma once

#include "Spot/SpotOptions.h"

namespace velmora::program {

/// Changes the options such that the spot is not moved by the compensation: every position is, to
/// the sample, what the project and the chosen position say. What ComputePosition fills in comes
/// after this.
void CancelCompensation(SpotOptions& options, const char* firstEvent);

}  // namespace velmora::program
