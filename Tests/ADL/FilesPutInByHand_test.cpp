#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "LoadedProject.h"
#include "Support/ProjectBuilder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

/// A wave file that counts its ends.
class CountedFile : public AES31BWF {
 public:
  CountedFile(const std::string& file, int& ends) : AES31BWF(file.c_str()), ends_(ends) {}
  ~CountedFile() override { ++ends_; }

 private:
  int& ends_;
};

struct Handling {
  const char* name;
  /// Source 1 has a file that the load opened, source 2 has none, source 9 is not in the project.
  std::function<void(AES31Project&, AES31BWF*)> put;
};

void PrintTo(const Handling& handling, std::ostream* out) {
  *out << handling.name;
}

class FilesPutInByHand : public testing::TestWithParam<Handling> {};

// A source's file belongs to the project, whoever opened it. AddressSanitizer sees what is freed
// twice or never.
TEST_P(FilesPutInByHand, EndWithTheProjectOnce) {
  TemporaryFolder folder;
  const std::string wave = folder.Write("take.wav", PlainWave({}, {1, 2, 3}));
  const std::string adl = ProjectBuilder()
                              .Source(1, "take.wav")
                              .Source(2, "missing.wav")
                              .Cut({.source = 1})
                              .Cut({.source = 2})
                              .WriteTo(folder);
  int ends = 0;
  {
    Loading project(adl);
    ASSERT_TRUE(project.ok);
    ASSERT_NE(project->sourceFiles.at(1).file, nullptr);
    ASSERT_EQ(project->sourceFiles.at(2).file, nullptr);
    GetParam().put(*project.project, new CountedFile(wave, ends));
    EXPECT_EQ(ends, 0);
  }
  EXPECT_EQ(ends, 1);
}

INSTANTIATE_TEST_SUITE_P(Ways, FilesPutInByHand,
                         testing::Values(Handling{"IntoASourceWithout",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    project.sourceFiles[2].file = file;
                                                  }},
                                         Handling{"IntoANewSource",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    project.sourceFiles[9].file = file;
                                                  }},
                                         Handling{"InPlaceOfADeletedOne",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    delete project.sourceFiles[1].file;
                                                    project.sourceFiles[1].file = file;
                                                  }},
                                         Handling{"IntoTwoSources",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    project.sourceFiles[2].file =
                                                        project.sourceFiles[3].file = file;
                                                  }},
                                         Handling{"BeforeASecondReading",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    project.sourceFiles[9].file = file;
                                                    project.ReadSections();
                                                    EXPECT_EQ(project.sourceFiles[1].file, nullptr);
                                                    project.LinkEvents();
                                                  }},
                                         Handling{"AndHandedToTheEvents",
                                                  [](AES31Project& project, AES31BWF* file) {
                                                    project.sourceFiles[2].file = file;
                                                    project.LinkEvents();
                                                    EXPECT_EQ(project.events.at(1).sourceFile,
                                                              file);
                                                  }}),
                         [](const auto& test) { return std::string(test.param.name); });

// What a caller takes out of a project is the caller's.
TEST(FilesTakenOutByHand, OutliveTheProject) {
  TemporaryFolder folder;
  folder.Write("take.wav", PlainWave({}, {1, 2, 3}));
  std::unique_ptr<AES31BWF> mine;
  {
    Loading project(ProjectBuilder().Source(1, "take.wav").Cut({}).WriteTo(folder));
    ASSERT_TRUE(project.ok);
    mine.reset(project->sourceFiles.at(1).file);
    project->sourceFiles.at(1).file = nullptr;
  }
  ASSERT_NE(mine, nullptr);
  EXPECT_TRUE(mine->IsValid());
  EXPECT_EQ(mine->GetFrames(), 3);
}

TEST(FilesPutInByHand, EndAlsoWithAProjectThatFailed) {
  TemporaryFolder folder;
  const std::string wave = folder.Write("take.wav", PlainWave({}, {1, 2, 3}));
  int ends = 0;
  {
    Loading project(folder.Write("bad.adl", WithSources("(Index) 1 (F) a b c d (T) 1")));
    ASSERT_FALSE(project.ok);
    project->sourceFiles[1].file = new CountedFile(wave, ends);
  }
  EXPECT_EQ(ends, 1);
}

}  // namespace
}  // namespace velmora::test
