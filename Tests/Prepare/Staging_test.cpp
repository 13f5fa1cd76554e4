#include "Prepare/Staging.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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
  for (const char* const left : {".velmora-7-1.part", "out/.velmora-7-2.part"}) {
    fs::create_directories(folder.Path(left));
    Put(folder.Path(left) + "/p.adl");
  }
  const std::vector<std::string> others = {"out.preparing-abcdef", "out.preparing-backup",
                                           ".velmora-backup.part", ".velmora-2026-11-22.part"};
  for (const std::string& other : others) {
    fs::create_directory(folder.Path(other));
    Put(folder.Path(other) + "/p.adl");
  }
  Staging busy;
  ASSERT_EQ(busy.Begin(target), "");  // a folder that held nothing but a left-over counts as empty
  Staging staging;
  ASSERT_EQ(staging.Begin(target), "");
  EXPECT_TRUE(fs::exists(busy.Path()));
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(target), std::vector<std::string>{"p.adl"});
  for (const std::string& other : others) {
    EXPECT_TRUE(fs::exists(folder.Path(other) + "/p.adl")) << other;
  }
  EXPECT_FALSE(fs::exists(folder.Path(".velmora-7-1.part")));
}

TEST(Staging, whoIsRefusedTidiesNothingAway) {
  test::TemporaryFolder folder;
  folder.Write("full/mine", "x");
  const std::vector<std::string> left = {"full/.velmora-7-1.part", ".velmora-7-2.part"};
  for (const std::string& path : left) fs::create_directory(folder.Path(path));
  Staging staging;
  EXPECT_NE(staging.Begin(folder.Path("full")), "");
  for (const std::string& path : left) EXPECT_TRUE(fs::exists(folder.Path(path))) << path;
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

TEST(Staging, nameMayBeAsLongAsNamesCanBe) {
  test::TemporaryFolder folder;
  const std::string name(255, 'n');
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path(name)), "");
  Put(staging.Path() + "/p.adl");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{name});
}

TEST(Staging, wayThroughMissingFoldersIsLeftOut) {
  test::TemporaryFolder folder;
  fs::create_directories(folder.Path("there/below"));
  fs::create_directory_symlink(folder.Path("there/below"), folder.Path("link"));
  const std::pair<std::string, std::string> rows[] = {{"a/../b", "b"},
                                                      {"a/b/../../c/", "c"},
                                                      {"there/../b", "there/../b"},
                                                      {"link/../b", "link/../b"},
                                                      {"link/a/../b", "link/b"},
                                                      {"there/.", "there"},
                                                      {"there//", "there"}};
  for (const auto& [given, expected] : rows) {
    EXPECT_EQ(WithoutDetours(folder.Path(given)), folder.Path(expected)) << given;
  }
  EXPECT_EQ(WithoutDetours("/"), "/");
  Staging staging;
  ASSERT_EQ(staging.Begin(folder.Path("a/../b")), "");
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"b", "link", "there"}));
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

TEST(Staging, nameThatIsTakenMeanwhileStays) {
  for (const bool isFolder : {false, true}) {
    test::TemporaryFolder folder;
    Staging staging;
    ASSERT_EQ(staging.Begin(folder.Path("out")), "");
    Put(staging.Path() + "/p.adl");
    // Even an empty folder, which a rename would replace without a word.
    isFolder ? static_cast<void>(fs::create_directory(folder.Path("out")))
             : Put(folder.Path("out"));
    EXPECT_NE(staging.Commit().find("has appeared meanwhile"), std::string::npos);
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"out"});
    EXPECT_EQ(fs::is_directory(folder.Path("out")), isFolder);
  }
}

/// A folder that can be filled but not replaced: the one above it takes nothing.
class FilledStaging : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() == 0 && seteuid(kNobody) != 0) GTEST_SKIP() << "root may write everywhere";
    folder_.emplace();
    target_ = folder_->Path("above/out");
    fs::create_directories(target_);
    ASSERT_EQ(chmod(folder_->Path("above").c_str(), 0555), 0);
  }
  void TearDown() override {
    if (folder_) chmod(folder_->Path("above").c_str(), 0755);
    folder_.reset();
    if (getuid() == 0 && seteuid(0) != 0) abort();
  }
  void Prepare(Staging& staging) const {
    ASSERT_EQ(staging.Begin(target_), "");
    ASSERT_EQ(fs::path(staging.Path()).parent_path(), target_);
    fs::create_directory(staging.Path() + "/Audio");
    Put(staging.Path() + "/Audio/take.wav");
    Put(staging.Path() + "/p.adl");
  }

  static constexpr uid_t kNobody = 65534;
  std::optional<test::TemporaryFolder> folder_;
  std::string target_;
};

TEST_F(FilledStaging, holdsWhatWasMade) {
  Staging staging;
  Prepare(staging);
  ASSERT_EQ(staging.Commit(), "");
  EXPECT_EQ(NamesIn(target_), (std::vector<std::string>{"Audio", "p.adl"}));
  EXPECT_EQ(NamesIn(target_ + "/Audio"), std::vector<std::string>{"take.wav"});
}

TEST_F(FilledStaging, nameThatIsTakenMeanwhileStaysAndNothingElse) {
  for (const std::string name : {"p.adl", "Audio"}) {
    SCOPED_TRACE(name);
    Staging staging;
    Prepare(staging);
    std::ofstream(target_ + '/' + name) << "theirs";
    EXPECT_NE(staging.Commit().find(name + " has appeared meanwhile"), std::string::npos);
    EXPECT_EQ(NamesIn(target_), std::vector<std::string>{name});
    EXPECT_EQ(test::TemporaryFolder::Read(target_ + '/' + name), "theirs");
    fs::remove(target_ + '/' + name);
  }
}

}  // namespace
}  // namespace velmora::prepare
