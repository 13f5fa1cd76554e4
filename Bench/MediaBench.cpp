#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "Media/AudioFacts.h"
#include "Media/Conversion.h"
#include "Media/MediaSearch.h"

namespace velmora::bench {
namespace {

constexpr std::int32_t kMegabytes = 60;

/// VELMORA_BENCH_FILES says how many files the media folder has; 100000 need 400 MB.
int FileCount() {
  const char* const told = std::getenv("VELMORA_BENCH_FILES");
  return told != nullptr ? std::atoi(told) : 5000;
}

/// So many are looked for.
int SourceCount() {
  return std::min(1000, FileCount());
}

std::string Number(std::uint64_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i, value >>= 8) text += static_cast<char>(value & 0xFF);
  return text;
}

/// A Broadcast Wave of ten samples.
std::string SmallWave(int number) {
  std::string bext(602, '\0');
  const std::string reference = "REF" + std::to_string(number);
  bext.replace(288, reference.size(), reference);
  bext.replace(338, 4, Number(static_cast<std::uint64_t>(number), 4));
  const std::string form = "WAVEfmt " + Number(16, 4) + Number(1, 2) + Number(1, 2) +
                           Number(48000, 4) + Number(96000, 4) + Number(2, 2) + Number(16, 2) +
                           "bext" + Number(602, 4) + bext + "data" + Number(20, 4) +
                           std::string(20, '\0');
  return "RIFF" + Number(form.size(), 4) + form;
}

/// Media in a hundred folders, made once.
const std::string& MediaFolder() {
  static const std::string folder = [] {
    std::string path = InputFolder() + "/media";
    for (int i = 0; i < FileCount(); ++i) {
      const std::string below = path + "/day " + std::to_string(i % 100);
      if (i < 100) std::filesystem::create_directories(below);
      const std::string bytes = SmallWave(i);
      std::ofstream(below + "/Take " + std::to_string(i) + ".wav", std::ios::binary) << bytes;
    }
    return path;
  }();
  return folder;
}

void Search(benchmark::State& state, bool missing, bool withEvidence) {
  const std::string project = InputFolder() + "/project";
  std::filesystem::create_directories(project);
  const std::string& mediaFolder = MediaFolder();
  for (auto _ : state) {
    media::FolderListings listings;
    media::MediaSearch search(listings, project, {mediaFolder});
    int found = 0;
    for (int i = 0; i < SourceCount(); ++i) {
      media::Wanted wanted;
      const std::string name = (missing ? "Lost " : "Take ") + std::to_string(i) + ".wav";
      wanted.location = "URL:file://localhost/Volumes/Audio/" + name;
      wanted.rawLocation = '"' + wanted.location + '"';
      if (withEvidence) {
        wanted.reference = "NONE" + std::to_string(i);
        wanted.length = 11;
        wanted.start = i;
      }
      if (search.Find(wanted).result == media::SearchResult::Found) ++found;
    }
    if (found != (missing ? 0 : SourceCount())) Fail("the search finds something else");
  }
  state.SetItemsProcessed(state.iterations() * SourceCount());
}

/// A thousand names that are there.
void SearchNames(benchmark::State& state) {
  Search(state, false, false);
}
/// A thousand names that are nowhere.
void SearchMissingNames(benchmark::State& state) {
  Search(state, true, false);
}
/// The same with references and lengths: every header has to be read.
void SearchMissingReferences(benchmark::State& state) {
  Search(state, true, true);
}
BENCHMARK(SearchNames)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SearchMissingNames)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SearchMissingReferences)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Facts and comparison of one file, as a check asks for each source.
void FactsOfFile(benchmark::State& state) {
  const std::string path = WriteNoise(24, 1);
  for (auto _ : state) {
    const media::FactsOrTrouble read = media::ReadFacts(path);
    if (!read.facts || media::CompareReaders(path, *read.facts) != media::Obstacle::None) {
      Fail("the file is not read");
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(FactsOfFile)->UseRealTime();

void CountBytes(benchmark::State& state, const std::string& source) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(std::filesystem::file_size(source)));
}

/// The whole file written anew; compare with CopyFileBySystem.
void WriteAnew(benchmark::State& state) {
  media::ConversionJob job;
  job.from = WriteNoise(static_cast<std::int32_t>(state.range(0)), kMegabytes);
  job.to = InputFolder() + "/anew.wav";
  for (auto _ : state) {
    if (!media::Convert(job, {}).done) Fail("the file is not written");
    std::filesystem::remove(job.to);
  }
  CountBytes(state, job.from);
}
BENCHMARK(WriteAnew)->Arg(16)->Arg(24)->UseRealTime();

void Resample(benchmark::State& state) {
  media::ConversionJob job;
  job.from = WriteNoise(24, kMegabytes / 4);
  job.to = InputFolder() + "/resampled.wav";
  job.sampleRate = 44100;
  for (auto _ : state) {
    if (!media::Convert(job, {}).done) Fail("the file is not resampled");
    std::filesystem::remove(job.to);
  }
  CountBytes(state, job.from);
}
BENCHMARK(Resample)->UseRealTime();

void CopyMedia(benchmark::State& state) {
  const std::string from = WriteNoise(24, kMegabytes);
  const std::string to = InputFolder() + "/copy.wav";
  for (auto _ : state) {
    if (!media::CopyWhole(from, to, {}).done) Fail("the file is not copied");
    std::filesystem::remove(to);
  }
  CountBytes(state, from);
}
BENCHMARK(CopyMedia)->UseRealTime();

}  // namespace
}  // namespace velmora::bench
