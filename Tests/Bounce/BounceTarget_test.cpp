#include "Bounce/BounceTarget.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "BounceFixture.h"
#include "Media/SoundFile.h"
#include "Support/SystemConditions.h"

namespace velmora::bounce {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class BounceTargetTest : public BounceFixture {
 protected:
  std::string out_ = folder_.Path("out.wav");
  std::string tracks_ = folder_.Path("tracks");
};

TEST_F(BounceTargetTest, beginsAtTheFirstRegionWhichIsItsTimeReference) {
  const TestSource a = MakeSource("a", {24}, 100);
  constexpr std::int64_t kBeyond32Bits = std::int64_t{48000} * 60 * 60 * 30;
  Place(0, kBeyond32Bits + 50, a, 0, 100);
  Place(4, kBeyond32Bits, a, 0, 10);
  ASSERT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits16).trouble, "");
  ASSERT_EQ(Bounce(kBounceTracksKind, tracks_, BounceDepth::Bits16).trouble, "");
  const std::pair<std::string, std::string> rows[] = {{out_, "Storm"},
                                                      {tracks_ + "/Track 1.wav", "Storm, track 1"},
                                                      {tracks_ + "/Track 5.wav", "Storm, track 5"}};
  for (const auto& [path, description] : rows) {
    const WaveFile wave = ParseWave(test::TemporaryFolder::Read(path));
    const std::string& bext = wave.body.at("bext");
    EXPECT_EQ(NumberAt(bext, 338, 8), static_cast<std::uint64_t>(kBeyond32Bits));
    EXPECT_STREQ(bext.substr(0, 256).c_str(), description.c_str());
    EXPECT_EQ(wave.dataBytes, path == out_ ? 600u : 300u);
  }
}

TEST_F(BounceTargetTest, filesOfTracksHaveTheProjectsNumbers) {
  const TestSource a = MakeSource("a", {24}, 10);
  record_.firstTrackNumber = 11;
  record_.title = "";
  Place(0, 0, a, 0, 10);
  Place(2, 5, a, 0, 10);
  ASSERT_EQ(Bounce(kBounceTracksKind, tracks_, BounceDepth::Bits24).trouble, "");
  EXPECT_EQ(Names(), (Texts{"a", "tracks"}));
  EXPECT_TRUE(fs::exists(tracks_ + "/Track 11.wav"));
  EXPECT_TRUE(fs::exists(tracks_ + "/Track 13.wav"));
  EXPECT_EQ(std::distance(fs::directory_iterator(tracks_), fs::directory_iterator()), 2);
  const WaveFile wave = ParseWave(test::TemporaryFolder::Read(tracks_ + "/Track 13.wav"));
  EXPECT_STREQ(wave.body.at("bext").substr(0, 256).c_str(), "track 13");
}

TEST_F(BounceTargetTest, whatIsThereIsRefusedBeforeTheSpot) {
  for (const host::TargetKind* const kind : {&kBounceKind, &kBounceTracksKind}) {
    const std::string path = folder_.Write("there", "mine");
    EXPECT_EQ(kind->claim(path, {}).complaint, path + " is there; it is not written over");
    EXPECT_EQ(kind->claim(path, {}).target, nullptr);
    const std::string nowhere = folder_.Path("none/out.wav");
    EXPECT_EQ(kind->claim(nowhere, {}).complaint,
              nowhere + " cannot be written: No such file or directory");
    EXPECT_NE(kind->claim(folder_.Path("new"), {}).target, nullptr);
  }
  EXPECT_EQ(Names(), Texts{"there"});
}

TEST_F(BounceTargetTest, whatAppearsMeanwhileStays) {
  Place(0, 0, MakeSource("a", {24}, 10), 0, 10);
  const host::ClaimedTarget file = kBounceKind.claim(out_, {});
  const host::ClaimedTarget folder = kBounceTracksKind.claim(tracks_, {});
  folder_.Write("out.wav", "mine");
  fs::create_directory(tracks_);
  EXPECT_EQ(Write(*file.target).trouble, out_ + " has appeared meanwhile; it is not written over");
  EXPECT_EQ(Write(*folder.target).trouble,
            tracks_ + " has appeared meanwhile; it is not written over");
  EXPECT_EQ(test::TemporaryFolder::Read(out_), "mine");
  EXPECT_TRUE(fs::is_empty(tracks_));
  EXPECT_EQ(Names(), (Texts{"a", "out.wav", "tracks"}));
}

TEST_F(BounceTargetTest, aFullDiskLeavesNothing) {
  const TestSource a = MakeSource("a", {24}, 100000);
  Place(0, 0, a, 0, 100000);
  Place(1, 0, a, 0, 100000);
  const test::FileSizeLimit limit(250000);
  EXPECT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits24).trouble,
            out_ + " cannot be written: File too large");
  EXPECT_EQ(Bounce(kBounceTracksKind, tracks_, BounceDepth::Bits24).trouble,
            tracks_ + " cannot be written: File too large");
  EXPECT_EQ(Names(), Texts{"a"});
}

TEST_F(BounceTargetTest, aFolderWithoutRightsIsTold) {
  Place(0, 0, MakeSource("a", {24}, 10), 0, 10);
  fs::create_directory(folder_.Path("mine"));
  const std::string path = folder_.Path("mine/out.wav");
  host::ClaimedTarget claimed = kBounceKind.claim(path, {});
  ASSERT_EQ(claimed.complaint, "");
  fs::permissions(folder_.Path("mine"), fs::perms::owner_read | fs::perms::owner_exec);
  const test::OrdinaryRights rights;
  EXPECT_EQ(Write(*claimed.target).trouble, path + " cannot be written: Permission denied");
}

