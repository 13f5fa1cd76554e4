#include "Base/FileStamp.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

TEST(FileStamp, everyChangeAfterASettledStampShows) {
  TemporaryFolder folder;
  const std::string path = folder.Write("file", "0000");
  for (int i = 1; i < 200; ++i) {
    const std::optional<FileStamp> before = SettledStamp(path);
    ASSERT_NE(before, std::nullopt);
    EXPECT_EQ(before, CurrentStamp(path));
    // At once, and of the same length.
    std::ofstream(path) << std::to_string(1000 + i);
    ASSERT_NE(CurrentStamp(path), before) << i;
  }
}

TEST(FileStamp, timesThatAreSetBackShow) {
  TemporaryFolder folder;
  const std::string path = folder.Write("file", "before");
  const auto written = std::filesystem::last_write_time(path);
  const std::optional<FileStamp> before = SettledStamp(path);
  folder.Write("file", "behind");
  std::filesystem::last_write_time(path, written);
  EXPECT_NE(CurrentStamp(path), before);
}

TEST(FileStamp, rightsAndReplacementsShow) {
  TemporaryFolder folder;
  const std::string path = folder.Write("file", "text");
  std::optional<FileStamp> before = SettledStamp(path);
  ASSERT_EQ(chmod(path.c_str(), 0600), 0);
  EXPECT_NE(CurrentStamp(path), before);
  before = SettledStamp(path);
  folder.Write("other", "text");
  std::filesystem::rename(folder.Path("other"), path);
  EXPECT_NE(CurrentStamp(path), before);
}

TEST(FileStamp, missingFileHasNone) {
  TemporaryFolder folder;
  EXPECT_EQ(CurrentStamp(folder.Path("missing")), std::nullopt);
  EXPECT_EQ(SettledStamp(folder.Path("missing")), std::nullopt);
}

}  // namespace
}  // namespace velmora::test
