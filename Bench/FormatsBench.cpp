#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Ardour/ArdourKind.h"
#include "BenchSupport.h"
#include "DawProject/DawProjectKind.h"
#include "Otio/OtioKind.h"
#include "Report/ReportKind.h"
#include "Session/HeardSession.h"

namespace velmora::bench {
namespace {

constexpr std::int32_t kFiles = 100;
constexpr std::int64_t kTracks = 24;

std::vector<std::string> WaveFiles() {
  std::vector<std::string> paths;
  const std::string noise = WriteNoise(16, 1);
  for (std::int32_t i = 0; i < kFiles; ++i) {
    paths.push_back(InputFolder() + "/take " + std::to_string(i) + ".wav");
    std::filesystem::copy_file(noise, paths.back(), std::filesystem::copy_options::skip_existing);
  }
  return paths;
}

/// Regions that overlap, every other with fades and a gain.
host::Session SessionOf(std::int32_t count) {
  const std::vector<std::string> paths = WaveFiles();
  host::Session session;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    const std::size_t region =
        session.Place({i % kTracks, i / kTracks * 9000, 100, 10100, 1,
                       paths[static_cast<std::size_t>(i % kFiles)], "region " + number});
    session.Describe(region, {i, i + 1, i % kFiles, RegionPiece::Main});
    if (i % 2 == 0) session.Shape(region, {1000, 1000, -6});
  }
  return session;
}

/// What a report tells beside the session: an event for each region.
host::SpotRecord RecordOf(const host::Session& session) {
  host::SpotRecord record;
  for (const host::SessionRegion& region : session.Regions()) {
    host::RecordedEvent event;
    event.event = region.origin->event;
    event.entry = region.origin->entry;
    event.kind = "cut";
    event.name = region.name;
    event.isOn = true;
    event.source = region.origin->source;
    event.path = region.path;
    event.track = region.track;
    event.position = region.position;
    event.end = region.End();
    record.events.push_back(std::move(event));
  }
  return record;
}

/// A session to a new file or folder of a kind; HeardSession included.
void WriteTarget(benchmark::State& state, const host::TargetKind& kind) {
  const auto count = static_cast<std::int32_t>(state.range(0));
  const host::Session session = SessionOf(count);
  const std::string path = InputFolder() + "/session" + kind.extension;
  const host::SpotRecord record = RecordOf(session);
  for (auto _ : state) {
    std::filesystem::remove_all(path);
    const host::HeardSession heard(session);
    const host::ClaimedTarget claimed = kind.claim(path, {});
    if (claimed.target == nullptr) Fail(claimed.complaint);
    const host::TargetOutcome outcome = claimed.target->Write({session, heard, {}, record}, {});
    if (!outcome.trouble.empty()) Fail(outcome.trouble);
    if (!outcome.leftOut.empty()) Fail(outcome.leftOut.front());
  }
  if (std::filesystem::is_regular_file(path)) {
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK_CAPTURE(WriteTarget, DawProject, host::kDawProjectKind)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(WriteTarget, Otio, host::kOtioKind)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_CAPTURE(WriteTarget, Report, report::kReportKind)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
/// Almost all of it is Ardour's own start.
BENCHMARK_CAPTURE(WriteTarget, Ardour, ardour::kArdourSessionKind)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace velmora::bench
