#include "Session/StagedFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include "Support/TemporaryFolder.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

class StagedFileTest : public testing::Test {
 protected:
  [[nodiscard]] std::size_t Entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }
  /// Writes `text` as far as the closing of the hidden file.
  void Fill(StagedFile& file, const char* text) {
    ASSERT_TRUE(file.Create());
    std::fputs(text, file.Stream());
    ASSERT_EQ(file.Close(), 0);
  }

  test::TemporaryFolder folder_;
  std::string path_ = folder_.Path("page.html");
};

TEST_F(StagedFileTest, takesItsNameWhenItIsPublished) {
  EXPECT_EQ(StagedFile::WhyNot(path_), "");
  {
    StagedFile file(path_);
    Fill(file, "whole");
    EXPECT_FALSE(fs::exists(path_));
    EXPECT_EQ(file.Publish(), 0);
  }
  EXPECT_EQ(test::TemporaryFolder::Read(path_), "whole");
  EXPECT_EQ(Entries(), 1u);
}

TEST_F(StagedFileTest, leavesNothingThatWasNotPublished) {
  {
    StagedFile file(path_);
    Fill(file, "half");
    EXPECT_EQ(Entries(), 1u);
  }
  EXPECT_EQ(Entries(), 0u);
}

TEST_F(StagedFileTest, whatHoldsTheNameStays) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"aFile", [&] { folder_.Write("page.html", "mine"); }},
      {"aFolder", [&] { fs::create_directory(path_); }},
      {"aLinkToNothing", [&] { fs::create_symlink(folder_.Path("none"), path_); }},
  };
  for (const auto& [rule, hold] : rows) {
    StagedFile file(path_);
    Fill(file, "new");
    hold();
    const fs::file_type type = fs::symlink_status(path_).type();
    EXPECT_EQ(StagedFile::WhyNot(path_), path_ + " is there; it is not written over") << rule;
    EXPECT_EQ(file.Publish(), EEXIST) << rule;
    EXPECT_EQ(fs::symlink_status(path_).type(), type) << rule;
    if (type == fs::file_type::regular) {
      EXPECT_EQ(test::TemporaryFolder::Read(path_), "mine");
    }
    fs::remove(path_);
  }
  EXPECT_EQ(Entries(), 0u);
}

TEST_F(StagedFileTest, saysWhatIsWrongWithAFolder) {
  const std::string path = folder_.Path("none/page.html");
  EXPECT_EQ(StagedFile::WhyNot(path), path + " cannot be written: No such file or directory");
  StagedFile file(path);
  EXPECT_FALSE(file.Create());
  EXPECT_EQ(file.Trouble(ENOENT), path + " cannot be written: No such file or directory");
}

TEST_F(StagedFileTest, twoOfOneNameWriteApartAndTheFirstHasIt) {
  StagedFile one(path_), other(path_);
  Fill(one, "one");
  Fill(other, "other");
  EXPECT_NE(one.WrittenPath(), other.WrittenPath());
  EXPECT_EQ(other.Publish(), 0);
  EXPECT_EQ(one.Publish(), EEXIST);
  EXPECT_EQ(test::TemporaryFolder::Read(path_), "other");
}

}  // namespace
}  // namespace velmora::host
