#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace velmora::bench {

/// The folder of this run's inputs, made when first asked for and gone with the program; or the one
/// that VELMORA_BENCH_FOLDER names, which stays, so that the next run need not make them again.
const std::string& InputFolder();

/// The sizes between which the time per event is compared: 1,000 events, a tenth of all, and all.
/// VELMORA_BENCH_EVENTS says how many that are: 20,000 unless told, so that a run of every
/// benchmark stays short.
void GrowingEvents(benchmark::internal::Benchmark* benchmark);

enum class Audio { Missing, Found };

/// An ADL file with so many cuts on 24 tracks and 100 sources, every fourth with a fade and a
/// remark; written once. Returns its path.
std::string WriteProject(std::int32_t cuts, Audio audio = Audio::Missing);

/// A mono wave file of about so many megabytes, filled with seeded noise. Returns its path.
std::string WriteNoise(std::int32_t bitDepth, std::int32_t megabytes);

/// Ends the program with a message: a benchmark of a wrong answer is worth nothing.
[[noreturn]] void Fail(const std::string& what);

}  // namespace velmora::bench
