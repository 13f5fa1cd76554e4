#include <benchmark/benchmark.h>

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "Peaks/Pyramid.h"

namespace velmora::bench {
namespace {

constexpr std::int64_t kHour = std::int64_t{48000} * 3600;

std::string NoiseOfAnHour() {
  return WriteNoise(24, static_cast<std::int32_t>(kHour * 3 / 1000000 + 1));
}

/// The pyramid of an hour of 24-bit mono noise at 48 kHz, from a file that the system has in
/// memory.
void PeaksOfAnHour(benchmark::State& state) {
  const std::string path = NoiseOfAnHour();
  for (auto _ : state) {
    const std::unique_ptr<peaks::PeakSource> source = peaks::PeakSource::Open(path);
    if (source == nullptr || !source->ReadsSideBySide() || source->Frames() < kHour) {
      Fail("the hour is not read as plain audio");
    }
    const auto pyramid = peaks::Pyramid::Read(*source, {});
    if (pyramid == nullptr || pyramid->Frames() != source->Frames())
      Fail("the peaks are not whole");
    benchmark::DoNotOptimize(pyramid);
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
}
BENCHMARK(PeaksOfAnHour)->UseRealTime()->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

/// What a redraw asks of it: 1500 columns.
void ColumnsOfAnHour(benchmark::State& state) {
  const std::string path = NoiseOfAnHour();
  const std::unique_ptr<peaks::PeakSource> source = peaks::PeakSource::Open(path);
  const auto pyramid = source == nullptr ? nullptr : peaks::Pyramid::Read(*source, {});
  if (pyramid == nullptr) Fail("the peaks are not there");
  for (auto _ : state) {
    std::vector<peaks::Peak> columns(1500);
    pyramid->AddColumns({0, static_cast<double>(state.range(0))}, 0, columns);
    if (columns[700].IsEmpty()) Fail("a column is empty");
  }
}
BENCHMARK(ColumnsOfAnHour)->Arg(256)->Arg(1500)->Arg(100000)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
