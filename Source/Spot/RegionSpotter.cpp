#include "Spot/RegionSpotter.h"

namespace velmora {
namespace {

std::int32_t Low32(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

}  // namespace

RegionSpotter::RegionSpotter(const char* path, std::int64_t start, std::int64_t stop,
                             RegionHost& host)
    : path_(path), start_(Low32(start)), stop_(Low32(stop)), host_(host) {}

std::int32_t RegionSpotter::SpotRegion(std::int16_t track, std::int64_t position,
                                       std::int16_t stream, const char* name, bool relative) {
  const RegionPlacement placement = {.track = track,
                                     .position = position,
                                     .stream = stream,
                                     .relative = relative,
                                     .start = start_,
                                     .stop = stop_};
  return host_.Place(path_, placement, name);
}

}  // namespace velmora
