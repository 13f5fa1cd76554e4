#include <benchmark/benchmark.h>

#include <filesystem>

#include "BenchSupport.h"
#include "Model/ViewModel.h"

namespace velmora::bench {
namespace {

/// The whole of a load, from the file to the rows of the tables.
void LoadProject(benchmark::State& state) {
  const auto cuts = static_cast<std::int32_t>(state.range(0));
  const std::string path = WriteProject(cuts);
  for (auto _ : state) {
    ViewModel model;
    if (!model.LoadFile(path) || model.enableEvents != cuts) Fail("the project does not load");
    benchmark::DoNotOptimize(model.firstEvent);
  }
  state.SetItemsProcessed(state.iterations() * cuts);
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
}
BENCHMARK(LoadProject)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// A track's box ticked off and on again, which rebuilds the event rows.
void TickTrack(benchmark::State& state) {
  const auto cuts = static_cast<std::int32_t>(state.range(0));
  ViewModel model;
  if (!model.LoadFile(WriteProject(cuts))) Fail("the project does not load");
  bool on = false;
  for (auto _ : state) {
    model.SetTrackBox(3, on);
    on = !on;
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(TickTrack)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::bench
