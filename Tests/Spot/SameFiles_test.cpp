// Several events that need the same file: copies of the first, each a file of its own, and only as
// long as making it anew would give the same bytes.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "Spot/MadeFiles.h"
#include "Spot/SpotFixture.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::TemporaryFolder;

using Lines = std::vector<std::string>;

/// Large enough for a copy to pay.
constexpr std::int32_t kFrames = 2'200'000;

/// Does something when a file is told of.
class MeddlingObserver : public test::RecordingObserver {
 public:
  using RecordingObserver::RecordingObserver;
  void FileMade(FilePass pass, std::int32_t event, const std::string& path,
                std::int32_t status) override {
    RecordingObserver::FileMade(pass, event, path, status);
    if (onFile) onFile(event, path);
  }
  std::function<void(std::int32_t event, const std::string& path)> onFile;
};

class SameFilesTest : public test::SpotTest {
 protected:
  void LoadThreeCuts(const char* gain = nullptr) {
    WriteWave("take.wav", 24, Samples());
    ProjectBuilder builder;
    builder.Source(1, "take.wav");
    for (int i = 0; i < 3; ++i) {
      if (gain != nullptr) {
        builder.Cut({.gainDb = gain});
      } else {
        builder.Cut({});
      }
    }
    Load(builder);
    // The stamps of a file that has just been written are not to be relied on.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  static std::vector<std::int32_t> Samples(std::int32_t from = 0) {
    std::vector<std::int32_t> samples;
    samples.reserve(kFrames);
    for (std::int32_t i = 0; i < kFrames; ++i)
      samples.push_back((from + i % 3000 * 2741) % 8000000);
    return samples;
  }
  bool RunMeddled(std::function<void(std::int32_t, const std::string&)> onFile) {
    meddling.onFile = std::move(onFile);
    return RunSpot({project.get(), events, minTrack, firstEvent.c_str()}, options, host, meddling);
  }
  std::string Read(const std::string& name) const {
    return TemporaryFolder::Read(folder.Path(name));
  }
  /// What making a file anew gives.
  std::string Anew(std::int32_t bits) {
    AES31BWF source(folder.Path("take.wav").c_str());
    const std::string path = folder.Path("anew.wav");
    EXPECT_EQ(source.CopyTo(path.c_str(), bits), CopyDone);
    std::string bytes = Read("anew.wav");
    std::filesystem::remove(path);
    return bytes;
  }

  MeddlingObserver meddling{journal, folder.Path()};
};

const Lines kMade = {"take_16bit.wav", "take_16bit.1.wav", "take_16bit.2.wav"};

TEST_F(SameFilesTest, areEqualAndSeparate) {
  LoadThreeCuts();
  EXPECT_TRUE(Run());
  const std::string expected = Anew(16);
  for (const std::string& name : kMade) EXPECT_TRUE(Read(name) == expected) << name;
  // A change of one leaves the others alone.
  {
    std::fstream file(folder.Path(kMade[0]), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(1000);
    file << "changed";
  }
  EXPECT_FALSE(Read(kMade[0]) == expected);
  EXPECT_TRUE(Read(kMade[1]) == expected);
  EXPECT_TRUE(Read(kMade[2]) == expected);
  struct stat first {};
  struct stat second {};
  ASSERT_EQ(stat(folder.Path(kMade[0]).c_str(), &first), 0);
  ASSERT_EQ(stat(folder.Path(kMade[1]).c_str(), &second), 0);
  EXPECT_NE(first.st_ino, second.st_ino);
  EXPECT_EQ(first.st_mode, second.st_mode);
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_16bit.wav 0", "depth 1 take_16bit.1.wav 0",
                                   "depth 2 take_16bit.2.wav 0"}));
}

