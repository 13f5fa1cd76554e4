// A kept stream must never show: whoever reads meets the file that the path leads to now.

#include "BWF/KeptStreams.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

std::ptrdiff_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/dev/fd");
  return std::distance(begin(all), end(all));
}

class KeptStreamsTest : public testing::Test {
 protected:
  /// A mono file of two samples, old enough for its stamp to be relied on.
  std::string Write(const std::string& name, std::int32_t first) const {
    std::string path = folder.Write(name, PlainWave({.bits = 16}, {first, 2}));
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    return path;
  }
  static float First(AES31BWF& file) { return file.GetSampleAt(0, 0) * 32768; }

  TemporaryFolder folder;
  KeptStreams kept;
};

TEST_F(KeptStreamsTest, streamStaysOpenForTheNextTimeAndTheFileIsClosed) {
  AES31BWF file(Write("a.wav", 1).c_str());
  const std::ptrdiff_t before = OpenDescriptors();
  for (int i = 0; i < 3; ++i) {
    kept.Open(file);
    ASSERT_NE(file.stream, nullptr);
    EXPECT_EQ(file.position, file.dataOffset);
    EXPECT_EQ(ftello(file.stream.get()), file.dataOffset);
    EXPECT_EQ(First(file), 1);
    EXPECT_EQ(file.GetSampleAt(1, 0) * 32768, 2) << "and leaves the stream elsewhere";
    kept.Close(file);
    EXPECT_EQ(file.stream, nullptr);
    EXPECT_EQ(OpenDescriptors(), before + 1);
  }
  kept = {};
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(KeptStreamsTest, fileThatHasGoneDoesNotOpen) {
  const std::string path = Write("a.wav", 1);
  AES31BWF file(path.c_str());
  kept.Open(file);
  kept.Close(file);
  std::filesystem::rename(path, folder.Path("moved.wav"));
  kept.Open(file);
  EXPECT_EQ(file.stream, nullptr);
  kept.Close(file);
}

TEST_F(KeptStreamsTest, anotherFileAtThePathIsRead) {
  const std::string path = Write("a.wav", 1);
  AES31BWF file(path.c_str());
  kept.Open(file);
  kept.Close(file);
  std::filesystem::rename(Write("b.wav", 7), path);
  kept.Open(file);
  EXPECT_EQ(First(file), 7);
  kept.Close(file);
}

TEST_F(KeptStreamsTest, changedFileIsReadAfresh) {
  const std::string path = Write("a.wav", 1);
  AES31BWF file(path.c_str());
  for (const std::int32_t value : {5, 6, 7}) {
    kept.Open(file);
    EXPECT_NE(First(file), value) << "and now lies in the stream's memory";
    kept.Close(file);
    folder.Write("a.wav", PlainWave({.bits = 16}, {value, 2}));
    kept.Open(file);
    EXPECT_EQ(First(file), value);
    kept.Close(file);
  }
}

TEST_F(KeptStreamsTest, fileThatMayNoLongerBeReadDoesNotOpen) {
  OrdinaryRights rights;
  TemporaryFolder own;
  const std::string path = own.Write("a.wav", PlainWave({.bits = 16}, {1, 2}));
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
  AES31BWF file(path.c_str());
  kept.Open(file);
  kept.Close(file);
  chmod(path.c_str(), 0);
  kept.Open(file);
  EXPECT_EQ(file.stream, nullptr);
  kept.Close(file);
}

TEST_F(KeptStreamsTest, fewStayOpenAtOnce) {
  std::vector<std::unique_ptr<AES31BWF>> files;
  for (int i = 0; i < 20; ++i) {
    const std::string path =
        folder.Write(std::to_string(i) + ".wav", PlainWave({.bits = 16}, {i, 2}));
    files.push_back(std::make_unique<AES31BWF>(path.c_str()));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
  const std::ptrdiff_t before = OpenDescriptors();
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 20; ++i) {
      kept.Open(*files[static_cast<std::size_t>(i)]);
      EXPECT_EQ(First(*files[static_cast<std::size_t>(i)]), i);
      kept.Close(*files[static_cast<std::size_t>(i)]);
    }
  }
  EXPECT_EQ(OpenDescriptors(), before + 8);
}

TEST_F(KeptStreamsTest, noneStaysOpenWhereDescriptorsAreFew) {
  AES31BWF file(Write("a.wav", 1).c_str());
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit low = {6, before.rlim_max};  // half of them are taken from the start
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
  KeptStreams careful;
  setrlimit(RLIMIT_NOFILE, &before);
  const std::ptrdiff_t open = OpenDescriptors();
  careful.Open(file);
  EXPECT_EQ(First(file), 1);
  careful.Close(file);
  EXPECT_EQ(OpenDescriptors(), open);
}

TEST_F(KeptStreamsTest, streamThatSomebodyElseOpenedIsClosed) {
  AES31BWF file(Write("a.wav", 1).c_str());
  const std::ptrdiff_t before = OpenDescriptors();
  file.OpenAtData();
  kept.Close(file);
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
}  // namespace velmora::test
