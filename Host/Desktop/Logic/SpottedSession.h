#pragma once

#include "Check/CheckProject.h"
#include "Session/Session.h"
#include "Session/SessionPreset.h"
#include "Session/SpotRecord.h"

namespace velmora::desktop {

/// A session as it stands at one moment, with what is known of the spots that filled it. A target
/// is written from a copy, so that the window's own session may go on.
struct SpottedSession {
  host::Session session;
  host::SessionRates rates;     ///< of the last spot
  host::SpotRecord record;      ///< without findings, which take a check of the project
  check::CheckOptions reading;  ///< for that check
};

}  // namespace velmora::desktop
