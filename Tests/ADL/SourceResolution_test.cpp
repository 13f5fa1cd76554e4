#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "LoadedProject.h"
#include "WaveBytes.h"

namespace velmora::test {
namespace {

/// A folder with audio in which a project is loaded.
class Session {
 public:
  void AddWave(const std::string& name) const { folder_.Write(name, SmallWave()); }
  void Remove(const std::string& name) const { std::filesystem::remove(folder_.Path(name)); }
  std::string Path(const std::string& name = "") const { return folder_.Path(name); }
  std::string Write(const std::string& name, std::string_view bytes) const {
    return folder_.Write(name, bytes);
  }

  /// Loads a project whose first source has this location, written as it is.
  Loading Load(const std::string& location, const char* searchFolder = nullptr) const {
    return Loading(
        folder_.Write("project.adl", WithSources("(Index) 1 (F) " + location + " _ start length")),
        searchFolder);
  }
  /// The path of the file found for it below the folder, `~` for none.
  std::string Found(const std::string& location) const {
    const Loading loading = Load(location);
    EXPECT_TRUE(loading.ok) << location;
    EXPECT_EQ(loading.standardError, "") << location;
    if (loading->sourceFiles.size() != 1) return "not one source";
    AES31BWF* const file = loading->sourceFiles.begin()->second.file;
    if (file == nullptr) return "~";
    const std::string path = file->GetPath();
    const std::string root = folder_.Path();
    return path.rfind(root, 0) == 0 ? path.substr(root.size()) : path;
  }

