#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <vector>

#include "ADL/AES31Event.h"
#include "BWF/AES31BWF.h"
#include "BWF/Renderers.h"
#include "BWF/SampleConversion.h"
#include "BenchSupport.h"
#include "Spot/EventFiles.h"

namespace velmora::bench {
namespace {

constexpr std::int32_t kMegabytes = 60;

void CountBytes(benchmark::State& state, const std::string& source) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(source)));
}

/// A file from depth range(0) to depth range(1), disk included.
void ConvertFile(benchmark::State& state) {
  const auto from = static_cast<std::int32_t>(state.range(0));
  const auto to = static_cast<std::int32_t>(state.range(1));
  const std::string path = WriteNoise(from, kMegabytes);
  const std::string target = InputFolder() + "/converted.wav";
  for (auto _ : state) {
    AES31BWF source(path.c_str());
    if (source.CopyTo(target.c_str(), to) != CopyDone) Fail("the file is not converted");
  }
  CountBytes(state, path);
}
BENCHMARK(ConvertFile)->Args({24, 16})->Args({16, 24})->Args({24, 24})->UseRealTime();

/// What the system itself needs for a copy of the same file.
void CopyFileBySystem(benchmark::State& state) {
  const std::string path = WriteNoise(24, kMegabytes);
  const std::string target = InputFolder() + "/copied.wav";
  for (auto _ : state) {
    std::filesystem::remove(target);
    if (!std::filesystem::copy_file(path, target)) Fail("the file is not copied");
  }
  CountBytes(state, path);
}
BENCHMARK(CopyFileBySystem)->UseRealTime();

void GainFile(benchmark::State& state) {
  const auto depth = static_cast<std::int32_t>(state.range(0));
  const std::string path = WriteNoise(depth, kMegabytes);
  const std::string target = InputFolder() + "/gain.wav";
  AES31BWF source(path.c_str());
  AES31Event event{};
  event.gain.present = true;
  event.gain.gainDb = -6.0;
  event.sourceFile = &source;
  for (auto _ : state) {
    if (RenderGainFile(event, target.c_str()) == nullptr) Fail("no gain file is made");
  }
  CountBytes(state, path);
}
BENCHMARK(GainFile)->Arg(16)->Arg(24)->UseRealTime();

void FadeFile(benchmark::State& state) {
  constexpr std::int64_t kFrames = 480000;
  const std::string path = WriteNoise(24, kMegabytes);
  const std::string target = InputFolder() + "/fade.wav";
  AES31BWF source(path.c_str());
  for (auto _ : state) {
    if (RenderFadeFile(target.c_str(), &source, kFrames, true, 1000) == nullptr) {
      Fail("no fade is made");
    }
  }
  state.SetItemsProcessed(state.iterations() * kFrames);
}
BENCHMARK(FadeFile)->UseRealTime();

/// The arithmetic alone, in memory.
void ConvertBlock(benchmark::State& state) {
  const auto from = static_cast<std::uint32_t>(state.range(0));
  const auto to = static_cast<std::uint32_t>(state.range(1));
  const double gain = std::pow(10.0, -6.0 / 20.0);
  const SampleConversion conversion(from, to, state.range(2) != 0 ? &gain : nullptr);
  constexpr std::size_t kSamples = 20000;
  std::vector<std::uint8_t> source(kSamples * conversion.SourceBytes());
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i * 151);
  std::vector<std::uint8_t> target(kSamples * conversion.TargetBytes());
  for (auto _ : state) {
    conversion.Convert(source.data(), target.data(), kSamples);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}
BENCHMARK(ConvertBlock)
    ->ArgNames({"from", "to", "gain"})
    ->Args({24, 16, 0})
    ->Args({16, 24, 0})
    ->Args({24, 24, 1})
    ->Args({16, 16, 1});

}  // namespace
}  // namespace velmora::bench
