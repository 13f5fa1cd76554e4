#include "Prepare/Staging.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "Support/TemporaryFolder.h"

namespace velmora::prepare {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void Put(const std::string& path) {
  std::ofstream(path) << "x";
}

TEST(Staging, folderAppearsWholeAtTheEnd) {
  test::TemporaryFolder folder;
  const std::string target = folder.Path("a/b/out");
  Staging staging;
  ASSERT_EQ(staging.Begin(target), "");
  EXPECT_FALSE(fs::exists(target));
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(target), std::vector<std::string>{"p.adl"});
  EXPECT_EQ(NamesIn(folder.Path("a/b")), std::vector<std::string>{"out"});
}

TEST(Staging, whatAKilledProcessLeftGoesWithTheNextAndOthersStay) {
  test::TemporaryFolder folder;
  const std::string target = folder.Path("out");
  for (const char* const left : {"out.preparing-abcdef", "out/.preparing-ABC123"}) {
    fs::create_directories(folder.Path(left));
    Put(folder.Path(left) + "/p.adl");
  }
  const std::vector<std::string> others = {"other.preparing-abcdef", "out.preparing-abcde",
                                           "out.preparing-abcdefg"};
  for (const std::string& other : others) fs::create_directory(folder.Path(other));
  Staging busy;
  ASSERT_EQ(busy.Begin(target), "");  // a folder that held nothing but a left-over counts as empty
  Staging staging;
  ASSERT_EQ(staging.Begin(target), "");
  EXPECT_TRUE(fs::exists(busy.Path()));
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(target), std::vector<std::string>{"p.adl"});
  for (const std::string& other : others) EXPECT_TRUE(fs::exists(folder.Path(other))) << other;
  EXPECT_FALSE(fs::exists(folder.Path("out.preparing-abcdef")));
}

TEST(Staging, whatIsNotCommittedLeavesNothing) {
  test::TemporaryFolder folder;
  {
    Staging staging;
    ASSERT_EQ(staging.Begin(folder.Path("a/b/out")), "");
    Put(staging.Path() + "/p.adl");
  }
  EXPECT_TRUE(NamesIn(folder.Path()).empty());
}

TEST(Staging, stagingFolderTellsWhatItIs) {
  test::TemporaryFolder folder;
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path("out/")), "");
  EXPECT_EQ(staging.Path().find(folder.Path("out.preparing-")), 0U);
}

TEST(Staging, emptyFolderIsFilledAndKeepsItsRights) {
  test::TemporaryFolder folder;
  const std::string target = folder.Path("out");
  fs::create_directory(target);
  ASSERT_EQ(chmod(target.c_str(), 0750), 0);
  Staging staging;
  ASSERT_EQ(staging.Begin(target), "");
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(target), std::vector<std::string>{"p.adl"});
  struct stat facts {};
  ASSERT_EQ(stat(target.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0750U);
}

TEST(Staging, newFolderHasTheRightsThatFoldersGet) {
  test::TemporaryFolder folder;
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path("out")), "");
  fs::create_directory(folder.Path("other"));
  EXPECT_EQ(fs::status(staging.Path()).permissions(),
            fs::status(folder.Path("other")).permissions());
}

TEST(Staging, linkToAnEmptyFolderStaysALink) {
  test::TemporaryFolder folder;
  fs::create_directory(folder.Path("real"));
  fs::create_directory_symlink(folder.Path("real"), folder.Path("out"));
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path("out")), "");
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_TRUE(fs::is_symlink(folder.Path("out")));
  EXPECT_TRUE(fs::exists(folder.Path("real/p.adl")));
}

TEST(Staging, whatIsTakenIsRefusedAndStays) {
  test::TemporaryFolder folder;
  folder.Write("full/x", "x");
  folder.Write("file", "x");
  fs::create_symlink(folder.Path("nowhere"), folder.Path("link"));
  for (const char* const name : {"full", "file", "link", "file/below"}) {
    SCOPED_TRACE(name);
    Staging staging;
    EXPECT_NE(staging.Begin(folder.Path(name)).find(name), std::string::npos);
  }
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"file", "full", "link"}));
}

TEST(Staging, folderThatIsFilledMeanwhileStays) {
  test::TemporaryFolder folder;
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path("out")), "");
  Put(staging.Path() + "/p.adl");
  folder.Write("out/theirs", "x");
  EXPECT_NE(staging.Commit(), "");
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"out"});
  EXPECT_EQ(NamesIn(folder.Path("out")), std::vector<std::string>{"theirs"});
}

}  // namespace
}  // namespace velmora::prepare