TEST_F(SameFilesTest, gainsTooIfTheyAreTheSame) {
  LoadThreeCuts("-6");
  options.bitDepth = 24;
  options.doGain = 1;
  project->events[1].gain.gainDb = -5.0;
  EXPECT_TRUE(Run());
  const std::string first = Read("take_Gain.wav");
  EXPECT_EQ(first.size(), test::kHeaderBytes + kFrames * 3U);
  EXPECT_TRUE(Read("take_Gain.2.wav") == first);
  EXPECT_FALSE(Read("take_Gain.1.wav") == first);
  EXPECT_EQ(host.PlacedRegions().size(), 3U);
}

// An indexer or a backup may look at them, link them or change their rights at any time.
TEST_F(SameFilesTest, factsOfAMadeFileMayChangeWhileItIsCopied) {
  LoadThreeCuts();
  std::atomic<bool> ended = false;
  std::thread meddler([&] {
    const std::string path = folder.Path(kMade[0]);
    for (mode_t mode = 0640; !ended; mode ^= 0004) chmod(path.c_str(), mode);
  });
  EXPECT_TRUE(Run());
  ended = true;
  meddler.join();
  const std::string expected = Anew(16);
  for (const std::string& name : kMade) EXPECT_TRUE(Read(name) == expected) << name;
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_16bit.wav 0", "depth 1 take_16bit.1.wav 0",
                                   "depth 2 take_16bit.2.wav 0"}));
}

TEST_F(SameFilesTest, sourceThatChangesIsReadAgain) {
  LoadThreeCuts();
  const std::string before = Anew(16);
  // The same length: only the samples tell, and the times of the file.
  EXPECT_TRUE(RunMeddled([&](std::int32_t event, const std::string&) {
    if (event == 1) WriteWave("take.wav", 24, Samples(5000));
  }));
  const std::string after = Anew(16);
  ASSERT_FALSE(before == after);
  EXPECT_TRUE(Read(kMade[0]) == before);
  EXPECT_TRUE(Read(kMade[1]) == before);
  EXPECT_TRUE(Read(kMade[2]) == after);
}

TEST_F(SameFilesTest, madeFileThatChangesIsNotCopied) {
  LoadThreeCuts();
  const std::string expected = Anew(16);
  EXPECT_TRUE(RunMeddled([](std::int32_t event, const std::string& path) {
    if (event != 0) return;
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(1000);
    file << "changed";
  }));
  EXPECT_FALSE(Read(kMade[0]) == expected);
  EXPECT_TRUE(Read(kMade[1]) == expected);
  EXPECT_TRUE(Read(kMade[2]) == expected);
}

TEST_F(SameFilesTest, madeFileThatGoesIsMadeAnew) {
  LoadThreeCuts();
  EXPECT_TRUE(RunMeddled([](std::int32_t event, const std::string& path) {
    if (event == 0) std::filesystem::remove(path);
  }));
  // Its name is free again, so the next one takes it, as ever.
  const std::string expected = Anew(16);
  EXPECT_TRUE(Read(kMade[0]) == expected);
  EXPECT_TRUE(Read(kMade[1]) == expected);
  EXPECT_FALSE(Exists(kMade[2]));
}

TEST_F(SameFilesTest, sourceThatVanishesFailsAsEver) {
  LoadThreeCuts();
  EXPECT_TRUE(RunMeddled([&](std::int32_t event, const std::string&) {
    if (event == 0) std::filesystem::remove(folder.Path("take.wav"));
  }));
  EXPECT_EQ(meddling.files, (Lines{"depth 0 take_16bit.wav 0", "depth 1 take_16bit.1.wav 2",
                                   "depth 2 take_16bit.1.wav 2"}));
  EXPECT_FALSE(Exists(kMade[1]));
}

