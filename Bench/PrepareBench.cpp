#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "BenchSupport.h"
#include "Check/CheckProject.h"
#include "Prepare/PrepareProject.h"

namespace velmora::bench {
namespace {

constexpr std::int32_t kMegabytes = 240;
constexpr std::int32_t kCuts = 10000;

/// A project of many cuts on one file of noise. Returns its path.
std::string WriteNoiseProject(const std::string& noise) {
  std::string path = InputFolder() + "/noise.adl";
  std::ofstream file(path);
  file << "<ADL>\n<SOURCE_INDEX>\n(Index) 1 (F) \"URL:file://localhost/"
       << std::filesystem::path(noise).filename().string()
       << "\" _ 00.00:00:00/0000 _\n</SOURCE_INDEX>\n<EVENT_LIST>\n";
  for (std::int32_t i = 0; i < kCuts; ++i) {
    const auto stamp = [i](const char* remainder) {
      char text[32];
      std::snprintf(text, sizeof text, "01.%02d:%02d:%02d/%s", i / 1500, i / 25 % 60, i % 25,
                    remainder);
      return std::string(text);
    };
    file << "(Entry) " << i + 1 << "\n(Cut) I 1 1 1 00.00:00:00/0000 " << stamp("0000") << ' '
         << stamp("0500") << " _\n";
  }
  file << "</EVENT_LIST>\n</ADL>\n";
  if (!file.flush()) Fail(path + " cannot be written");
  return path;
}

void Prepare(benchmark::State& state, bool copies) {
  const std::string noise = WriteNoise(24, kMegabytes);
  const std::string path = WriteNoiseProject(noise);
  media::FolderListings listings;
  const check::CheckedProject checked = check::CheckProject(path, {}, listings);
  prepare::PrepareOptions options;
  options.into = InputFolder() + "/prepared";
  options.copyMedia = copies;
  for (auto _ : state) {
    const prepare::Prepared prepared = PrepareProject(checked, options);
    state.PauseTiming();
    const bool right = prepared.outcome == prepare::Outcome::Done && prepared.files.size() == 1 &&
                       std::filesystem::file_size(options.into + "/Audio/noise24-240.wav") ==
                           std::filesystem::file_size(noise);
    if (!right) Fail("the preparation comes to something else: " + prepared.trouble);
    std::filesystem::remove_all(options.into);
    state.ResumeTiming();
  }
  if (copies) state.SetBytesProcessed(state.iterations() * kMegabytes * 1000000);
  if (!copies) state.SetItemsProcessed(state.iterations() * kCuts);
}

void PrepareWithLinks(benchmark::State& state) {
  Prepare(state, false);
}
void PrepareWithCopies(benchmark::State& state) {
  Prepare(state, true);
}

/// What the copies are held against: the system's own copy of the same file.
void CopyBySystem(benchmark::State& state) {
  const std::string noise = WriteNoise(24, kMegabytes);
  const std::string to = InputFolder() + "/copy.wav";
  const std::string command = "cp '" + noise + "' '" + to + "'";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) Fail(to + " cannot be written");
    state.PauseTiming();
    std::filesystem::remove(to);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * kMegabytes * 1000000);
}

BENCHMARK(PrepareWithLinks)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PrepareWithCopies)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CopyBySystem)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
