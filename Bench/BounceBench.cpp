#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "Bounce/BounceKind.h"
#include "Session/HeardSession.h"
#include "Session/SessionTarget.h"

namespace velmora::bench {
namespace {

constexpr std::int32_t kMegabytes = 240;  // of the bounced file

using host::BounceDepth;
using host::RegionShape;
using host::Session;

/// Tracks that together fill kMegabytes at 24 bits, each cut into regions of a minute at most.
Session NoiseSession(std::int32_t tracks, std::int32_t sourceBits, const RegionShape& shape = {}) {
  Session session;
  const std::int64_t frames = kMegabytes * std::int64_t{1000000} / tracks / 3;
  const std::int32_t megabytes = kMegabytes / tracks * (sourceBits / 8) / 3;
  const std::string path = WriteNoise(sourceBits, megabytes);
  constexpr std::int64_t kRegion = 48000 * 60;
  for (std::int32_t track = 0; track < tracks; ++track) {
    for (std::int64_t at = 0; at < frames; at += kRegion) {
      const std::int64_t end = std::min(frames, at + kRegion);
      session.Shape(session.Place({track, at, at, end, 1, path, "noise"}), shape);
    }
  }
  return session;
}

void BounceOnce(const Session& session, const std::string& path, BounceDepth depth) {
  const host::HeardSession heard(session);
  const host::SpotRecord record;
  std::filesystem::remove(path);
  const host::ClaimedTarget claimed = bounce::kBounceKind.claim(path, {false, depth});
  if (claimed.target == nullptr) Fail(claimed.complaint);
  const host::TargetOutcome outcome = claimed.target->Write({session, heard, {}, record}, {});
  if (!outcome.trouble.empty()) Fail(outcome.trouble);
  if (!outcome.leftOut.empty() || !outcome.notes.empty()) Fail("the session is not bounced whole");
}

void BounceSession(benchmark::State& state, const Session& session, BounceDepth depth) {
  const std::string path = InputFolder() + "/bounce.wav";
  for (auto _ : state) BounceOnce(session, path, depth);
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

/// Nothing to work out: range(0) tracks of the target's depth.
void BouncePlain(benchmark::State& state) {
  BounceSession(state, NoiseSession(static_cast<std::int32_t>(state.range(0)), 24),
                BounceDepth::Bits24);
}
BENCHMARK(BouncePlain)->ArgName("tracks")->Arg(1)->Arg(2)->Arg(24)->UseRealTime();

/// What `cp` needs for the same file.
void BounceByCp(benchmark::State& state) {
  const std::string path = InputFolder() + "/bounce.wav";
  const std::string copy = InputFolder() + "/copy.wav";
  BounceOnce(NoiseSession(1, 24), path, BounceDepth::Bits24);
  const std::string command = "cp " + path + " " + copy;
  for (auto _ : state) {
    std::filesystem::remove(copy);
    if (std::system(command.c_str()) != 0) Fail("the file is not copied");
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(path)));
  std::filesystem::remove(copy);
}
BENCHMARK(BounceByCp)->UseRealTime();

void BounceToAnotherDepth(benchmark::State& state) {
  BounceSession(state, NoiseSession(1, 16), static_cast<BounceDepth>(state.range(0)));
}
BENCHMARK(BounceToAnotherDepth)->ArgName("depth")->Arg(1)->Arg(2)->UseRealTime();

/// Gain over everything, and fades of two seconds on either side of each minute.
void BounceNative(benchmark::State& state) {
  BounceSession(state, NoiseSession(1, 24, {96000, 96000, -3}), BounceDepth::Bits24);
}
BENCHMARK(BounceNative)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
