#include <benchmark/benchmark.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ADL/AES31Project.h"
#include "BenchSupport.h"
#include "Field/FieldProject.h"

namespace velmora::bench {
namespace {

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The system's own load, which the field reader is held against.
void SystemLoad(benchmark::State& state) {
  const auto cuts = static_cast<std::int32_t>(state.range(0));
  const std::string path = WriteProject(cuts);
  for (auto _ : state) {
    bool ok = false;
    AES31Project project(path.c_str(), nullptr, &ok);
    if (!ok || project.GetEventCount() != cuts) Fail("the project does not load");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
}
BENCHMARK(SystemLoad)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond);

/// The same project as its writer meant it.
void FieldRead(benchmark::State& state) {
  const auto cuts = static_cast<std::int32_t>(state.range(0));
  const std::string path = WriteProject(cuts);
  const std::string bytes = BytesOf(path);
  for (auto _ : state) {
    const auto project = field::ReadProject(bytes, path, {});
    if (project->events.size() != static_cast<std::size_t>(cuts)) Fail("events are missing");
    if (!project->events.back().complete) Fail("an event is not complete");
  }
  state.SetItemsProcessed(state.iterations() * cuts);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(FieldRead)->Arg(100)->Arg(100000)->Unit(benchmark::kMillisecond);

/// The tree alone.
void FieldTree(benchmark::State& state) {
  const std::string bytes = BytesOf(WriteProject(100000));
  for (auto _ : state) {
    const field::Tree tree = field::ReadTree(bytes);
    if (tree.entries.empty()) Fail("entries are missing");
    benchmark::DoNotOptimize(tree.values.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(FieldTree)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::bench
