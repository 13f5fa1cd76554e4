#include "Field/Encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Field/FieldProject.h"
#include "Support/TemporaryFolder.h"

namespace velmora::field {
namespace {

using test::TemporaryFolder;

// The same two characters in each encoding, written by hand.
constexpr const char* kJapaneseUtf8 = "\xE3\x81\x82\xE8\xA1\xA8";  // HIRAGANA A, U+8868
constexpr const char* kJapaneseShiftJis = "\x82\xA0\x95\x5C";      // its second ends in a backslash
constexpr const char* kUmlautUtf8 = "\xC3\x84rger";                // "Ärger"
constexpr const char* kUmlautWindows = "\xC4rger";
constexpr const char* kChineseUtf8 = "\xE4\xB8\xAD\xE6\x96\x87";  // U+4E2D U+6587
constexpr const char* kChineseGbk = "\xD6\xD0\xCE\xC4";

std::string Adl(const std::string& location, const std::string& title = "t") {
  return "<ADL>\n<PROJECT>\n(PROJ_TITLE) \"" + title +
         "\"\n</PROJECT>\n<SOURCE_INDEX>\n(Index) 1 (F) \"" + location +
         "\" _ _ _\n</SOURCE_INDEX>\n<EVENT_LIST>\n</EVENT_LIST>\n</ADL>\n";
}

std::string EncodingOf(const std::string& adl, const std::string& path = "/nowhere/p.adl",
                       const std::string& given = "") {
  return ReadProject(adl, path, {.trust = Trust::Marks, .encoding = given})->encoding;
}

TEST(TextDecoder, eachEncoding) {
  EXPECT_EQ(TextDecoder("Shift-JIS").ToUtf8(kJapaneseShiftJis), kJapaneseUtf8);
  EXPECT_EQ(TextDecoder("Windows-1252").ToUtf8(kUmlautWindows), kUmlautUtf8);
  EXPECT_EQ(TextDecoder("GBK").ToUtf8(kChineseGbk), kChineseUtf8);
  EXPECT_EQ(TextDecoder("UTF-8").ToUtf8(kChineseUtf8), kChineseUtf8);
  EXPECT_EQ(TextDecoder("ISO-8859-1").ToUtf8(kUmlautWindows), kUmlautUtf8);
  EXPECT_EQ(TextDecoder("UTF-16LE").ToUtf8(std::string_view("a\0\xC4\0", 4)), "a\xC3\x84");
}

TEST(TextDecoder, whatCannotBeDecodedIsReplacedByteByByte) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(TextDecoder("Windows-1252").ToUtf8("a\x81\x62"), "a" + replacement + "b");
  EXPECT_EQ(TextDecoder("GBK").ToUtf8("a\xFF\xFFz"), "a" + replacement + replacement + "z");
  EXPECT_EQ(TextDecoder("GBK").ToUtf8("a\xD6"), "a" + replacement) << "cut inside a character";
  EXPECT_EQ(TextDecoder("ASCII").ToUtf8("a\xC4"), "a" + replacement);
  EXPECT_EQ(TextDecoder("UTF-8").ToUtf8("a\xC4z"), "a" + replacement + "z");
  EXPECT_EQ(TextDecoder("no such encoding").ToUtf8("a\xC4"), "a" + replacement);
  EXPECT_EQ(TextDecoder("Shift-JIS").ToUtf8("a\xFFz"), "a" + replacement + "z");
}

TEST(TextDecoder, longTextsAndTextsWithNul) {
  std::string bytes;
  std::string utf8;
  for (int i = 0; i < 5000; ++i) {
    bytes += kChineseGbk;
    utf8 += kChineseUtf8;
  }
  EXPECT_EQ(TextDecoder("GBK").ToUtf8(bytes), utf8);
  EXPECT_EQ(TextDecoder("Shift-JIS").ToUtf8(std::string_view("\x82\xA0\0b", 4)),
            std::string_view("\xE3\x81\x82\0b", 5));
}

TEST(TextDecoder, backslashAndTildeStayInShiftJis) {
  EXPECT_EQ(TextDecoder("Shift-JIS").ToUtf8("C:\\~\x82\xA0"), "C:\\~\xE3\x81\x82");
}

TEST(TextDecoder, tellsWhetherATextDecodesWhole) {
  EXPECT_TRUE(TextDecoder("Shift-JIS").DecodesWhole(kJapaneseShiftJis));
  EXPECT_FALSE(TextDecoder("Shift-JIS").DecodesWhole("\xFF"));
  EXPECT_TRUE(TextDecoder("Windows-1252").DecodesWhole(kUmlautWindows));
  EXPECT_FALSE(TextDecoder("Windows-1252").DecodesWhole("\x81"));
  EXPECT_TRUE(TextDecoder("GBK").DecodesWhole(kChineseGbk));
  EXPECT_FALSE(TextDecoder("GBK").DecodesWhole("\xFF\xFF"));
}

TEST(IsKnownEncoding, namesThatIconvKnows) {
  for (const char* name : {"UTF-8", "Shift-JIS", "Windows-1252", "GBK", "GB18030", "MACINTOSH"}) {
    EXPECT_TRUE(IsKnownEncoding(name)) << name;
  }
  for (const char* name : {"", "no such encoding"}) EXPECT_FALSE(IsKnownEncoding(name)) << name;
}

TEST(IsUtf8, wholeTexts) {
  EXPECT_TRUE(IsUtf8("plain"));
  EXPECT_TRUE(IsUtf8(kChineseUtf8));
  EXPECT_TRUE(IsUtf8("\xEF\xBF\xBD")) << "U+FFFD itself is a character";
  EXPECT_FALSE(IsUtf8("\xC3"));
  EXPECT_FALSE(IsUtf8("\xED\xA0\x80")) << "half a pair of surrogates";
  EXPECT_FALSE(IsUtf8("\xC0\x80")) << "more bytes than needed";
}

TEST(DetectEncoding, byTheTextAlone) {
  EXPECT_EQ(EncodingOf(Adl("x.wav")), "ASCII");
  EXPECT_EQ(EncodingOf(Adl(std::string(kUmlautUtf8) + ".wav")), "UTF-8");
  EXPECT_EQ(EncodingOf("\xEF\xBB\xBF" + Adl("x.wav")), "UTF-8") << "a byte order mark";
  EXPECT_EQ(EncodingOf(Adl("x.wav", kJapaneseShiftJis)), "Shift-JIS");
  EXPECT_EQ(EncodingOf(Adl("x.wav", kChineseGbk)), "Shift-JIS")
      << "both decode whole, and no file decides";
  // 0xFF begins no character of Shift-JIS.
  EXPECT_EQ(EncodingOf(Adl("x.wav", "\xC4\xFF")), "Windows-1252");
  // 0x81 is none of Windows-1252, and 0xFE never a second byte of Shift-JIS.
  EXPECT_EQ(EncodingOf(Adl("x.wav", "\x81\xFE")), "GBK");
  EXPECT_EQ(EncodingOf(Adl("x.wav", "\x81 \xFF")), "Shift-JIS") << "none decodes it whole";
}

TEST(DetectEncoding, byTheFileThatIsThere) {
  struct Row {
    const char* rule;
    std::string file;
    std::string location;
    const char* encoding;
  };
  const std::string umlaut = std::string(kUmlautWindows) + ".wav";
  const std::string chinese = std::string(kChineseGbk) + ".wav";
  const std::string umlautFile = std::string(kUmlautUtf8) + ".wav";
  const std::string chineseFile = std::string(kChineseUtf8) + ".wav";
  const std::vector<Row> rows = {
      {"a bare name", umlautFile, umlaut, "Windows-1252"},
      {"its name alone", umlautFile, "URL:file://localhost/D:/proj/" + umlaut, "Windows-1252"},
      {"in a folder that the location names", "Audio/" + umlautFile,
       "URL:file://localhost/D:/proj/Audio/" + umlaut, "Windows-1252"},
      {"behind backslashes", "Audio/" + umlautFile, "D:\\proj\\Audio\\" + umlaut, "Windows-1252"},
      {"with escapes beside it", "a " + umlautFile, "URL:file:///D:/a%20" + umlaut, "Windows-1252"},
      {"GBK", chineseFile, "URL:file://localhost/" + chinese, "GBK"},
      {"a folder in GBK", std::string(kChineseUtf8) + "/x.wav",
       std::string("URL:file://localhost/") + kChineseGbk + "/x.wav", "GBK"},
      {"in a folder that it does not name", "Other/" + umlautFile, umlaut, "Shift-JIS"},
      {"a folder of that name", umlautFile + "/x", umlaut, "Shift-JIS"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const TemporaryFolder folder;
    folder.Write(row.file, "x");
    EXPECT_EQ(EncodingOf(Adl(row.location), folder.Path("p.adl")), row.encoding);
  }
}

TEST(DetectEncoding, byTheFileAtTheDecodedPath) {
  const TemporaryFolder folder;
  folder.Write("far/" + std::string(kUmlautUtf8) + ".wav", "x");
  const std::string location =
      "URL:file://localhost" + folder.Path("far/") + kUmlautWindows + ".wav";
  EXPECT_EQ(EncodingOf(Adl(location), "/nowhere/p.adl"), "Windows-1252");
}

TEST(DetectEncoding, aFileWithAnAsciiNameDecidesNothing) {
  const TemporaryFolder folder;
  folder.Write("x.wav", "x");
  EXPECT_EQ(EncodingOf(Adl("URL:file://localhost/x.wav", kUmlautWindows), folder.Path("p.adl")),
            "Shift-JIS");
}

TEST(ReadProject, textsInTheEncodingFound) {
  const auto project = ReadProject(Adl(kJapaneseShiftJis), "/nowhere/p.adl", {});
  ASSERT_EQ(project->sources.size(), 1U);
  EXPECT_EQ(project->sources[0].location, kJapaneseUtf8);
  EXPECT_EQ(project->TextOf({project->tree.values[0].text, true}), "t");
}

TEST(ReadProject, theEncodingThatIsGiven) {
  const std::string adl = Adl(kChineseGbk);
  const auto project = ReadProject(adl, "/nowhere/p.adl", {.trust = {}, .encoding = "gb18030"});
  EXPECT_EQ(project->encoding, "gb18030");
  EXPECT_EQ(project->sources[0].location, kChineseUtf8);
  EXPECT_EQ(EncodingOf(adl, "/nowhere/p.adl", "no such encoding"), "Shift-JIS");
}

TEST(ReadProject, anEncodingInWhichAsciiDoesNotStandForItself) {
  std::string utf16;
  for (const char c : Adl("x.wav")) {
    utf16 += c;
    utf16 += '\0';
  }
  const auto project = ReadProject(utf16, "/nowhere/p.adl", {.trust = {}, .encoding = "UTF-16LE"});
  EXPECT_TRUE(project->isAdl);
  EXPECT_EQ(project->encoding, "UTF-16LE");
  ASSERT_EQ(project->sources.size(), 1U);
  EXPECT_EQ(project->sources[0].location, "x.wav");
}

}  // namespace
}  // namespace velmora::field
