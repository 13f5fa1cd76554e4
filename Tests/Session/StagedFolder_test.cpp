#include "Session/StagedFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include "Support/TemporaryFolder.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

class StagedFolderTest : public testing::Test {
 protected:
  [[nodiscard]] std::size_t Entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }
  static void Fill(StagedFolder& made) {
    ASSERT_TRUE(made.Create());
    fs::create_directory(made.WrittenPath() + "/inner");
    std::ofstream(made.WrittenPath() + "/inner/a") << "whole";
  }

  test::TemporaryFolder folder_;
  std::string path_ = folder_.Path("tracks");
};

TEST_F(StagedFolderTest, takesItsNameWhenItIsPublished) {
  EXPECT_EQ(StagedFolder::WhyNot(path_), "");
  {
    StagedFolder made(path_ + "/");
    Fill(made);
    EXPECT_FALSE(fs::exists(path_));
    fs::create_directory(folder_.Path("other"));
    EXPECT_EQ(fs::status(made.WrittenPath()).permissions(),
              fs::status(folder_.Path("other")).permissions());
    fs::remove(folder_.Path("other"));
    EXPECT_EQ(made.Publish(), 0);
    EXPECT_EQ(made.WrittenPath(), "");
  }
  EXPECT_EQ(test::TemporaryFolder::Read(path_ + "/inner/a"), "whole");
  EXPECT_EQ(Entries(), 1u);
}

TEST_F(StagedFolderTest, leavesNothingThatWasNotPublished) {
  {
    StagedFolder made(path_);
    Fill(made);
    EXPECT_EQ(Entries(), 1u);
  }
  EXPECT_EQ(Entries(), 0u);
}

TEST_F(StagedFolderTest, whatHoldsTheNameStays) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"aFile", [&] { folder_.Write("tracks", "mine"); }},
      {"aFolder", [&] { folder_.Write("tracks/mine", "mine"); }},
      {"anEmptyFolder", [&] { fs::create_directory(path_); }},
      {"aLinkToNothing", [&] { fs::create_symlink(folder_.Path("none"), path_); }},
  };
  for (const auto& [rule, hold] : rows) {
    StagedFolder made(path_);
    Fill(made);
    hold();
    const fs::file_type type = fs::symlink_status(path_).type();
    EXPECT_EQ(StagedFolder::WhyNot(path_ + "/"), path_ + " is there; it is not written over")
        << rule;
    EXPECT_EQ(made.Publish(), EEXIST) << rule;
    EXPECT_EQ(fs::symlink_status(path_).type(), type) << rule;
    EXPECT_FALSE(fs::exists(path_ + "/inner")) << rule;
    fs::remove_all(path_);
  }
  EXPECT_EQ(Entries(), 0u);
}

TEST_F(StagedFolderTest, saysWhatIsWrongWithItsPlace) {
  const std::string path = folder_.Path("none/tracks");
  EXPECT_EQ(StagedFolder::WhyNot(path), path + " cannot be written: No such file or directory");
  StagedFolder made(path);
  EXPECT_FALSE(made.Create());
  EXPECT_EQ(made.Trouble(ENOENT), path + " cannot be written: No such file or directory");
}

TEST_F(StagedFolderTest, twoOfOneNameAreFilledApartAndTheFirstHasIt) {
  StagedFolder one(path_), other(path_);
  Fill(one);
  Fill(other);
  EXPECT_NE(one.WrittenPath(), other.WrittenPath());
  EXPECT_EQ(other.Publish(), 0);
  EXPECT_EQ(one.Publish(), EEXIST);
}

}  // namespace
}  // namespace velmora::host
