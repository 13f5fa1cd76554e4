// The order of the search, step by step, with twins and with files that contradict the ADL.

#include "Media/MediaSearch.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::media {
namespace {

using test::TemporaryFolder;

struct TestWave {
  std::string reference{};
  std::uint32_t time = 0;
  std::size_t frames = 10;
  std::uint32_t sampleRate = 48000;
  std::int32_t content = 0;  ///< tells files apart
  bool bext = true;
};

std::string Wave(const TestWave& wave) {
  test::WaveBytes bytes;
  bytes.Format({.sampleRate = wave.sampleRate});
  if (wave.bext) bytes.Bext({.reference = wave.reference, .timeLow = wave.time});
  std::vector<std::int32_t> samples(wave.frames, 7);
  if (!samples.empty()) samples.back() = wave.content;
  return bytes.Data(test::PcmBytes(16, samples)).Bytes();
}

/// A project's folder "p", and media folders beside it.
class MediaSearchTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directory(folder_.Path("p")); }

  void Put(const std::string& name, const TestWave& wave = {}) { folder_.Write(name, Wave(wave)); }
  std::string Path(const std::string& name) const { return folder_.Path(name); }

  static Wanted Quoted(const std::string& location) {
    Wanted wanted;
    wanted.rawLocation = '"' + location + '"';
    wanted.location = location;
    return wanted;
  }

  Located Find(const Wanted& wanted, const std::vector<std::string>& mediaFolders = {}) {
    FolderListings listings;
    std::vector<std::string> folders;
    for (const std::string& name : mediaFolders) folders.push_back(Path(name));
    return MediaSearch(listings, Path("p"), folders).Find(wanted);
  }
  Located Find(const std::string& location, const std::vector<std::string>& mediaFolders = {}) {
    return Find(Quoted(location), mediaFolders);
  }

  /// "name m/b/x.wav", "ambiguous m/a.wav m/b.wav", "missing".
  std::string Told(const Located& located) const {
    const auto shortened = [this](const std::string& path) {
      return path.substr(std::min(path.size(), folder_.Path().size() + 1));
    };
    if (located.result == SearchResult::Missing) return "missing";
    std::string text = located.result == SearchResult::Found
                           ? std::string(NameOf(located.found)) + ' ' + shortened(located.path)
                           : "ambiguous";
    for (const std::string& path : located.candidates) text += ' ' + shortened(path);
    if (located.hiddenByForm) text += " hidden by form";
    if (located.hiddenByEncoding) text += " hidden by encoding";
    return text;
  }

  TemporaryFolder folder_;
};

TEST_F(MediaSearchTest, theSystemsOwnSearchComesFirst) {
  Put("p/Audio/x.wav");
  Put("p/x.wav", {.content = 1});
  EXPECT_EQ(Told(Find("URL:file://localhost/Vol/Audio/x.wav")), "location p/x.wav");
}

TEST_F(MediaSearchTest, aFileWithoutRightsIsWhereTheSystemLooks) {
  Put("p/x.wav");
  std::filesystem::permissions(folder_.Path(), std::filesystem::perms(0755));
  std::filesystem::permissions(Path("p/x.wav"), std::filesystem::perms::none);
  const test::OrdinaryRights rights;
  EXPECT_EQ(Told(Find("URL:file://localhost/Vol/x.wav")), "location p/x.wav");
  // Its place alone may be hidden as well.
  EXPECT_EQ(Told(Find("URL:file://localhost/V%6Fl/%78.wav")), "beside p/x.wav hidden by form");
}

TEST_F(MediaSearchTest, thenThePathAsItIsWritten) {
  Put("else where/x.wav");
  Put("p/Deep/x.wav", {.content = 1});
  std::string escaped = Path("else where/x.wav");
  escaped.replace(escaped.find(' '), 1, "%20");
  EXPECT_EQ(Told(Find("URL:file://localhost" + escaped)), "path else where/x.wav");
}

TEST_F(MediaSearchTest, aRelativePathBeginsAtTheProject) {
  Put("p/Audio/x.wav");
  Put("p/Other/x.wav", {.content = 1});
  EXPECT_EQ(Told(Find("Audio/x.wav")), "path p/Audio/x.wav hidden by form");
}

struct FormCase {
  const char* name;
  const char* location;
  const char* file;
  const char* expected;
};

class LocationForms : public MediaSearchTest, public testing::WithParamInterface<FormCase> {};

