// Very many spots in one process: what it holds must not grow. ./test runs some; the number is
// VELMORA_SPOTS.

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Embedded/EmbeddedHost.h"
#include "Model/ViewModel.h"
#include "Session/Session.h"
#include "Spot/SpotQueue.h"
#include "Spot/Threads/SpotQueueSupport.h"
#include "Storms/Storm.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

/// A sanitizer keeps freed memory for a while, to tell of its use.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryCounts = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kMemoryCounts = false;
#else
constexpr bool kMemoryCounts = true;
#endif
#else
constexpr bool kMemoryCounts = true;
#endif

struct Held {
  long kilobytes = 0;
  long descriptors = 0;
  long threads = 0;
};

long EntriesOf(const char* folder) {
  return static_cast<long>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

Held Measure() {
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return {pages * (::sysconf(_SC_PAGESIZE) / 1024), EntriesOf("/proc/self/fd"),
          EntriesOf("/proc/self/task")};
}

/// Shows reports at once; every seventh run is given up at some step.
class SoakDisplay : public SpotDisplay {
 public:
  void PostReport(std::int32_t progress) override {
    if (progress == abortAt) task->Abort();
    task->DeliverReport([](std::int32_t) {});
  }
  void Log(const std::string& /*line*/) override {}

  SpotTask* task = nullptr;
  std::int32_t abortAt = 0;
};

class SpotSoak : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists("/proc/self/statm")) GTEST_SKIP() << "needs /proc";
    WriteProject(folder_, "project.adl", 20,
                 "(Infade) 00.00.00,00/0100 _ 0 0 0 (Outfade) 00.00.00,00/0100 _ 0 0 0 "
                 "(Gain) 1 -6.0");
    folder_.Write("broken.adl", "<ADL>\n<SOURCE_INDEX>\n(Index)\n</SOURCE_INDEX>\n</ADL>\n");
  }

  void Spot(int number) {
    if (number % 10 == 9) {
      EXPECT_FALSE(model_.LoadFile(folder_.Path("broken.adl")));
    }
    ASSERT_TRUE(model_.LoadFile(folder_.Path("project.adl")));
    SpotOptions options = PlainOptions();
    options.bitDepth = number % 2 == 0 ? 24 : 16;
    options.depthSuffix = "_24bit";
    options.doFades = 1;
    options.doGain = number % 3 == 0 ? 1 : 0;
    options.copySource = number % 4 == 0 ? 1 : 0;
    options.copyFolder = folder_.Path("copies");
    fs::create_directory(options.copyFolder);

    host::Session session;
    host::EmbeddedHost embedded(session);
    SoakDisplay display;
    const auto task = queue_.Request(WorkOf(model_), options);
    display.task = task.get();
    display.abortAt = number % 7 == 6 ? 1 + number % 60 : 0;
    bool finished = false;
    std::thread worker([&] { finished = task->Execute(embedded, display); });
    worker.join();
    if (display.abortAt == 0) {
      EXPECT_TRUE(finished);
      EXPECT_EQ(session.Regions().size(), 60U) << "a region and two fades for each cut";
    }
    RemoveMadeFiles();
  }

  void RemoveMadeFiles() {
    fs::remove_all(folder_.Path("copies"));
    for (const auto& entry : fs::directory_iterator(folder_.Path())) {
      const std::string name = entry.path().filename().string();
      if (name != "voice.wav" && entry.path().extension() == ".wav") fs::remove(entry.path());
    }
  }

  TemporaryFolder folder_;
  ViewModel model_;
  SpotQueue queue_;
};

/// The largest of a quarter of the samples, from 0 to 3.
long Most(const std::vector<Held>& samples, std::size_t quarter, long Held::*what) {
  long most = 0;
  for (std::size_t i = samples.size() * quarter / 4; i < samples.size() * (quarter + 1) / 4; ++i) {
    most = std::max(most, samples[i].*what);
  }
  return most;
}

TEST_F(SpotSoak, nothingGrowsFromSpotToSpot) {
  constexpr int kSamples = 20;
  constexpr int kUsualSpots = 60;
  constexpr long kMegabyte = 1024;
  const int spots = std::max(kSamples, NumberOf("VELMORA_SPOTS", kUsualSpots));
  std::vector<Held> samples;
  for (int number = 0; number < spots && !HasFailure(); ++number) {
    Spot(number);
    if ((number + 1) % (spots / kSamples) != 0) continue;
    samples.push_back(Measure());
    if (spots > kUsualSpots) {
      std::cout << number + 1 << " spots: " << samples.back().kilobytes << " kB, "
                << samples.back().descriptors << " descriptors, " << samples.back().threads
                << " threads\n";
    }
  }
  ASSERT_GE(samples.size(), static_cast<std::size_t>(kSamples));
  EXPECT_EQ(Most(samples, 3, &Held::descriptors), Most(samples, 1, &Held::descriptors));
  EXPECT_EQ(Most(samples, 3, &Held::threads), Most(samples, 1, &Held::threads));
  const long before = Most(samples, 1, &Held::kilobytes);
  const long after = Most(samples, 3, &Held::kilobytes);
  if (kMemoryCounts) {
    EXPECT_LE(after, before + std::max(kMegabyte, before / 50));
  }
}

}  // namespace
}  // namespace velmora::test
