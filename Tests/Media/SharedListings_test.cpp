// Many projects are checked side by side with the same media folders. To be run under
// ThreadSanitizer too.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "Media/MediaSearch.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::media {
namespace {

TEST(SharedListings, manyThreadsFindTheSame) {
  constexpr int kThreads = 4;
  constexpr int kTakes = 40;
  const test::TemporaryFolder folder;
  for (int i = 0; i < kTakes; ++i) {
    const std::string number = std::to_string(i);
    const auto wave = [&](const std::string& reference) {
      return test::WaveBytes()
          .Bext({.reference = reference, .timeLow = static_cast<std::uint32_t>(i)})
          .Format({})
          .Data(test::PcmBytes(16, {i, 2, 3}))
          .Bytes();
    };
    folder.Write("m/" + number + "/take.wav", wave("TAKE" + number));
    folder.Write("m/" + number + "/Other" + number + ".wav", wave("OTHER" + number));
  }
  std::filesystem::create_directory(folder.Path("p"));

  struct Row {
    std::string location;
    std::string reference;
    std::string expected;
  };
  std::vector<Row> rows;
  for (int i = 0; i < kTakes; ++i) {
    const std::string number = std::to_string(i);
    rows.push_back({"URL:file:///V/take.wav", "TAKE" + number, number + "/take.wav"});
    rows.push_back(
        {"URL:file:///V/OTHER" + number + ".WAV", "", number + "/Other" + number + ".wav"});
    rows.push_back(
        {"URL:file:///V/Other" + number + ".aif", "", number + "/Other" + number + ".wav"});
    rows.push_back(
        {"URL:file:///V/gone.wav", "OTHER" + number, number + "/Other" + number + ".wav"});
  }

  FolderListings listings;
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      MediaSearch search(listings, folder.Path("p"), {folder.Path("m")});
      for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[(i + static_cast<std::size_t>(thread) * 7) % rows.size()];
        Wanted wanted;
        wanted.location = row.location;
        wanted.rawLocation = '"' + row.location + '"';
        wanted.reference = row.reference;
        if (search.Find(wanted).path != folder.Path("m/" + row.expected)) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace velmora::media
