#pragma once

#include "Session/SessionTarget.h"

namespace velmora::report {

/// A page that tells what a spot read, made, placed and left out.
extern const host::TargetKind kReportKind;

}  // namespace velmora::report
