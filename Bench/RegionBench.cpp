#include <benchmark/benchmark.h>

#include "BenchSupport.h"
#include "Embedded/EmbeddedHost.h"
#include "Spot/RegionSpotter.h"

namespace velmora::bench {
namespace {

/// Regions to the embedded host, each with its alias, its message and its place in the session.
void PlaceRegions(benchmark::State& state) {
  const auto count = static_cast<std::int32_t>(state.range(0));
  const std::string path = WriteNoise(24, 1);
  for (auto _ : state) {
    host::Session session;
    host::EmbeddedHost host(session);
    for (std::int32_t i = 0; i < count; ++i) {
      RegionSpotter spotter(path.c_str(), i, i + 4800, host);
      const auto track = static_cast<std::int16_t>(i % 24);
      if (spotter.SpotRegion(track, std::int64_t{i} * 200, 1, "noise", false) != 0) {
        Fail("a region is refused");
      }
    }
    if (session.Regions().size() != static_cast<std::size_t>(count)) {
      Fail("a region is lost");
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(PlaceRegions)->Apply(GrowingEvents)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::bench
