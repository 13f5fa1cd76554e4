// What must not cost more per event in a large project than in a small one. Bench/peers compares
// the time per event of the two sizes.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "BenchSupport.h"
#include "Model/ViewModel.h"
#include "Spot/SpotWorker.h"

namespace velmora::bench {
namespace {

std::int32_t CutsOf(const benchmark::State& state) {
  return static_cast<std::int32_t>(state.range(0));
}

void Load(ViewModel& model, const std::string& path, std::int32_t cuts) {
  if (!model.LoadFile(path) || model.enableEvents != cuts) Fail("the project does not load");
}

/// The project alone, from the file to linked events.
void LoadTree(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  const std::string path = WriteProject(cuts);
  for (auto _ : state) {
    bool ok = false;
    AES31Project project(path.c_str(), nullptr, &ok);
    if (!ok || project.GetEventCount() != cuts) Fail("the project does not load");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(LoadTree)->Apply(GrowingEvents)->Unit(benchmark::kMillisecond);

/// The whole of a load, from the file to the rows of the tables.
void LoadProject(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  const std::string path = WriteProject(cuts);
  for (auto _ : state) {
    ViewModel model;
    Load(model, path, cuts);
    benchmark::DoNotOptimize(model.firstEvent);
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(LoadProject)->Apply(GrowingEvents)->Unit(benchmark::kMillisecond);

/// All rows of the event table.
void ListEvents(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  ViewModel model;
  Load(model, WriteProject(cuts), cuts);
  for (auto _ : state) {
    model.setupEventList();
    if (model.enableEvents != cuts) Fail("rows are missing");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(ListEvents)->Apply(GrowingEvents)->Unit(benchmark::kMicrosecond);

/// A track's box ticked off and on again: its events, one in 24, leave the list and come back.
void EditTrackBox(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  ViewModel model;
  Load(model, WriteProject(cuts), cuts);
  bool on = false;
  for (auto _ : state) {
    model.SetTrackBox(3, on);
    if ((model.enableEvents == cuts) != on) Fail("the list has other events");
    on = !on;
  }
}
BENCHMARK(EditTrackBox)->Apply(GrowingEvents)->Unit(benchmark::kMicrosecond);

/// One event's box, far from the one before.
void EditEventBox(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  ViewModel model;
  Load(model, WriteProject(cuts), cuts);
  std::int64_t row = 0;
  bool on = false;
  for (auto _ : state) {
    model.SetEventBox(static_cast<std::int32_t>(row), on);
    row += 7919;
    if (row >= cuts) {
      row %= cuts;
      on = !on;
    }
  }
}
BENCHMARK(EditEventBox)->Apply(GrowingEvents)->Unit(benchmark::kMicrosecond);

/// Takes every region and does nothing with it.
class WillingHost : public RegionHost {
 public:
  std::int32_t MakeAlias(const char* /*path*/, std::vector<std::uint8_t>& alias) override {
    alias.assign(200, 0);
    return 0;
  }
  std::int32_t Send(const RegionMessage& /*message*/) override {
    ++regions;
    return 0;
  }
  std::int64_t regions = 0;
};

class SilentObserver : public SpotObserver {
 public:
  bool Aborted() override { return false; }
  void Report(std::int32_t /*progress*/) override {}
  void Log(const std::string& /*line*/) override {}
};

/// A spot that makes no file: a region for each cut.
void PassRegions(benchmark::State& state) {
  const std::int32_t cuts = CutsOf(state);
  ViewModel model;
  Load(model, WriteProject(cuts, Audio::Found), cuts);
  SpotOptions options;
  options.sessionRate = 48000;
  ComputePosition(options, model.firstEvent);
  const SpotProject project{model.project.get(), model.numEvents, model.minTrack, model.firstEvent};
  for (auto _ : state) {
    WillingHost host;
    SilentObserver observer;
    if (!RunSpot(project, options, host, observer)) Fail("the spot ends early");
    if (host.regions != cuts) Fail("regions are missing");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
}
BENCHMARK(PassRegions)->Apply(GrowingEvents)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::bench
