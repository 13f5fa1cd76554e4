#include "BWF/OutputPaths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "ADL/AES31Event.h"
#include "BWF/AES31BWF.h"
#include "Spot/EventFiles.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"
#include "SystemConditions.h"

namespace velmora::test {
namespace {

struct StemRow {
  const char* path;
  const char* stem;
};

TEST(CopyBaseName, runsFromTheLastSlashToTheFirstPointBehindIt) {
  for (const StemRow& row :
       {StemRow{"take.wav", "take"}, StemRow{"/x/take.wav", "take"},
        StemRow{"/x/take.1.wav", "take"}, StemRow{"/x/take", "take"}, StemRow{"take", "take"},
        StemRow{"", ""}, StemRow{"/", ""}, StemRow{"/x/", ""}, StemRow{"/x/.wav", ""},
        StemRow{".", ""}, StemRow{"/x.y/take.wav", "take"}, StemRow{"/x.y/take", "take"},
        StemRow{"../take.wav", "take"}, StemRow{"a\\b.wav", "a\\b"},
        StemRow{"/x/one two%d.wav", "one two%d"}, StemRow{"/x/\x83\x65.wav", "\x83\x65"}}) {
    EXPECT_EQ(CopyBaseName(row.path), row.stem) << row.path;
  }
}

TEST(CopyBaseName, hasNoLengthLimit) {
  const std::string longName(100000, 'n');
  EXPECT_EQ(CopyBaseName(("/x/" + longName + ".wav").c_str()), longName);
}

TEST(FileExists, isTrueForWhateverOpensForReading) {
  TemporaryFolder folder;
  EXPECT_TRUE(FileExists(folder.Write("file", "x").c_str()));
  EXPECT_TRUE(FileExists(folder.Write("empty", "").c_str()));
  EXPECT_TRUE(FileExists(folder.Path().c_str())) << "a folder";
  EXPECT_TRUE(FileExists("/dev/zero"));
  std::filesystem::create_symlink("file", folder.Path("link"));
  EXPECT_TRUE(FileExists(folder.Path("link").c_str()));
}

TEST(FileExists, isFalseForWhatDoesNot) {
  TemporaryFolder folder;
  EXPECT_FALSE(FileExists(folder.Path("missing").c_str()));
  EXPECT_FALSE(FileExists((folder.Write("file", "x") + "/below").c_str()));
  EXPECT_FALSE(FileExists(""));
  EXPECT_FALSE(FileExists(std::string(5000, 'a').c_str()));
  std::filesystem::create_symlink("nowhere", folder.Path("dangling"));
  EXPECT_FALSE(FileExists(folder.Path("dangling").c_str()));
}

TEST(FileExists, fileWithoutReadingRightsCountsAsFree) {
  TemporaryFolder folder;
  const std::string locked = folder.Write("locked", "x");
  ASSERT_EQ(chmod(locked.c_str(), 0), 0);
  OrdinaryRights rights;
  EXPECT_FALSE(FileExists(locked.c_str()));
}

TEST(FileExists, doesNotBlockOnAFifo) {
  TemporaryFolder folder;
  const std::string fifo = Fifo(folder, "fifo");
  Watchdog watchdog;
  EXPECT_TRUE(FileExists(fifo.c_str()));
}

TEST(FileExists, makesNothing) {
  TemporaryFolder folder;
  FileExists(folder.Path("missing").c_str());
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

// An event whose source has the given path. The file need not exist: a name is all that is asked.
class Named {
 public:
  explicit Named(const std::string& path) : file_(path.c_str()) { event_.sourceFile = &file_; }
  const AES31Event& operator*() const { return event_; }

 private:
  AES31BWF file_;
  AES31Event event_{};
};

struct PathRow {
  const char* rule;
  const char* source;
  const char* folder;  // null: beside the source
  const char* suffix;
  const char* copy;  // null: asked for the derived path alone
  const char* derived;
};

// No such folder exists, so the first name is always free.
constexpr PathRow kPathRows[] = {
    {"plain", "/no-x/take.wav", "/no-y", "_Gain", "/no-y/take.wav", "/no-y/take_Gain.wav"},
    {"twoPointsWithFolder", "/no-x/a.b.wav", "/no-y", "_Gain", "/no-y/a.wav", "/no-y/a_Gain.wav"},
    {"twoPointsBeside", "/no-x/a.b.wav", nullptr, "_Gain", nullptr, "/no-x/a.b_Gain.wav"},
    {"numberedBeside", "/no-x/take.1.wav", nullptr, "_16bit", nullptr, "/no-x/take.1_16bit.wav"},
    {"noPointWithFolder", "/no-x/take", "/no-y", "_XFade", "/no-y/take", "/no-y/take_XFade"},
    {"noPointBeside", "/no-x/take", nullptr, "_XFade", nullptr, "/no-x/take_XFade"},
    {"pointInAFolderAlone", "/no.x/take", "/no-y", "_Gain", "/no-y/take.x/take",
     "/no-y/take_Gain.x/take"},
    {"pointInAFolderAloneBeside", "/no.x/take", nullptr, "_Gain", nullptr, "/no_Gain.x/take"},
    {"hiddenFile", "/no-x/.wav", "/no-y", "_Gain", "/no-y/.wav", "/no-y/_Gain.wav"},
    {"hiddenFileBeside", "/no-x/.wav", nullptr, "_Gain", nullptr, "/no-x/_Gain.wav"},
    {"pointAtTheEnd", "/no-x/take.", "/no-y", "_Gain", "/no-y/take.", "/no-y/take_Gain."},
    {"noFolderInTheSource", "no-take.wav", "/no-y", "_24bit", "/no-y/no-take.wav",
     "/no-y/no-take_24bit.wav"},
    {"noFolderInTheSourceBeside", "no-take.wav", nullptr, "_24bit", nullptr, "no-take_24bit.wav"},
    {"slashIsAlwaysAdded", "/no-x/take.wav", "/no-y/", "_FadeIn", "/no-y//take.wav",
     "/no-y//take_FadeIn.wav"},
    {"emptyFolder", "/no-x/no-take.wav", "", "_FadeIn", "/no-take.wav", "/no-take_FadeIn.wav"},
    {"formatLetters", "/no-x/%s%d%n.wav", "/no-y/%s", "%d", "/no-y/%s/%s%d%n.wav",
     "/no-y/%s/%s%d%n%d.wav"},
    {"upperCaseExtension", "/no-x/take.WAV", "/no-y", "_Gain", "/no-y/take.WAV",
     "/no-y/take_Gain.WAV"},
    {"emptySuffix", "/no-x/a.b.wav", nullptr, "", nullptr, "/no-x/a.b.wav"},
    {"shiftJisBytes", "/no-x/\x83\x65.wav", "/no-y", "_Gain", "/no-y/\x83\x65.wav",
     "/no-y/\x83\x65_Gain.wav"},
};

TEST(OutputPaths, composeFolderStemSuffixAndExtension) {
  for (const PathRow& row : kPathRows) {
    SCOPED_TRACE(row.rule);
    Named event(row.source);
    EXPECT_EQ(BuildDerivedPath(*event, row.folder, row.suffix), row.derived);
    EXPECT_EQ(OutputNames().Find(SourcePath(*event), row.folder, row.suffix), row.derived);
    if (row.copy == nullptr) continue;
    EXPECT_EQ(BuildCopyPath(*event, row.folder), row.copy);
    EXPECT_EQ(OutputNames().Find(SourcePath(*event), row.folder, ""), row.copy);
  }
}

TEST(OutputPaths, haveNoLengthLimit) {
  const std::string deep = "/no-y/" + std::string(9000, 'd');
  Named event("/no-x/" + std::string(9000, 'n') + ".wav");
  EXPECT_EQ(BuildCopyPath(*event, deep.c_str()), deep + "/" + std::string(9000, 'n') + ".wav");
  EXPECT_EQ(BuildDerivedPath(*event, nullptr, "_Gain"),
            "/no-x/" + std::string(9000, 'n') + "_Gain.wav");
}

class FreeName : public testing::Test {
 protected:
  void Make(const std::string& path) { std::filesystem::copy(folder.Write("seed", ""), path); }

  TemporaryFolder folder;
  const std::string root = folder.Path();
  Named event{root + "/src/a.wav"};
};

TEST_F(FreeName, numbersRunFromOneBehindAPoint) {
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.wav");
  Make(root + "/a.wav");
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.1.wav");
  Make(root + "/a.1.wav");
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.2.wav");
}

TEST_F(FreeName, derivedNamesRunAlike) {
  Make(root + "/a_Gain.wav");
  EXPECT_EQ(BuildDerivedPath(*event, root.c_str(), "_Gain"), root + "/a_Gain.1.wav");
  Make(root + "/a_Gain.1.wav");
  EXPECT_EQ(BuildDerivedPath(*event, root.c_str(), "_Gain"), root + "/a_Gain.2.wav");
  EXPECT_EQ(BuildDerivedPath(*event, root.c_str(), "_XFade"), root + "/a_XFade.wav");
}

TEST_F(FreeName, firstGapIsTaken) {
  Make(root + "/a.wav");
  Make(root + "/a.2.wav");
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.1.wav");
}

TEST_F(FreeName, isNotReserved) {
  OutputNames names;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.wav");
    EXPECT_EQ(names.Find(SourcePath(*event), root.c_str(), ""), root + "/a.wav");
  }
  EXPECT_FALSE(std::filesystem::exists(root + "/a.wav"));
}

TEST_F(FreeName, foldersAndFifosTakeNamesToo) {
  std::filesystem::create_directory(root + "/a.wav");
  Fifo(folder, "a.1.wav");
  Watchdog watchdog;
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.2.wav");
}

TEST_F(FreeName, numbersHaveNoUpperLimit) {
  Make(root + "/a.wav");
  for (int i = 1; i < 300; ++i) Make(root + "/a." + std::to_string(i) + ".wav");
  EXPECT_EQ(BuildCopyPath(*event, root.c_str()), root + "/a.300.wav");
}

TEST_F(FreeName, oneRunKeepsItsSeriesApart) {
  OutputNames names;
  Named sameStem(root + "/other/a.b.wav");
  Named otherExtension(root + "/src/a.aif");
  const auto next = [&](const Named& of) {
    const std::string path = names.Find(SourcePath(*of), root.c_str(), "");
    Make(path);
    return path.substr(root.size() + 1);
  };
  EXPECT_EQ(next(event), "a.wav");
  EXPECT_EQ(next(event), "a.1.wav");
  EXPECT_EQ(next(sameStem), "a.2.wav");
  EXPECT_EQ(next(otherExtension), "a.aif");
  EXPECT_EQ(next(event), "a.3.wav");
  EXPECT_EQ(next(otherExtension), "a.1.aif");
  EXPECT_EQ(names.Find(SourcePath(*event), root.c_str(), "_Gain"), root + "/a_Gain.wav");
}

TEST_F(FreeName, oneRunGivesTheNamesThatSingleSearchesGive) {
  OutputNames names;
  for (const int taken : {0, 3, 4}) Make(root + "/a." + std::to_string(taken) + ".wav");
  Make(root + "/a.wav");
  for (int i = 0; i < 8; ++i) {
    const std::string expected = BuildCopyPath(*event, root.c_str());
    ASSERT_EQ(names.Find(SourcePath(*event), root.c_str(), ""), expected);
    Make(expected);
  }
  EXPECT_TRUE(std::filesystem::exists(root + "/a.10.wav"));
  EXPECT_FALSE(std::filesystem::exists(root + "/a.11.wav"));
}

TEST_F(FreeName, secondRunMakesANewSeriesAndOverwritesNothing) {
  for (int run = 0; run < 2; ++run) {
    OutputNames names;
    for (int i = 0; i < 3; ++i) {
      const std::string path = names.Find(SourcePath(*event), root.c_str(), "");
      ASSERT_FALSE(std::filesystem::exists(path));
      Make(path);
    }
  }
  EXPECT_TRUE(std::filesystem::exists(root + "/a.5.wav"));
}

double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

TEST_F(FreeName, oneRunCostsTimeInProportionToItsFiles) {
  // A search from the start each time would look at 750 files on average, not at one or two.
  constexpr int kFiles = 1500;
  OutputNames names;
  double searching = 0;
  double looking = 0;
  for (int i = 0; i < kFiles; ++i) {
    const double before = ProcessorSeconds();
    const std::string path = names.Find(SourcePath(*event), root.c_str(), "_XFade");
    const double between = ProcessorSeconds();
    FileExists(path.c_str());
    searching += between - before;
    Make(path);
    const double made = ProcessorSeconds();
    FileExists(path.c_str());
    looking += ProcessorSeconds() - made;
  }
  EXPECT_TRUE(std::filesystem::exists(root + "/a_XFade." + std::to_string(kFiles - 1) + ".wav"));
  EXPECT_LT(searching, 50 * looking) << searching << " s for " << kFiles << " names";
}

}  // namespace
}  // namespace velmora::test
