#include "BWF/StreamCopy.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "Base/FileAccess.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

/// A named file that notes whether it is kept.
class NotedFile : public NamedFile {
 public:
  using NamedFile::NamedFile;
  void Keep() override { kept = true; }
  bool kept = false;
};

class StreamCopyTest : public testing::Test {
 protected:
  static std::string Noise(std::size_t count) {
    std::mt19937 random(37);
    std::string bytes(count, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
  }
  bool Copy(std::FILE* from, std::uint64_t count) {
    return CopyStream(from, "source", file.Create(), count, file);
  }

  TemporaryFolder folder;
  LogCapture log;
  const std::string target = folder.Path("target");
  NotedFile file{target.c_str()};
};

TEST_F(StreamCopyTest, takesTheFirstBytesOrAllThereAre) {
  const std::string bytes = Noise(3'000'001);
  const FileStream source = OpenRegularFile(folder.Write("source", bytes).c_str());
  for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{4096},
                                  std::size_t{2'000'003}, bytes.size(), bytes.size() + 9}) {
    SCOPED_TRACE(count);
    EXPECT_TRUE(Copy(source.get(), count));
    EXPECT_TRUE(TemporaryFolder::Read(target) == bytes.substr(0, count));
    EXPECT_TRUE(file.kept);
  }
}

TEST_F(StreamCopyTest, beginsAtTheBeginWhereverTheSourceStands) {
  const FileStream source = OpenRegularFile(folder.Write("source", "0123456789").c_str());
  std::fgetc(source.get());
  std::fseek(source.get(), 7, SEEK_SET);
  EXPECT_TRUE(Copy(source.get(), 5));
  EXPECT_EQ(TemporaryFolder::Read(target), "01234");
}

/// The system copies no bytes of a file that has no length, though reading gives some.
TEST_F(StreamCopyTest, whatTheSystemDoesNotCopyIsReadAndWritten) {
  const FileStream source = OpenRegularFile("/proc/self/status");
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(Copy(source.get(), 40));
  EXPECT_EQ(TemporaryFolder::Read(target).substr(0, 5), "Name:");
  EXPECT_EQ(std::filesystem::file_size(target), 40U);
}

TEST_F(StreamCopyTest, sourceThatCannotBeReadFailsAndKeepsNothing) {
  const std::string path = folder.Write("source", "text");
  const FileStream source(std::fopen(path.c_str(), "ab"));
  EXPECT_FALSE(Copy(source.get(), 4));
  EXPECT_FALSE(file.kept);
  EXPECT_EQ(log.lines, std::vector<std::string>{std::string("source: cannot be read: ") +
                                                std::strerror(EBADF)});
}

TEST_F(StreamCopyTest, fullDiskFailsAndIsLoggedOnce) {
  const std::string full = FullDisk(folder);
  NotedFile device(full.c_str());
  const FileStream source = OpenRegularFile(folder.Write("source", Noise(5000)).c_str());
  EXPECT_FALSE(CopyStream(source.get(), "source", device.Create(), 5000, device));
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find(std::strerror(ENOSPC)), std::string::npos);
}

TEST_F(StreamCopyTest, fileThatGrowsTooLargeStaysShort) {
  const std::string bytes = Noise(3'000'001);
  const FileStream source = OpenRegularFile(folder.Write("source", bytes).c_str());
  const FileSizeLimit limit(2'000'001);
  EXPECT_FALSE(Copy(source.get(), bytes.size()));
  EXPECT_TRUE(file.kept);
  EXPECT_TRUE(TemporaryFolder::Read(target) == bytes.substr(0, 2'000'001));
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find(std::strerror(EFBIG)), std::string::npos);
}

}  // namespace
}  // namespace velmora::test
