#include <gtest/gtest.h>

#include <vector>

#include "CountedFile.h"
#include "LoadedProject.h"
#include "WaveBytes.h"

namespace velmora::test {
namespace {

using Numbers = std::vector<int>;

/// A project with three sources; the file of the third is there.
class FileOwnership : public testing::Test {
 protected:
  FileOwnership() {
    folder_.Write("x.wav", SmallWave());
    loading_ = std::make_unique<Loading>(folder_.Write(
        "project.adl",
        WithSources(
            "(Index) 1 (F) _ _ s l (Index) 2 (F) _ _ s l (Index) 3 (F) \"a/x.wav\" _ s l")));
    deleted_.reserve(16);
  }
  AES31Project& Project() { return *loading_->project; }
  AES31SourceFile& Source(std::int32_t index) { return Project().sourceFiles.at(index); }
  AES31BWF* NewFile(int number) { return new CountedFile(number, deleted_); }
  void DeleteProject() { loading_.reset(); }

  TemporaryFolder folder_;
  Numbers deleted_;
  std::unique_ptr<Loading> loading_;
};

TEST_F(FileOwnership, fileThatWasPutInByHandGoesWithTheProject) {
  Source(1).file = NewFile(1);
  EXPECT_EQ(deleted_, Numbers{});
  DeleteProject();
  EXPECT_EQ(deleted_, Numbers{1});
}

TEST_F(FileOwnership, filesGoInTheOrderOfTheirSources) {
  Source(2).file = NewFile(2);
  Project().sourceFiles[-5].file = NewFile(-5);
  Source(1).file = NewFile(1);
  DeleteProject();
  EXPECT_EQ(deleted_, (Numbers{-5, 1, 2}));
}

TEST_F(FileOwnership, fileOfSeveralSourcesGoesOnce) {
  Source(1).file = Source(2).file = NewFile(1);
  Project().sourceFiles[7].file = Source(3).file;  // one that the project opened
  DeleteProject();
  EXPECT_EQ(deleted_, Numbers{1});
}

TEST_F(FileOwnership, resolvingAnewKeepsTheFileForEventsThatPointToIt) {
  Source(1).file = Source(2).file = NewFile(1);
  Project().ResolveSources();
  EXPECT_EQ(Source(1).file, nullptr);
  EXPECT_EQ(deleted_, Numbers{});
  Source(2).file = NewFile(2);
  Project().ResolveSources();
  Project().ResolveSources();
  DeleteProject();
  EXPECT_EQ(deleted_, (Numbers{1, 2}));
}

TEST_F(FileOwnership, readingTheSourceAnewDoesNotLeakItsFile) {
  Source(1).file = NewFile(1);
  EXPECT_TRUE(Project().CheckSourceIndex({"SOURCE_INDEX", {{"Index", {"1"}}}}));
  EXPECT_EQ(Source(1).file, nullptr);
  DeleteProject();
  EXPECT_EQ(deleted_, Numbers{1});
}

TEST_F(FileOwnership, fileThatACallerDeletedAndTookOutIsNotTouched) {
  delete Source(3).file;
  Source(3).file = nullptr;
  DeleteProject();
  EXPECT_EQ(deleted_, Numbers{});
}

}  // namespace
}  // namespace velmora::test