 private:
  TemporaryFolder folder_;
};

struct Location {
  std::string_view rule;
  const char* location;
  const char* found;  ///< below the folder, `~` for none
};

TEST(ResolveSources, locations) {
  Session session;
  session.AddWave("x.wav");
  session.AddWave("sub/y.wav");
  session.AddWave("sub/deep/z.wav");
  session.AddWave("a%20b.wav");
  session.AddWave("c d.wav");
  session.AddWave("no extension");
  session.AddWave("file:/w.wav");
  constexpr auto kRows = std::to_array<Location>({
      {"bareNameInTheFolder", "\"file://srv/Vol/Audio/x.wav\"", "/x.wav"},
      {"inASubfolderByATailThatNamesIt", "\"URL:file://srv/Vol/sub/y.wav\"", "/sub/y.wav"},
      {"notInASubfolderThatTheTailDoesNotName", "\"/Vol/Audio/y.wav\"", "~"},
      {"twoFoldersDeep", "\"Vol/sub/deep/z.wav\"", "/sub/deep/z.wav"},
      {"innermostFolderAloneIsNotEnough", "\"Vol/deep/z.wav\"", "~"},
      {"withoutASlash", "\"x.wav\"", "~"},
      {"onlySlashIsTheFirstByte", "\"/x.wav\"", "~"},
      {"slashAtTheFirstByteIsNeverUsed", "\"/sub/y.wav\"", "~"},
      {"secondSlashAfterTheFirstIsUsed", "\"//sub/y.wav\"", "/sub/y.wav"},
      {"empty", "\"\"", "~"},
      {"emptyWithAByteAfterIt", "\"\"x", "~"},
      {"schemeMeansNothing", "\"file:/w.wav\"", "~"},
      {"schemeMayNameAFolder", "\"x/file:/w.wav\"", "/file:/w.wav"},
      {"escapedBlankIsNotDecoded", "\"Vol/a%20b.wav\"", "/a%20b.wav"},
      {"escapeIsLookedForWithItsEscape", "\"Vol/c%20d.wav\"", "~"},
      {"blankInside", "\"Vol/c d.wav\"", "/c d.wav"},
      {"missingClosingQuoteLosesTheLastLetter", "Vol/x.wavy", "/x.wav"},
      {"firstByteIsDroppedWhateverItIs", "V/x.wav\"", "~"},
      {"otherQuotesServeAsWell", "'Vol/x.wav'", "/x.wav"},
      {"otherCaseIsAnotherName", "\"Vol/X.WAV\"", "~"},
      {"nameWithoutExtension", "\"Vol/no extension\"", "/no extension"},
      {"doubledSlash", "\"Vol//x.wav\"", "/x.wav"},
      {"endsInASlash", "\"Vol/x.wav/\"", "~"},
      {"missingEverywhere", "\"Vol/Audio/missing.wav\"", "~"},
  });
  for (const Location& row : kRows) {
    EXPECT_EQ(session.Found(row.location), row.found) << row.rule << ": " << row.location;
  }
}

TEST(ResolveSources, triesTheShortestTailFirst) {
  const Session session;
  const auto tails = std::to_array<std::string>(
      {"/x.wav", "/Audio/x.wav", "/Vol/Audio/x.wav", "/srv/Vol/Audio/x.wav"});
  for (const std::string& tail : tails) session.AddWave(tail.substr(1));
  for (const std::string& tail : tails) {
    EXPECT_EQ(session.Found("\"file://srv/Vol/Audio/x.wav\""), tail);
    session.Remove(tail.substr(1));
  }
  EXPECT_EQ(session.Found("\"file://srv/Vol/Audio/x.wav\""), "~");
}

TEST(ResolveSources, aTailThatLeadsToANameTooLongDoesNotEndTheSearch) {
  const Session session;
  session.AddWave("Audio/x.wav");
  std::filesystem::create_symlink(std::string(300, 'n'), session.Path("x.wav"));
  EXPECT_EQ(session.Found("\"file://srv/Vol/Audio/x.wav\""), "/Audio/x.wav");
}

TEST(ResolveSources, locationIsNeverUsedAsAPathByItself) {
  const Session elsewhere;
  elsewhere.AddWave("x.wav");
  const Session session;
  EXPECT_EQ(session.Found("\"" + elsewhere.Path("x.wav") + "\""), "~");
}

TEST(ResolveSources, looksBelowTheGivenSearchFolder) {
  const Session audio;
  audio.AddWave("x.wav");
  const Session session;
  const Loading loading = session.Load("\"Vol/x.wav\"", audio.Path().c_str());
  ASSERT_NE(loading->sourceFiles[1].file, nullptr);
  EXPECT_EQ(loading->sourceFiles[1].file->GetPath(), audio.Path("x.wav"));
}

TEST(ResolveSources, opensTheFileThatItFound) {
  const Session session;
  session.AddWave("x.wav");
  const Loading loading = session.Load("\"Vol/x.wav\"");
  AES31BWF* const file = loading->sourceFiles[1].file;
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(file->IsValid());
  EXPECT_EQ(file->GetFrames(), 3);
  EXPECT_EQ(file->GetChannels(), 1U);
  EXPECT_EQ(file->GetSampleRate(), 48000U);
  EXPECT_EQ(file->GetBitsPerSample(), 16U);
}

TEST(ResolveSources, fileThatIsNoWaveFileCountsAsFound) {
  const Session session;
  session.Write("x.wav", "no wave file");
  session.Write("empty.wav", "");
  for (const char* const location : {"\"Vol/x.wav\"", "\"Vol/empty.wav\""}) {
    const Loading loading = session.Load(location);
    ASSERT_NE(loading->sourceFiles[1].file, nullptr) << location;
    EXPECT_FALSE(loading->sourceFiles[1].file->IsValid()) << location;
  }
}

TEST(ResolveSources, onlyARegularFileCountsAsFound) {
  const Session session;
  session.AddWave("deeper/x.wav");
  const std::string location = "\"Vol/deeper/x.wav\"";
  EXPECT_EQ(session.Found(location), "/deeper/x.wav");
  std::filesystem::create_directory(session.Path("x.wav"));
  EXPECT_EQ(session.Found(location), "/deeper/x.wav") << "a folder ahead";
  session.Remove("x.wav");
  ASSERT_EQ(mkfifo(session.Path("x.wav").c_str(), 0600), 0);
  EXPECT_EQ(session.Found(location), "/deeper/x.wav") << "a FIFO ahead";
  session.Remove("x.wav");
  std::filesystem::create_symlink("/dev/zero", session.Path("x.wav"));
  EXPECT_EQ(session.Found(location), "/deeper/x.wav") << "a device ahead";
  session.Remove("x.wav");
  std::filesystem::create_symlink("deeper/x.wav", session.Path("x.wav"));
  EXPECT_EQ(session.Found(location), "/x.wav") << "a link to a regular file";
}

// The superuser reads everything, so the test gives that up while it loads, where it is allowed to.
TEST(ResolveSources, unreadableFileDoesNotCountAsFound) {
  const Session session;
  session.AddWave("x.wav");
  session.AddWave("deeper/x.wav");
  const std::string adl =
      session.Write("project.adl", WithSources("(Index) 1 (F) \"V/deeper/x.wav\" _ s l"));
  ASSERT_EQ(chmod(session.Path("x.wav").c_str(), 0), 0);
  const uid_t user = geteuid();
  if (user == 0) static_cast<void>(seteuid(65534));
  std::FILE* const witness = std::fopen(session.Path("x.wav").c_str(), "rb");
  const bool readable = witness != nullptr;
  if (readable) std::fclose(witness);
  const Loading loading(adl);
  ASSERT_EQ(seteuid(user), 0);
  ASSERT_NE(loading->sourceFiles[1].file, nullptr);
  EXPECT_EQ(loading->sourceFiles[1].file->GetPath(),
            session.Path(readable ? "x.wav" : "deeper/x.wav"));
}

TEST(ResolveSources, shiftJisNamesAreLookedForInUtf8) {
  const Session session;
  session.AddWave("ソ表.wav");
  session.AddWave("日本/か\xE3\x82\x9A.wav");
  session.AddWave("ｱｲ.wav");
  session.AddWave("\xEF\xBF\xBD.wav");
  EXPECT_EQ(session.Found("\"Vol/\x83\x5C\x95\x5C.wav\""), "/ソ表.wav");
  EXPECT_EQ(session.Found("\"Vol/\x93\xFA\x96\x7B/\x82\xF5.wav\""), "/日本/か\xE3\x82\x9A.wav");
  EXPECT_EQ(session.Found("\"Vol/\xB1\xB2.wav\""), "/ｱｲ.wav");
  EXPECT_EQ(session.Found("\"Vol/\xFF.wav\""), "/\xEF\xBF\xBD.wav");
}

TEST(ResolveSources, utf8InTheFileIsReadAsShiftJis) {
  const Session session;
  session.AddWave("ä.wav");
  EXPECT_EQ(session.Found("\"Vol/ä.wav\""), "~");
}

TEST(ResolveSources, locationsHaveNoLimitOfLength) {
  const Session session;
  session.AddWave("x.wav");
  EXPECT_EQ(session.Found("\"" + std::string(100'000, 'v') + "/x.wav\""), "/x.wav");
  EXPECT_EQ(session.Found("\"Vol/" + std::string(100'000, 'v') + ".wav\""), "~");
  std::string deep = "\"";
  for (int i = 0; i < 2'000; ++i) deep += "folder/";
  EXPECT_EQ(session.Found(deep + "x.wav\""), "/x.wav");
  EXPECT_EQ(session.Found(deep + "missing.wav\""), "~");
}

TEST(ResolveSources, sourceWithoutALocationHasNoFile) {
  const Session session;
  session.AddWave("x.wav");
  const Loading loading(session.Write("project.adl", WithSources("(Index) 1 (T) a b c d e")));
  EXPECT_TRUE(loading.ok);
  EXPECT_EQ(loading->sourceFiles[1].file, nullptr);
}

TEST(ResolveSources, everySourceHasAFileOfItsOwn) {
  const Session session;
  session.AddWave("x.wav");
  const Loading loading(session.Write(
      "project.adl",
      WithSources("(Index) 1 (F) \"V/x.wav\" _ s l (Index) 2 (F) \"V/x.wav\" _ s l")));
  ASSERT_NE(loading->sourceFiles[1].file, nullptr);
  ASSERT_NE(loading->sourceFiles[2].file, nullptr);
  EXPECT_NE(loading->sourceFiles[1].file, loading->sourceFiles[2].file);
}

TEST(ResolveSources, runAgainFindsWhatIsThereNow) {
  const Session session;
  const Loading loading = session.Load("\"Vol/x.wav\"");
  EXPECT_EQ(loading->sourceFiles[1].file, nullptr);
  session.AddWave("x.wav");
  loading->ResolveSources();
  ASSERT_NE(loading->sourceFiles[1].file, nullptr);
  session.Remove("x.wav");
  loading->ResolveSources();
  EXPECT_EQ(loading->sourceFiles[1].file, nullptr);
}

TEST(ResolveSources, folderThatIsAFileNameFindsNothing) {
  const Session session;
  session.AddWave("x.wav");
  session.Write("project.adl", WithSources("(Index) 1 (F) \"V/x.wav\" _ s l"));
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(session.Path());
  const Loading loading("project.adl");
  std::filesystem::current_path(before);
  EXPECT_TRUE(loading.ok);
  EXPECT_EQ(loading->sourceFiles[1].file, nullptr);
}

}  // namespace
}  // namespace velmora::test