TEST_F(BounceTargetTest, cancelledItLeavesNothing) {
  const TestSource a = MakeSource("a", {24}, 300000);
  Place(0, 0, a, 0, 300000);
  Place(1, 0, a, 0, 300000);
  for (const host::TargetKind* const kind : {&kBounceKind, &kBounceTracksKind}) {
    int asked = 0;
    const TargetOutcome outcome =
        Bounce(*kind, out_, BounceDepth::Bits24, [&](double) { return ++asked < 3; });
    EXPECT_EQ(outcome.trouble, out_ + " is not made: it was cancelled");
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(Names(), Texts{"a"});
  }
}

TEST_F(BounceTargetTest, progressRisesToOne) {
  const TestSource a = MakeSource("a", {24}, 300000);
  Place(0, 0, a, 0, 300000);
  Place(1, 400000, a, 0, 300000);
  for (const host::TargetKind* const kind : {&kBounceKind, &kBounceTracksKind}) {
    std::vector<double> shares;
    const auto follow = [&](double share) {
      shares.push_back(share);
      return true;
    };
    ASSERT_EQ(Bounce(*kind, folder_.Path(kind->name), BounceDepth::Bits24, follow).trouble, "");
    EXPECT_GT(shares.size(), 8u);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GE(shares.front(), 0);
    EXPECT_EQ(shares.back(), 1);
  }
}

TEST_F(BounceTargetTest, aSourceThatEndsWhileItIsReadIsAnErrorAndNoSilence) {
  const TestSource a = MakeSource("a", {24}, 300000);
  Place(0, 0, a, 0, 300000);
  for (const host::TargetKind* const kind : {&kBounceKind, &kBounceTracksKind}) {
    const std::string whole = test::TemporaryFolder::Read(a.path);
    const auto cut = [&](double) {
      fs::resize_file(a.path, 44 + 3 * 200000);
      return true;
    };
    EXPECT_EQ(Bounce(*kind, out_, BounceDepth::Bits24, cut).trouble,
              out_ + " is not made: " + a.path +
                  " cannot be read from sample 200000 on: the file ends there now");
    EXPECT_EQ(Names(), Texts{"a"});
    folder_.Write("a", whole);
  }
}

TEST_F(BounceTargetTest, sourcesAreNotTouched) {
  const TestSource a = MakeSource("a", {24}, 3000);
  const std::string before = test::TemporaryFolder::Read(a.path);
  fs::permissions(a.path, fs::perms::owner_read);
  const auto written = fs::last_write_time(a.path);
  Place(0, 0, a, 0, 3000, {100, 100, 3});
  ASSERT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits24).trouble, "");
  EXPECT_TRUE(test::TemporaryFolder::Read(a.path) == before);
  EXPECT_EQ(fs::last_write_time(a.path), written);
}

/// 5 GiB and more of silence with some audio on both sides.
TEST_F(BounceTargetTest, beyond4GiBItIsAnRf64WithAHole) {
  const TestSource a = MakeSource("a", {24}, 5000);
  constexpr std::int64_t kLate = 1'900'000'001;
  Place(0, 10, a, 0, 5000);
  Place(0, kLate, a, 0, 5000);
  const test::Watchdog watchdog;
  ASSERT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits24).trouble, "");
  struct stat facts {};
  ASSERT_EQ(::stat(out_.c_str(), &facts), 0);
  EXPECT_GT(facts.st_size, std::int64_t{5} << 30);
  EXPECT_LT(facts.st_blocks * 512, 1 << 20);

  std::string trouble;
  const auto sound = media::SoundFile::Open(out_, trouble);
  ASSERT_NE(sound, nullptr) << trouble;
  EXPECT_EQ(sound->Container(), SF_FORMAT_RF64);
  EXPECT_EQ(sound->Info().frames, kLate + 5000 - 10);
  std::vector<double> end(5000);
  ASSERT_TRUE(sound->Seek(kLate - 10));
  ASSERT_EQ(sound->ReadFractions(end.data(), 5000), 5000);
  EXPECT_TRUE(end == a.samples);
  std::vector<double> start(5001);
  ASSERT_TRUE(sound->Seek(0));
  ASSERT_EQ(sound->ReadFractions(start.data(), 5001), 5001);
  EXPECT_EQ(start.back(), 0);
  start.pop_back();
  EXPECT_TRUE(start == a.samples);
}

/// A region may claim 2^31 samples of a short file.
TEST_F(BounceTargetTest, silencePastAFileTakesNeitherTimeNorRoom) {
  const TestSource a = MakeSource("a", {24}, 5000);
  constexpr std::int64_t kClaimed = 0x7FFFFFFF;
  Place(0, 0, a, 0, kClaimed);
  const test::Watchdog watchdog;
  ASSERT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits24).trouble, "");
  struct stat facts {};
  ASSERT_EQ(::stat(out_.c_str(), &facts), 0);
  EXPECT_GT(facts.st_size, kClaimed * 3);
  EXPECT_LT(facts.st_blocks * 512, 1 << 20);
}

TEST_F(BounceTargetTest, hundredsOfTracksAndFilesAreBouncedAtOnce) {
  for (std::int64_t track = 0; track < 300; ++track) {
    Place(track, track, MakeSource(std::to_string(track), {16}, 400), 0, 400);
  }
  ASSERT_EQ(Bounce(kBounceKind, out_, BounceDepth::Bits16).trouble, "");
  EXPECT_TRUE(AudioOf(out_) == Expected(BounceDepth::Bits16));
}

}  // namespace
}  // namespace velmora::bounce