TEST_P(LocationForms, findTheFile) {
  Put(GetParam().file);
  EXPECT_EQ(Told(Find(GetParam().location)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, LocationForms,
    testing::Values(FormCase{"bareName", "x.wav", "p/x.wav", "beside p/x.wav hidden by form"},
                    FormCase{"bareNameDeeper", "x.wav", "p/a/x.wav", "name p/a/x.wav"},
                    FormCase{"escapes", "url:file:///C:/My%20Proj/a%20b.wav", "p/a b.wav",
                             "beside p/a b.wav hidden by form"},
                    FormCase{"escapedFolder", "URL:file://localhost/V/My%20Audio/x.wav",
                             "p/My Audio/x.wav", "name p/My Audio/x.wav hidden by form"},
                    FormCase{"aPercentInTheName", "URL:file://localhost/V/100%20.wav",
                             "p/deep/100%20.wav", "name p/deep/100%20.wav"},
                    FormCase{"backslashes", R"(URL:file://localhost/D:\proj\audio\x.wav)",
                             "p/x.wav", "beside p/x.wav hidden by form"},
                    FormCase{"backslashesAlone", R"(D:\proj\audio\x.wav)", "p/audio/x.wav",
                             "name p/audio/x.wav hidden by form"},
                    FormCase{"driveLetterIsNoHost", "file://D:/audio/x.wav", "p/deep/x.wav",
                             "name p/deep/x.wav"},
                    FormCase{"guidAndRunsOfBlanks", "URL:file:///C:/a/Take  1 {4F-00}.wav",
                             "p/b/Take  1 {4F-00}.wav", "name p/b/Take  1 {4F-00}.wav"},
                    FormCase{"otherCase", "URL:file://localhost/V/TAKE.WAV", "p/take.wav",
                             "name-case p/take.wav"},
                    FormCase{"otherCaseBeyondAscii", "URL:file://localhost/V/\u00C4rger \u0416.wav",
                             "p/\u00E4rger \u0436.wav", "name-case p/\u00E4rger \u0436.wav"},
                    FormCase{"decomposedAccents", "URL:file://localhost/V/caf\u00E9.wav",
                             "p/cafe\u0301.wav", "name-case p/cafe\u0301.wav"},
                    FormCase{"anotherExtension", "URL:file://localhost/V/Take.bwf", "p/take.WAV",
                             "stem p/take.WAV"},
                    FormCase{"noExtension", "URL:file://localhost/V/Take 1.L", "p/Take 1.L.wav",
                             "stem p/Take 1.L.wav"},
                    FormCase{"utf8InAProjectReadAsShiftJis", "URL:file://localhost/V/\u00E4 x.wav",
                             "p/\u00E4 x.wav", "beside p/\u00E4 x.wav hidden by encoding"}),
    [](const testing::TestParamInfo<FormCase>& row) { return row.param.name; });

TEST_F(MediaSearchTest, rulesComeBeforeFolders) {
  Put("m1/X.WAV");
  Put("m2/x.wav", {.content = 1});
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m1", "m2"})), "name m2/x.wav");
}

TEST_F(MediaSearchTest, foldersAreTakenInTheirOrder) {
  Put("m2/x.wav");
  Put("m1/deep/deeper/x.wav", {.content = 1});
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m2", "m1"})), "name m2/x.wav");
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m1", "m2"})), "name m1/deep/deeper/x.wav");
  Put("p/a/b/x.wav", {.content = 2});
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m1", "m2"})), "name p/a/b/x.wav");
}

TEST_F(MediaSearchTest, severalDifferentFilesEndTheSearch) {
  Put("m1/a/x.wav", {.content = 1});
  Put("m1/b/x.wav", {.content = 2});
  Put("m2/x.wav", {.content = 3});
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m1", "m2"})), "ambiguous m1/a/x.wav m1/b/x.wav");
}

TEST_F(MediaSearchTest, equalContentsCountAsOneFile) {
  Put("m1/b/x.wav");
  Put("m1/a/x.wav");
  Put("m1/a/b/x.wav");
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m1"})), "name m1/a/x.wav");
}

TEST_F(MediaSearchTest, ofCopiesTheOneThatTheTextLeadsTo) {
  Put("p/Old/a b.wav");
  Put("p/Audio Files/a b.wav");
  EXPECT_EQ(Told(Find("URL:file:///C:/Audio%20Files/a%20b.wav")),
            "name p/Audio Files/a b.wav hidden by form");
}

Wanted With(Wanted wanted, const std::string& reference, std::optional<std::int64_t> length,
            std::optional<std::int64_t> start = std::nullopt) {
  wanted.reference = reference;
  wanted.length = length;
  wanted.start = start;
  return wanted;
}

TEST_F(MediaSearchTest, referenceOrLengthDecideBetweenNames) {
  Put("m/a/x.wav", {.reference = "REF1", .frames = 10, .content = 1});
  Put("m/b/x.wav", {.reference = "REF2", .frames = 20, .content = 2});
  Put("m/c/x.wav", {.reference = "REF3", .frames = 30, .content = 3});
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Told(Find(With(x, "REF2", {}), {"m"})), "name m/b/x.wav");
  EXPECT_EQ(Told(Find(With(x, "", 30), {"m"})), "name m/c/x.wav");
  EXPECT_EQ(Told(Find(With(x, "REF2", 20), {"m"})), "name m/b/x.wav");
  // One fits by its reference, another by its length: both stay.
  EXPECT_EQ(Told(Find(With(x, "REF1", 20), {"m"})), "ambiguous m/a/x.wav m/b/x.wav");
  // None fits: all stay.
  EXPECT_EQ(Told(Find(With(x, "REF9", 99), {"m"})), "ambiguous m/a/x.wav m/b/x.wav m/c/x.wav");
}

TEST_F(MediaSearchTest, aLoneFileThatContradictsTwiceIsSkipped) {
  Put("m1/x.wav", {.reference = "REF1", .frames = 10});
  Put("m2/x.wav", {.reference = "REF2", .frames = 20});
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Told(Find(With(x, "REF2", 20), {"m1", "m2"})), "name m2/x.wav");
  EXPECT_EQ(Told(Find(With(x, "REF9", 99), {"m1", "m2"})), "missing");
  EXPECT_EQ(Told(Find(With(x, "REF9", 10), {"m1", "m2"})), "name m1/x.wav") << "the length fits";
  EXPECT_EQ(Told(Find(With(x, "REF1", 99), {"m1", "m2"})), "name m1/x.wav") << "the reference fits";
  EXPECT_EQ(Told(Find(With(x, "REF9", {}), {"m1", "m2"})), "name m1/x.wav") << "no length is told";
}

