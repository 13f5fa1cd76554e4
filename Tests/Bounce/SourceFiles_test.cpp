#include "Bounce/SourceFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "BounceFixture.h"

namespace velmora::bounce {
namespace {

namespace fs = std::filesystem;

class SourceFilesTest : public BounceFixture {
 protected:
  /// The files of the folder that this process has open.
  [[nodiscard]] std::set<std::string> OpenFiles() const {
    std::set<std::string> open;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      const std::string path = fs::read_symlink(entry, gone);
      if (!gone && path.compare(0, folder_.Path().size(), folder_.Path()) == 0) open.insert(path);
    }
    return open;
  }
};

TEST_F(SourceFilesTest, fewAreOpenHoweverManyThereAre) {
  SourceFiles sources(3);
  std::vector<TestSource> made;
  for (int i = 0; i < 10; ++i) {
    made.push_back(MakeSource(std::to_string(i), {24}, 50));
    EXPECT_EQ(sources.Add(made.back().path), static_cast<std::size_t>(i));
    EXPECT_LE(OpenFiles().size(), 3u);
  }
  EXPECT_EQ(sources.Add(made[4].path), 4u);
  for (std::size_t step = 0; step < 200; ++step) {
    const std::size_t file = step * 7 % 10;
    const auto frame = static_cast<std::int64_t>(step * 13 % 40);
    double samples[10] = {};
    ASSERT_TRUE(sources.ReadFractions(file, frame, 10, samples));
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_EQ(samples[i], made[file].samples[static_cast<std::size_t>(frame) + i]);
    }
    EXPECT_EQ(OpenFiles().size(), 3u);
  }
}

TEST_F(SourceFilesTest, theOneUsedLongestAgoIsClosedFirst) {
  SourceFiles sources(2);
  const TestSource a = MakeSource("a", {24}, 50), b = MakeSource("b", {24}, 50);
  const std::size_t first = sources.Add(a.path);
  sources.Add(b.path);
  double sample = 0;
  ASSERT_TRUE(sources.ReadFractions(first, 0, 1, &sample));
  const TestSource c = MakeSource("c", {24}, 50);
  sources.Add(c.path);
  EXPECT_EQ(OpenFiles(), (std::set<std::string>{a.path, c.path}));
}

TEST_F(SourceFilesTest, tellWhatTheirBytesAre) {
  struct Row {
    const char* rule;
    SourceForm form;
    std::optional<BounceDepth> same;
    bool isFloat;
    bool isWaveOf8Bits;
  };
  const Row rows[] = {
      {"8 bits", {8}, {}, false, true},
      {"16 bits", {16, 2}, BounceDepth::Bits16, false, false},
      {"24 bits", {24}, BounceDepth::Bits24, false, false},
      {"32 bits", {32}, {}, false, false},
      {"floats", {32, 3, true}, BounceDepth::Float32, true, false},
      {"long floats", {64, 1, true, 96000}, {}, true, false},
  };
  SourceFiles sources;
  for (const Row& row : rows) {
    const std::size_t file = sources.Add(MakeSource(row.rule, row.form, 20).path);
    const SourceFacts& facts = sources.Facts(file);
    EXPECT_EQ(facts.trouble, "") << row.rule;
    EXPECT_EQ(facts.sameBytesAs, row.same) << row.rule;
    EXPECT_EQ(facts.isFloat, row.isFloat) << row.rule;
    EXPECT_EQ(facts.isWaveOf8Bits, row.isWaveOf8Bits) << row.rule;
    EXPECT_EQ(facts.frames, 20) << row.rule;
    EXPECT_EQ(facts.channels, row.form.channels) << row.rule;
    EXPECT_EQ(facts.sampleRate, static_cast<std::int32_t>(row.form.rate)) << row.rule;
  }
}

