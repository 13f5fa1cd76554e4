#include "Destinations/Destinations.h"

#include <array>

#include "Ardour/ArdourKind.h"
#include "Bounce/BounceKind.h"
#include "DawProject/DawProjectKind.h"
#include "Embedded/EmbeddedKind.h"
#include "Otio/OtioKind.h"
#include "Report/ReportKind.h"

namespace velmora::host {
namespace {

constexpr auto kDestinations = std::to_array<Destination>({
    {&kEmbeddedKind, &kSessionFileKind},
    {&ardour::kArdourKind, &ardour::kArdourSessionKind},
    {nullptr, &kDawProjectKind},
    {nullptr, &kOtioKind},
    {nullptr, &bounce::kBounceKind},
    {nullptr, &bounce::kBounceTracksKind},
    {nullptr, &report::kReportKind},
});

}  // namespace

std::span<const Destination> Destinations() {
  return kDestinations;
}

HostTable Hosts() {
  static const std::vector<const HostKind*> hosts = [] {
    std::vector<const HostKind*> found;
    for (const Destination& row : kDestinations) {
      if (row.host != nullptr) found.push_back(row.host);
    }
    return found;
  }();
  return hosts;
}

const std::vector<const TargetKind*>& Targets() {
  static const std::vector<const TargetKind*> targets = [] {
    std::vector<const TargetKind*> found;
    for (const Destination& row : kDestinations) {
      if (row.host == nullptr) found.push_back(row.target);
    }
    return found;
  }();
  return targets;
}

}  // namespace velmora::host