TEST_F(MediaSearchTest, aMissingOrBrokenReferenceContradictsNothing) {
  for (const char* const broken : {"", "_", "   ", "\x01\x02", "\xFF\xFF\xFF", "00000000"}) {
    Put("m/x.wav", {.reference = "REF1", .frames = 10});
    const Wanted x = Quoted("URL:file:///V/x.wav");
    EXPECT_EQ(Told(Find(With(x, broken, 99), {"m"})), "name m/x.wav") << broken;
    Put("m/x.wav", {.reference = broken, .frames = 10});
    EXPECT_EQ(Told(Find(With(x, "REF1", 99), {"m"})), "name m/x.wav") << broken;
  }
}

TEST_F(MediaSearchTest, referencesLeadToRenamedFiles) {
  Put("m/renamed.wav", {.reference = "REF1", .frames = 10});
  Put("m/other.wav", {.reference = "REF2", .frames = 10});
  EXPECT_EQ(Told(Find(With(Quoted("URL:file:///V/x.wav"), "REF1", {}), {"m"})),
            "reference m/renamed.wav");
  EXPECT_EQ(Told(Find(With(Quoted("URL:file:///V/x.wav"), "REF", {}), {"m"})), "missing");
}

TEST_F(MediaSearchTest, referencesOfThirtyTwoCharactersAreCutAsInTheFile) {
  const std::string reference = "ABCDEFGHIJKLMNOPQRSTUVWXYZ012345";
  Put("m/renamed.wav", {.reference = reference});
  EXPECT_EQ(Told(Find(With(Quoted("URL:file:///V/x.wav"), reference + "6789", {}), {"m"})),
            "reference m/renamed.wav");
}

TEST_F(MediaSearchTest, twoFilesWithOneReferenceAreAmbiguous) {
  Put("m/one.wav", {.reference = "REF1", .content = 1});
  Put("m/two.wav", {.reference = "REF1", .content = 2});
  EXPECT_EQ(Told(Find(With(Quoted("URL:file:///V/x.wav"), "REF1", 10), {"m"})),
            "ambiguous m/one.wav m/two.wav");
}

