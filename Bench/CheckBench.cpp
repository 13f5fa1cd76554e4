#include <benchmark/benchmark.h>

#include "BenchSupport.h"
#include "Check/CheckProject.h"
#include "Check/Glance.h"

namespace velmora::bench {
namespace {

/// The whole of a check but for its telling: reading as it is meant and as the system reads it, the
/// search for audio, and all judges. To be held against LoadProject of as many cuts.
void CheckWhole(benchmark::State& state) {
  const auto cuts = static_cast<std::size_t>(state.range(0));
  const std::string path = WriteProject(static_cast<std::int32_t>(cuts));
  for (auto _ : state) {
    media::FolderListings listings;
    const check::CheckedProject checked = check::CheckProject(path, {}, listings);
    if (checked.project == nullptr || checked.project->events.size() != cuts) {
      Fail("the project is read otherwise than it was written");
    }
    benchmark::DoNotOptimize(checked.findings.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CheckWhole)->Arg(20)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// The look at a plain project that the one line of info and spot needs. To be held against
/// CheckWhole, which takes its place for any other project.
void GlancePlain(benchmark::State& state) {
  const auto cuts = static_cast<std::size_t>(state.range(0));
  const std::string path = WriteProject(static_cast<std::int32_t>(cuts));
  for (auto _ : state) {
    const check::GlanceResult result = check::GlanceAt(path, {});
    if (!result.isPlain || result.entries != cuts) Fail("the project does not count as plain");
    benchmark::DoNotOptimize(result.found.loses);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(GlancePlain)->Arg(20)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::bench
