// The model on top of a project that stands.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "BenchSupport.h"
#include "Model/ProjectSummary.h"
#include "Model/ViewModel.h"

namespace velmora::bench {
namespace {

/// What a load does once the project stands: the span of the cuts, and which events are rows. No
/// cell is made.
void FillModel(benchmark::State& state) {
  const auto cuts = static_cast<std::int32_t>(state.range(0));
  ViewModel model;
  if (!model.LoadFile(WriteProject(cuts))) Fail("the project does not load");
  for (auto _ : state) {
    const CutSpan span = SpanOfCuts(*model.project);
    model.setupEventList();
    if (span.maxTrack != model.maxTrack || model.enableEvents != cuts) Fail("rows are missing");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(FillModel)->Apply(GrowingEvents)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velmora::bench