TEST_F(MediaSearchTest, lengthCountsOnlyTogetherWithTheTimeReference) {
  Put("m/renamed.wav", {.time = 5000, .frames = 10});
  Put("m/late.wav", {.time = 6000, .frames = 10});
  Put("m/plain.wav", {.frames = 10, .bext = false});
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Told(Find(With(x, "", 10, 5000), {"m"})), "length m/renamed.wav");
  EXPECT_EQ(Told(Find(With(x, "", 11, 5000), {"m"})), "missing");
  EXPECT_EQ(Told(Find(With(x, "", 10, 5001), {"m"})), "missing");
  EXPECT_EQ(Told(Find(With(x, "", 10), {"m"})), "missing");
}

TEST_F(MediaSearchTest, lengthAndTimeMayBeCountedAtTheProjectsRate) {
  Put("m/renamed.wav", {.time = 44100, .frames = 441, .sampleRate = 44100});
  const Wanted x = Quoted("URL:file:///V/x.wav");  // a project at 48 kHz
  EXPECT_EQ(Told(Find(With(x, "", 480, 48000), {"m"})), "length m/renamed.wav");
  EXPECT_EQ(Told(Find(With(x, "", 441, 44100), {"m"})), "length m/renamed.wav");
  EXPECT_EQ(Told(Find(With(x, "", 481, 48000), {"m"})), "missing");
}

TEST_F(MediaSearchTest, byTheLastThreeRulesOnlySoundCounts) {
  folder_.Write("m/x.txt", "no sound");
  Put("m/a/x.aif");
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m"})), "stem m/a/x.aif");
  folder_.Write("m/b/x.wav", "no sound either, but its name is told");
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m"})), "name m/b/x.wav");
}

/// Folders "m/a" and "m/closed", of which the second may not be read, nor what a link leads to.
class ClosedFolders : public MediaSearchTest {
 protected:
  void SetUp() override {
    MediaSearchTest::SetUp();
    std::filesystem::permissions(Path(""), std::filesystem::perms(0755));
    Put("m/a/x.wav", {.reference = "REF1", .time = 5000});
    Put("m/closed/x.wav", {.reference = "REF2", .content = 1});
    Close("m/closed");
  }
  void TearDown() override {
    for (const std::string& path : closed_) {
      std::filesystem::permissions(path, std::filesystem::perms(0755));
    }
  }
  void Close(const std::string& name) {
    std::filesystem::create_directories(Path(name));
    closed_.push_back(Path(name));
    std::filesystem::permissions(closed_.back(), std::filesystem::perms::none);
  }

  /// What was found, and what was not read on the way.
  std::string Seen(const Wanted& wanted, const std::vector<std::string>& mediaFolders) {
    const test::OrdinaryRights rights;
    const Located located = Find(wanted, mediaFolders);
    std::string text = Told(located);
    for (const UnreadFolder& unread : located.unread) {
      text += " not " + unread.path.substr(folder_.Path().size() + 1) + ": " + unread.reason;
    }
    return text;
  }

 private:
  std::vector<std::string> closed_;
};

TEST_F(ClosedFolders, aNameAloneIsNotCalledUnique) {
  const std::string closed = " not m/closed: Permission denied";
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Seen(x, {"m"}), "ambiguous m/a/x.wav" + closed);
  EXPECT_EQ(Seen(Quoted("URL:file:///V/X.WAV"), {"m"}), "ambiguous m/a/x.wav" + closed);
  EXPECT_EQ(Seen(Quoted("URL:file:///V/x.aif"), {"m"}), "ambiguous m/a/x.wav" + closed);
  EXPECT_EQ(Seen(With(x, "", 10), {"m"}), "ambiguous m/a/x.wav" + closed) << "lengths are alike";
  EXPECT_EQ(Seen(With(Quoted("URL:file:///V/y.wav"), "", 10, 5000), {"m"}),
            "ambiguous m/a/x.wav" + closed)
      << "channels of one take have one length and time";
  EXPECT_EQ(Seen(Quoted("URL:file:///V/y.wav"), {"m"}), "missing" + closed);
}

TEST_F(ClosedFolders, whatIsNoGuessStays) {
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Seen(With(x, "REF1", 10), {"m"}), "name m/a/x.wav");
  EXPECT_EQ(Seen(With(Quoted("URL:file:///V/y.wav"), "REF1", {}), {"m"}), "reference m/a/x.wav");
  EXPECT_EQ(Seen(Quoted("URL:file://localhost" + Path("m/a/x.wav")), {"m"}), "path m/a/x.wav");
  Close("p/closed too");
  Put("p/z z.wav");
  EXPECT_EQ(Seen(Quoted("URL:file://localhost/V/z%20z.wav"), {"m"}),
            "beside p/z z.wav hidden by form");
  EXPECT_EQ(Seen(Quoted("URL:file://localhost/V/z z.wav"), {"m"}), "location p/z z.wav");
}

