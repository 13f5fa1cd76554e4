#include "BWF/OutputPaths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

struct StemRow {
  const char* path;
  const char* stem;
};

TEST(CopyBaseName, runsFromTheLastSlashToTheFirstPointAfterIt) {
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
  EXPECT_FALSE(FileExists(folder.Path("missing").c_str()));
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

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
    EXPECT_EQ(OutputNames().Find(row.source, row.folder, row.suffix), row.derived);
    if (row.copy == nullptr) continue;
    EXPECT_EQ(OutputNames().Find(row.source, row.folder, ""), row.copy);
  }
}

TEST(OutputPaths, haveNoLengthLimit) {
  const std::string deep = "/no-y/" + std::string(9000, 'd');
  const std::string source = "/no-x/" + std::string(9000, 'n') + ".wav";
  EXPECT_EQ(OutputNames().Find(source, deep.c_str(), ""),
            deep + "/" + std::string(9000, 'n') + ".wav");
  EXPECT_EQ(OutputNames().Find(source, nullptr, "_Gain"),
            "/no-x/" + std::string(9000, 'n') + "_Gain.wav");
}

class FreeName : public testing::Test {
 protected:
  /// The name that a new run finds first.
  std::string First(const char* suffix = "") const {
    return OutputNames().Find(source, root.c_str(), suffix);
  }
  void Make(const std::string& path) { std::filesystem::copy(folder.Write("seed", ""), path); }

  TemporaryFolder folder;
  const std::string root = folder.Path();
  const std::string source = root + "/src/a.wav";
};

TEST_F(FreeName, numbersRunFromOneAfterAPoint) {
  EXPECT_EQ(First(), root + "/a.wav");
  Make(root + "/a.wav");
  EXPECT_EQ(First(), root + "/a.1.wav");
  Make(root + "/a.1.wav");
  EXPECT_EQ(First(), root + "/a.2.wav");
}

TEST_F(FreeName, derivedNamesRunAlike) {
  Make(root + "/a_Gain.wav");
  EXPECT_EQ(First("_Gain"), root + "/a_Gain.1.wav");
  Make(root + "/a_Gain.1.wav");
  EXPECT_EQ(First("_Gain"), root + "/a_Gain.2.wav");
  EXPECT_EQ(First("_XFade"), root + "/a_XFade.wav");
}

TEST_F(FreeName, firstGapIsTaken) {
  Make(root + "/a.wav");
  Make(root + "/a.2.wav");
  EXPECT_EQ(First(), root + "/a.1.wav");
}

TEST_F(FreeName, isNotReserved) {
  OutputNames names;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(First(), root + "/a.wav");
    EXPECT_EQ(names.Find(source, root.c_str(), ""), root + "/a.wav");
  }
  EXPECT_FALSE(std::filesystem::exists(root + "/a.wav"));
}

TEST_F(FreeName, foldersFifosAndLinksTakeNamesToo) {
  std::filesystem::create_directory(root + "/a.wav");
  Fifo(folder, "a.1.wav");
  std::filesystem::create_symlink("nowhere", root + "/a.2.wav");
  Watchdog watchdog;
  EXPECT_EQ(First(), root + "/a.3.wav");
}

TEST_F(FreeName, numbersHaveNoUpperLimit) {
  Make(root + "/a.wav");
  for (int i = 1; i < 300; ++i) Make(root + "/a." + std::to_string(i) + ".wav");
  EXPECT_EQ(First(), root + "/a.300.wav");
}

TEST_F(FreeName, oneRunKeepsItsSeriesApart) {
  OutputNames names;
  const std::string sameStem = root + "/other/a.b.wav";
  const std::string otherExtension = root + "/src/a.aif";
  const auto next = [&](const std::string& of) {
    const std::string path = names.Find(of, root.c_str(), "");
    Make(path);
    return path.substr(root.size() + 1);
  };
  EXPECT_EQ(next(source), "a.wav");
  EXPECT_EQ(next(source), "a.1.wav");
  EXPECT_EQ(next(sameStem), "a.2.wav");
  EXPECT_EQ(next(otherExtension), "a.aif");
  EXPECT_EQ(next(source), "a.3.wav");
  EXPECT_EQ(next(otherExtension), "a.1.aif");
  EXPECT_EQ(names.Find(source, root.c_str(), "_Gain"), root + "/a_Gain.wav");
}

TEST_F(FreeName, oneRunGivesTheNamesThatSingleSearchesGive) {
  OutputNames names;
  for (const int taken : {0, 3, 4}) Make(root + "/a." + std::to_string(taken) + ".wav");
  Make(root + "/a.wav");
  for (int i = 0; i < 8; ++i) {
    const std::string expected = First();
    ASSERT_EQ(names.Find(source, root.c_str(), ""), expected);
    Make(expected);
  }
  EXPECT_TRUE(std::filesystem::exists(root + "/a.10.wav"));
  EXPECT_FALSE(std::filesystem::exists(root + "/a.11.wav"));
}

TEST_F(FreeName, secondRunMakesANewSeriesAndOverwritesNothing) {
  for (int run = 0; run < 2; ++run) {
    OutputNames names;
    for (int i = 0; i < 3; ++i) {
      const std::string path = names.Find(source, root.c_str(), "");
      ASSERT_FALSE(std::filesystem::exists(path));
      Make(path);
    }
  }
  EXPECT_TRUE(std::filesystem::exists(root + "/a.5.wav"));
}

TEST_F(FreeName, oneRunFindsAsManyAsItNeeds) {
  constexpr int kFiles = 1500;
  OutputNames names;
  for (int i = 0; i < kFiles; ++i) Make(names.Find(source, root.c_str(), "_XFade"));
  EXPECT_TRUE(std::filesystem::exists(root + "/a_XFade." + std::to_string(kFiles - 1) + ".wav"));
}

}  // namespace
}  // namespace velmora::test
