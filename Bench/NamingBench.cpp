// What names cost beside the files that get them. Files are never removed in between: for some
// seconds after that, creating others takes many times as long on ext4, which would hide everything
// else.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "BWF/OutputPaths.h"
#include "Base/FileAccess.h"
#include "BenchSupport.h"

namespace velmora::bench {
namespace {

std::string NewFolder() {
  static int number = 0;
  std::string folder = InputFolder() + "/named" + std::to_string(number++);
  std::filesystem::create_directory(folder);
  return folder;
}

/// An empty file under a name that is known: the least that anybody needs.
void CreateEmptyFile(benchmark::State& state) {
  const std::string base = NewFolder() + "/take.";
  int number = 0;
  for (auto _ : state) {
    if (CreateNewFile((base + std::to_string(number++) + ".wav").c_str()) == nullptr) {
      Fail("no file is made");
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(CreateEmptyFile)->Iterations(10000)->UseRealTime();

/// The next name of a series, as a spot finds it: the name given last is looked up, and the next
/// one.
void FindNextName(benchmark::State& state) {
  const std::string folder = NewFolder();
  if (CreateNewFile((folder + "/take.wav").c_str()) == nullptr) Fail("no file is made");
  for (auto _ : state) {
    OutputNames names;
    benchmark::DoNotOptimize(names.New("/sources/take.wav", folder.c_str(), ""));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(FindNextName)->Iterations(10000)->UseRealTime();

/// The first name of a run in a folder that holds 10,000 files of earlier ones; told per file
/// there.
void FindFirstName(benchmark::State& state) {
  constexpr int kHeld = 10000;
  const std::string folder = NewFolder();
  for (int i = 0; i < kHeld; ++i) {
    const std::string number = i == 0 ? "" : "." + std::to_string(i);
    if (CreateNewFile((folder + "/take" + number + ".wav").c_str()) == nullptr) Fail(folder);
  }
  for (auto _ : state) {
    OutputNames names;
    if (names.Find("/sources/take.wav", folder.c_str(), "") != folder + "/take.10000.wav") {
      Fail("another name is found");
    }
  }
  state.SetItemsProcessed(state.iterations() * kHeld);
}
BENCHMARK(FindFirstName)->Iterations(5)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
