#pragma once

#include <span>
#include <vector>

#include "Session/HostKind.h"
#include "Session/SessionTarget.h"

namespace velmora::host {

/// One place where a spot can go: a host, or a target with an option of its own.
struct Destination {
  const HostKind* host;      ///< null for a target with an option of its own
  const TargetKind* target;  ///< of a host: what may stand after its name
};

/// Every place where a spot can go: the one table that help, command line, spot and the desktop's
/// menu read.
[[nodiscard]] std::span<const Destination> Destinations();

/// The hosts among them. The first is taken where none is named.
[[nodiscard]] HostTable Hosts();

/// Those with an option of their own, in the order of help. Targets are written in this order.
[[nodiscard]] const std::vector<const TargetKind*>& Targets();

}  // namespace velmora::host