/// What other programs write and libsndfile reads: the samples must be those of the wave file, and
/// bytes that lie in another order are no samples as they are.
TEST_F(SourceFilesTest, otherContainersGiveTheSameSamples) {
  const TestSource wave = MakeSource("a.wav", {24, 2}, 3000);
  for (const char* const name : {"a.aiff", "a.flac", "a.w64", "a.au", "a.rf64", "a.caf"}) {
    const std::string path = folder_.Path(name);
    const std::string command = "sndfile-convert -pcm24 " + wave.path + " " + path + " >/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << name;
    SourceFiles sources;
    const std::size_t file = sources.Add(path);
    ASSERT_EQ(sources.Facts(file).trouble, "") << name;
    std::vector<std::int32_t> integers(2 * 1000);
    ASSERT_TRUE(sources.ReadIntegers(file, 1234, 1000, integers.data())) << name;
    for (std::size_t i = 0; i < integers.size(); ++i) {
      ASSERT_EQ(integers[i] / 2147483648.0, wave.samples[2468 + i]) << name;
    }
    const bool keepsBytes = std::string(name) == "a.w64" || std::string(name) == "a.rf64";
    ASSERT_EQ(sources.Facts(file).sameBytesAs.has_value(), keepsBytes) << name;
    if (!keepsBytes) continue;
    std::vector<std::uint8_t> bytes(6 * 1000);
    ASSERT_TRUE(sources.ReadBytes(file, 1234, 1000, bytes.data())) << name;
    const std::vector<double> part(wave.samples.begin() + 2468, wave.samples.begin() + 4468);
    EXPECT_TRUE(std::string(bytes.begin(), bytes.end()) == Packed(part, BounceDepth::Bits24));
  }
}

TEST_F(SourceFilesTest, aFileThatHasLostItsEndIsTold) {
  const TestSource source = MakeSource("a.wav", {16}, 1000);
  SourceFiles sources;
  const std::size_t file = sources.Add(source.path);
  fs::resize_file(source.path, 44 + 2 * 600);
  std::vector<std::int32_t> samples(1000);
  EXPECT_TRUE(sources.ReadIntegers(file, 0, 600, samples.data()));
  EXPECT_FALSE(sources.ReadIntegers(file, 500, 200, samples.data()));
  EXPECT_EQ(sources.Trouble(),
            source.path + " cannot be read from sample 600 on: the file ends there now");
  std::vector<std::uint8_t> bytes(2000);
  EXPECT_FALSE(sources.ReadBytes(file, 590, 20, bytes.data()));
  std::vector<double> fractions(1000);
  EXPECT_FALSE(sources.ReadFractions(file, 700, 20, fractions.data()));
}

/// A disk that fails is played by a descriptor that cannot be read, put in the place of the file's.
TEST_F(SourceFilesTest, aReadThatFailsIsToldWithItsCause) {
  const TestSource source = MakeSource("a.wav", {24}, 100000);
  SourceFiles sources;
  const std::size_t file = sources.Add(source.path);
  std::vector<std::int32_t> samples(1000);
  ASSERT_TRUE(sources.ReadIntegers(file, 0, 1000, samples.data()));
  const int unreadable = ::open(folder_.Path("other").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_GE(unreadable, 0);
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (fs::read_symlink(entry, gone) != source.path || gone) continue;
    ASSERT_GE(::dup2(unreadable, std::stoi(entry.path().filename())), 0);
    break;
  }
  EXPECT_FALSE(sources.ReadIntegers(file, 50000, 1000, samples.data()));
  EXPECT_EQ(sources.Trouble(),
            source.path + " cannot be read from sample 50000 on: Bad file descriptor");
  ::close(unreadable);
}

TEST_F(SourceFilesTest, aFileThatIsAnotherWhenItIsOpenedAgainIsTold) {
  const TestSource first = MakeSource("a.wav", {16}, 1000);
  const TestSource second = MakeSource("b.wav", {16}, 1000);
  SourceFiles sources(1);
  const std::size_t a = sources.Add(first.path);
  const std::size_t b = sources.Add(second.path);
  std::int32_t sample = 0;
  ASSERT_TRUE(sources.ReadIntegers(b, 0, 1, &sample));
  MakeSource("a.wav", {16}, 999);
  EXPECT_FALSE(sources.ReadIntegers(a, 0, 1, &sample));
  EXPECT_EQ(sources.Trouble(), first.path + " has changed meanwhile");
  fs::remove(first.path);
  EXPECT_FALSE(sources.ReadIntegers(a, 0, 1, &sample));
  EXPECT_EQ(sources.Trouble(), first.path + " cannot be read any more: No such file or directory");
}

}  // namespace
}  // namespace velmora::bounce