TEST_F(ClosedFolders, onlyWhatComesBeforeTheFindCounts) {
  const Wanted x = Quoted("URL:file:///V/x.wav");
  Put("n/x.wav");
  EXPECT_EQ(Seen(x, {"n", "m"}), "name n/x.wav");
  EXPECT_EQ(Seen(x, {"m", "n"}), "ambiguous m/a/x.wav not m/closed: Permission denied");
  EXPECT_EQ(Seen(Quoted("URL:file:///V/X.WAV"), {"n", "m"}),
            "ambiguous n/x.wav not m/closed: Permission denied")
      << "the name as it stands is looked for everywhere first";
  Put("n/deep/x.wav", {.content = 2});
  EXPECT_EQ(Seen(x, {"n", "m"}), "ambiguous n/x.wav n/deep/x.wav") << "both are there";
}

TEST_F(ClosedFolders, linksThatLeadIntoThemCountAndThoseThatLeadNowhereDoNot) {
  Put("n/x.wav");
  std::filesystem::create_symlink("nowhere", Path("n/dangling"));
  std::filesystem::create_symlink("circle", Path("n/circle"));
  EXPECT_EQ(Seen(Quoted("URL:file:///V/x.wav"), {"n"}), "name n/x.wav");
  std::filesystem::create_symlink(Path("m/closed/x.wav"), Path("n/link"));
  EXPECT_EQ(Seen(Quoted("URL:file:///V/x.wav"), {"n"}),
            "ambiguous n/x.wav not n/link: Permission denied");
}

TEST_F(ClosedFolders, thoseOfTheFileSystemDoNotCount) {
  Put("n/x.wav");
  for (const char* const name : {"n/lost+found", "n/.Trash-1000", "n/System Volume Information"}) {
    Close(name);
  }
  EXPECT_EQ(Seen(Quoted("URL:file:///V/x.wav"), {"n"}), "name n/x.wav");
  EXPECT_EQ(Seen(Quoted("URL:file:///V/x.wav"), {"n/lost+found", "n"}),
            "ambiguous n/x.wav not n/lost+found: Permission denied")
      << "but where one is named it is meant";
}

TEST_F(MediaSearchTest, namesThatAreNoText) {
  Put("m/\x83\x65\x83\x58\x83\x67.wav");
  Wanted wanted = Quoted("URL:file:///V/\u30C6\u30B9\u30C8.wav");
  wanted.rawLocation = "\"URL:file:///V/\x83\x65\x83\x58\x83\x67.wav\"";
  EXPECT_EQ(Told(Find(wanted, {"m"})), "name m/\x83\x65\x83\x58\x83\x67.wav");
  EXPECT_EQ(Told(Find("URL:file:///V/%83%65%83%58%83%67.wav", {"m"})),
            "name m/\x83\x65\x83\x58\x83\x67.wav");
}

TEST_F(MediaSearchTest, loopsOfLinksFifosAndOtherThingsAreHarmless) {
  const test::Watchdog watchdog;
  Put("m/a/x.wav");
  std::filesystem::create_directory_symlink("..", Path("m/a/up"));
  std::filesystem::create_directory_symlink(Path("m"), Path("m/self"));
  std::filesystem::create_symlink("x.wav", Path("m/a/linked.wav"));
  std::filesystem::create_symlink("nowhere", Path("m/a/dangling.wav"));
  std::filesystem::create_directory_symlink("/proc", Path("m/kernel"));
  test::Fifo(folder_, "m/x.wav");
  test::Fifo(folder_, "m/X.wav");
  std::filesystem::create_symlink("/dev/zero", Path("m/zero.wav"));
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m"})), "name m/a/x.wav");
  EXPECT_EQ(Told(Find("URL:file:///V/linked.wav", {"m"})), "name m/a/linked.wav");
  EXPECT_EQ(Told(Find("URL:file:///V/zero.wav", {"m"})), "missing");
  EXPECT_EQ(Told(Find("URL:file:///V/dangling.wav", {"m"})), "missing");
  EXPECT_EQ(Told(Find("URL:file:///V/status", {"m"})), "missing");
  EXPECT_EQ(Told(Find(With(Quoted("URL:file:///V/y.wav"), "REF1", 3, 4), {"m"})), "missing");
}