TEST_F(SameFilesTest, copyThatFindsNoRoomComesOutShortAsEver) {
  LoadThreeCuts();
  test::LogCapture log;
  std::unique_ptr<test::FileSizeLimit> limit;
  EXPECT_TRUE(RunMeddled([&](std::int32_t event, const std::string&) {
    if (event == 0) limit = std::make_unique<test::FileSizeLimit>(1'000'000);
    if (event == 1) limit.reset();
  }));
  EXPECT_EQ(meddling.files, (Lines{"depth 0 take_16bit.wav 0", "depth 1 take_16bit.1.wav 2",
                                   "depth 2 take_16bit.2.wav 0"}));
  EXPECT_EQ(std::filesystem::file_size(folder.Path(kMade[1])), 1'000'000U);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find(kMade[1]), std::string::npos);
  const std::string expected = Anew(16);
  EXPECT_TRUE(Read(kMade[1]) == expected.substr(0, 1'000'000));
  EXPECT_TRUE(Read(kMade[2]) == expected);
}

TEST_F(SameFilesTest, abortMakesNoFileAhead) {
  LoadThreeCuts();
  observer.abortAtPoll = 3;
  EXPECT_FALSE(Run());
  EXPECT_TRUE(Exists(kMade[0]));
  EXPECT_TRUE(Exists(kMade[1]));
  EXPECT_FALSE(Exists(kMade[2]));
}

/// That a copy is what is made, and not only its like.
TEST(MadeFiles, copiesWhatWasNotedUntilItChanges) {
  TemporaryFolder folder;
  const std::vector<std::int32_t> samples(kFrames, 0x123456);
  const std::string path = folder.Write("take.wav", test::PlainWave({.bits = 24}, samples));
  AES31BWF source(path.c_str());
  const std::string first = folder.Write("first.wav", "noted in its place");
  const MadeFiles::Recipe recipe = {&source, 16, {}};
  ASSERT_TRUE(MadeFiles::IsWorthNoting(recipe));
  MadeFiles made;
  NamedFile early(folder.Path("early.wav").c_str());
  EXPECT_EQ(made.CopyOf(recipe, early), std::nullopt);
  made.Note(recipe, MadeFiles::Begin(recipe), first);
  NamedFile copy(folder.Path("copy.wav").c_str());
  EXPECT_EQ(made.CopyOf(recipe, copy), CopyDone);
  EXPECT_EQ(TemporaryFolder::Read(copy.Path()), "noted in its place");
  EXPECT_EQ(made.CopyOf({&source, 16, 5U}, early), std::nullopt) << "another recipe";
  NamedFile nowhere(folder.Path("missing/copy.wav").c_str());
  EXPECT_EQ(made.CopyOf(recipe, nowhere), CopyTargetNotCreated);
  folder.Write("first.wav", "noted in its plaCe");
  EXPECT_EQ(made.CopyOf(recipe, copy), std::nullopt);
}

TEST(MadeFiles, whatIsNotWorthNoting) {
  TemporaryFolder folder;
  const std::string large =
      folder.Write("large.wav", test::PlainWave({.bits = 24}, std::vector<std::int32_t>(kFrames)));
  const std::string small = folder.Write("small.wav", test::PlainWave({.bits = 24}, {1, 2}));
  AES31BWF largeFile(large.c_str());
  AES31BWF smallFile(small.c_str());
  int destroyed = 0;
  test::CountedFile derived(large, destroyed);
  EXPECT_TRUE(MadeFiles::IsWorthNoting({&largeFile, 16, {}}));
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&smallFile, 16, {}}));
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&derived, 16, {}}));
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&largeFile, 24, {}})) << "a copy";
  EXPECT_TRUE(MadeFiles::IsWorthNoting({&largeFile, 24, 1U})) << "a gain";
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&largeFile, 0, {}}));
  // What is written then is no valid wave file to a reader, though the writer could use it.
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&largeFile, 4, 1U})) << "frames of no whole byte";
  AES31BWF wide(large.c_str());
  wide.format.channels = 32768;
  EXPECT_FALSE(MadeFiles::IsWorthNoting({&wide, 16, 1U})) << "frames of 65536 bytes";
}

}  // namespace
}  // namespace velmora
