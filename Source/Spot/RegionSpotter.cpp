#include "Spot/RegionSpotter.h"

#include <utility>
#include <vector>

namespace velmora {
namespace {

std::int32_t Low32(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// Statuses of the host's system are 16 bits wide.
std::int32_t StatusOf(std::int32_t status) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(status));
}

}  // namespace

RegionSpotter::RegionSpotter(const char* path, std::int64_t start, std::int64_t stop,
                             RegionHost& host)
    : path_(path), start_(Low32(start)), stop_(Low32(stop)), host_(host) {}

std::int32_t RegionSpotter::SpotRegion(std::int16_t track, std::int64_t position,
                                       std::int16_t stream, const char* name, bool relative) {
  std::vector<std::uint8_t> alias;
  const std::int32_t aliasStatus = StatusOf(host_.MakeAlias(path_, alias));
  if (aliasStatus != 0) return aliasStatus;
  const RegionPlacement placement = {.track = track,
                                     .position = position,
                                     .stream = stream,
                                     .relative = relative,
                                     .start = start_,
                                     .stop = stop_};
  return StatusOf(host_.Send(BuildRegionMessage(placement, name, std::move(alias))));
}

}  // namespace velmora