TEST_F(MediaSearchTest, foldersBehindLinksAreSearched) {
  Put("far/x.wav");
  std::filesystem::create_directory(Path("m"));
  std::filesystem::create_directory_symlink(Path("far"), Path("m/link"));
  EXPECT_EQ(Told(Find("URL:file:///V/x.wav", {"m"})), "name m/link/x.wav");
}

TEST_F(ClosedFolders, oneThatIsToBeSearchedAndIsGoneCounts) {
  EXPECT_EQ(Seen(Quoted("URL:file:///V/y.wav"), {"none"}),
            "missing not none: No such file or directory");
}

TEST_F(MediaSearchTest, manyTakesOfOneName) {
  constexpr int kTakes = 300;
  for (int i = 0; i < kTakes; ++i) {
    Put("m/" + std::to_string(i) + "/x.wav",
        {.reference = "REF" + std::to_string(i + 1), .frames = 10, .content = i});
  }
  FolderListings listings;
  MediaSearch search(listings, Path("p"), {Path("m")});
  const Wanted x = Quoted("URL:file:///V/x.wav");
  for (int i = 0; i < kTakes; ++i) {
    EXPECT_EQ(Told(search.Find(With(x, "REF" + std::to_string(i + 1), 77))),
              "name m/" + std::to_string(i) + "/x.wav");
  }
  const Located several = search.Find(With(x, "NONE", 77));
  EXPECT_EQ(several.result, SearchResult::Ambiguous);
  EXPECT_EQ(several.candidates.size(), 20U) << "the first of the different files";
}

TEST_F(MediaSearchTest, locationsThatSayNothing) {
  Put("p/x.wav");
  for (const char* const nothing : {"", "_", "URL:", "URL:file://localhost/", "/", "..", "a/.."}) {
    EXPECT_EQ(Told(Find(nothing)), "missing") << nothing;
  }
  EXPECT_EQ(Told(Find(Wanted())), "missing");
}

TEST_F(MediaSearchTest, endlessLocationsTakeNoTime) {
  const test::Watchdog watchdog;
  EXPECT_EQ(Told(Find(std::string(1000000, '/') + "x.wav")), "missing");
  std::string folders;
  for (int i = 0; i < 300000; ++i) folders += "a%2F";
  EXPECT_EQ(Told(Find("URL:file://localhost/" + folders + "x.wav")), "missing");
  Put("p/deep/x.wav");
  EXPECT_EQ(Told(Find("URL:file://localhost/" + folders + "x.wav")), "name p/deep/x.wav");
}

TEST_F(MediaSearchTest, largeCopiesAreOneFileAndLargeTakesAreNot) {
  constexpr std::size_t kFrames = 400000;
  Put("m/a/x.wav", {.frames = kFrames, .content = 1});
  Put("m/b/x.wav", {.frames = kFrames, .content = 1});
  FolderListings listings;
  MediaSearch search(listings, Path("p"), {Path("m")});
  const Wanted x = Quoted("URL:file:///V/x.wav");
  EXPECT_EQ(Told(search.Find(x)), "name m/a/x.wav");
  EXPECT_EQ(Told(search.Find(x)), "name m/a/x.wav") << "from memory";
  // Other contents under the same names: what is known of the old ones does not count.
  std::filesystem::remove(Path("m/b/x.wav"));
  Put("m/b/x.wav", {.frames = kFrames, .content = 2});
  EXPECT_EQ(Told(Find(x, {"m"})), "ambiguous m/a/x.wav m/b/x.wav");
}

TEST_F(MediaSearchTest, withoutQuotationMarksTheSystemLosesTheEnds) {
  Put("p/x.wav");
  Wanted wanted = Quoted("URL:file://localhost/V/x.wav");
  wanted.rawLocation = wanted.location;
  EXPECT_EQ(Told(Find(wanted)), "beside p/x.wav hidden by form");
}

TEST_F(MediaSearchTest, aCancelledSearchEnds) {
  Put("m/x.wav");
  FolderListings listings;
  MediaSearch search(listings, Path("p"), {Path("m")}, [] { return true; });
  EXPECT_EQ(Told(search.Find(Quoted("URL:file:///V/x.wav"))), "missing");
  MediaSearch again(listings, Path("p"), {Path("m")});
  EXPECT_EQ(Told(again.Find(Quoted("URL:file:///V/x.wav"))), "name m/x.wav");
}

}  // namespace
}  // namespace velmora::media
