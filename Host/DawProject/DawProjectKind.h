#pragma once

#include "Session/SessionTarget.h"

namespace velmora::host {

/// A session as a DAWproject 1.0 file: a ZIP file that holds `project.xml`, `metadata.xml` and, if
/// it is so chosen, the audio.
extern const TargetKind kDawProjectKind;

}  // namespace velmora::host
