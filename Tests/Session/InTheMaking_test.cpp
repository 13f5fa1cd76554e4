#include "Session/InTheMaking.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>

#include "Session/HiddenName.h"
#include "Session/RemoveTree.h"
#include "Session/StagedFile.h"
#include "Session/StagedFolder.h"
#include "Support/TemporaryFolder.h"

// What a killed process leaves goes with the next run; what is anybody else's stays.

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

class InTheMakingTest : public testing::Test {
 protected:
  /// Another process does this, which is to end with BeKilled.
  static void InAProcess(const std::function<void()>& work) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) work();
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
  }
  /// Before anything can be tidied up.
  static void BeKilled() { ::kill(::getpid(), SIGKILL); }
  [[nodiscard]] std::size_t Entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }

  test::TemporaryFolder folder_;
};

TEST_F(InTheMakingTest, whatAKilledProcessLeavesGoesWithTheNextFile) {
  InAProcess([&] {
    StagedFile file(folder_.Path("a.wav"));
    static_cast<void>(file.Create());
    BeKilled();
  });
  ASSERT_EQ(Entries(), 1u);
  InAProcess([&] {
    StagedFolder folder(folder_.Path("tracks"));
    static_cast<void>(folder.Create());
    std::ofstream(folder.WrittenPath() + "/inner") << "half" << std::flush;
    BeKilled();
  });
  ASSERT_EQ(Entries(), 1u);
  {
    StagedFile file(folder_.Path("b.wav"));
    ASSERT_TRUE(file.Create());
    EXPECT_EQ(Entries(), 1u);
  }
  EXPECT_EQ(Entries(), 0u);
}

TEST_F(InTheMakingTest, whatIsStillBeingMadeStays) {
  StagedFile file(folder_.Path("a.wav"));
  StagedFolder folder(folder_.Path("tracks"));
  ASSERT_TRUE(file.Create());
  ASSERT_TRUE(folder.Create());
  ASSERT_EQ(file.Close(), 0);
  InAProcess([&] {
    // Not even the process that has inherited the lock of the first takes it with it.
    StagedFile other(folder_.Path("b.wav"));
    static_cast<void>(other.Create());
    BeKilled();
  });
  StagedFile third(folder_.Path("c.wav"));
  ASSERT_TRUE(third.Create());
  EXPECT_EQ(Entries(), 3u);
  EXPECT_EQ(file.Publish(), 0);
  EXPECT_EQ(folder.Publish(), 0);
}

TEST_F(InTheMakingTest, whatIsNoLeftOverStays) {
  const char* const names[] = {
      ".velmora-12-1.part.wav",     "velmora-12-1.part", ".velmora-12.part",
      ".velmora--1.part",           ".velmora-1-.part",  ".velmora-a-1.part",
      ".velmora-1-1-1.part",        ".velmora-.part",    ".velmora-1-1",
      ".velmora-01-1.part",         ".velmora-1-0.part", ".velmora-2026-11-22.part",
      ".velmora-12345678901-1.part"};
  for (const char* const name : names) {
    EXPECT_FALSE(IsHiddenName(name)) << name;
    folder_.Write(name, "mine");
  }
  // A link under such a name is somebody's, and so is what it leads to.
  const std::string target = folder_.Write("target", "mine");
  fs::create_symlink(target, folder_.Path(".velmora-7-1.part"));
  const std::size_t before = Entries();
  TidyLeftOvers(folder_.Path(), IsHiddenName);
  EXPECT_EQ(Entries(), before);
  EXPECT_TRUE(IsHiddenName(".velmora-123-45.part"));
}

TEST_F(InTheMakingTest, whatAFolderLinksToStays) {
  const std::string target = folder_.Write("target", "mine");
  const std::string left = folder_.Path(".velmora-7-1.part");
  fs::create_directory(left);
  fs::create_symlink(target, left + "/link");
  TidyLeftOvers(folder_.Path(), IsHiddenName);
  EXPECT_FALSE(fs::exists(left));
  EXPECT_EQ(test::TemporaryFolder::Read(target), "mine");
}

TEST_F(InTheMakingTest, allOfAProcessCanBeRemovedAtOnce) {
  static_cast<void>(folder_.Write("kept", "of somebody else"));
  {
    StagedFile published(folder_.Path("published"));
    ASSERT_TRUE(published.Create());
    ASSERT_EQ(published.Publish(), 0);
    StagedFile gone(folder_.Path("gone"));
    ASSERT_TRUE(gone.Create());
  }
  StagedFile file(folder_.Path("a.wav"));
  ASSERT_TRUE(file.Create());
  StagedFolder folder(folder_.Path("tracks"));
  ASSERT_TRUE(folder.Create());
  fs::create_directories(folder.WrittenPath() + "/inner/most");
  std::ofstream(folder.WrittenPath() + "/inner/most/a") << "half";
  ASSERT_EQ(Entries(), 4u);
  InTheMaking::RemoveAll();
  EXPECT_EQ(Entries(), 2u);
  EXPECT_TRUE(fs::exists(folder_.Path("kept")));
  EXPECT_TRUE(fs::exists(folder_.Path("published")));
}

TEST_F(InTheMakingTest, whatSomebodyElseHasTakenIsNotRemoved) {
  const std::string path = folder_.Write("made", "");
  InTheMaking tidier;
  ASSERT_TRUE(tidier.Begin(path));
  InTheMaking maker;
  ASSERT_FALSE(maker.Begin(path));
  tidier.End();
  InTheMaking::RemoveAll();
  EXPECT_TRUE(fs::exists(path));
}

TEST_F(InTheMakingTest, treesAreRemovedWhole) {
  const std::string kept = folder_.Path("kept");
  const std::string tree = folder_.Path("tree");
  fs::create_directories(kept);
  std::ofstream(kept + "/mine") << "mine";
  fs::create_directories(tree + "/a/b/c/d");
  fs::create_directory_symlink(kept, tree + "/a/link");
  for (int i = 0; i < 500; ++i) {
    std::ofstream(tree + "/a/file with a name that is not so short " + std::to_string(i)) << i;
  }
  RemoveTree(tree);
  EXPECT_FALSE(fs::exists(tree));
  EXPECT_EQ(test::TemporaryFolder::Read(kept + "/mine"), "mine");
  RemoveTree(kept + "/mine");
  EXPECT_TRUE(fs::is_empty(kept));
  RemoveTree(folder_.Path("nothing"));
}

TEST_F(InTheMakingTest, whoeverIsTakenForALeftOverMakesAnother) {
  const std::string path = folder_.Write("made", "");
  InTheMaking tidier;
  ASSERT_TRUE(tidier.Begin(path));
  InTheMaking maker;
  EXPECT_FALSE(maker.Begin(path));
  fs::remove(path);
  tidier.End();
  EXPECT_FALSE(maker.Begin(path));
}

}  // namespace
}  // namespace velmora::host
