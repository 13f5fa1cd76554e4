// The glance comes to what a check comes to, and takes plain projects itself.

#include "Check/Glance.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "ADL/AES31Project.h"
#include "CheckFixture.h"
#include "DamagedText.h"

namespace velmora::check {
namespace {

std::string Words(bool fails, const Glance& glance) {
  return std::string(fails ? "fails " : "") + (glance.misplaces ? "misplaces " : "") +
         (glance.loses ? "loses" : "");
}

class GlanceTest : public CheckTest {
 protected:
  GlanceTest() { options_.atAGlance = true; }

  /// What the check comes to.
  std::string Full(const std::string& text) {
    const CheckedProject checked = Check(text);
    return Words(checked.Count(Severity::Fails) > 0,
                 {checked.Count(Severity::Misplaced) > 0, checked.Count(Severity::Lost) > 0});
  }

  /// What the glance comes to; none if it leaves the project to the check, or if the project does
  /// not load.
  std::optional<std::string> Quick(const std::string& text) {
    const std::string path = folder_.Write("p.adl", text);
    testing::internal::CaptureStderr();  // the system's own words about odd projects
    bool loads = false;
    const AES31Project project(path.c_str(), nullptr, &loads);
    testing::internal::GetCapturedStderr();
    const std::optional<Glance> glance = GlanceAt(path, options_).For(project.events.size());
    if (!loads || !glance) return std::nullopt;
    return Words(false, *glance);
  }
};

struct Row {
  const char* name;
  const char* from;
  const char* to;
  const char* found;  ///< null: left to the check
};

constexpr const char* kOdd = nullptr;
constexpr const char* kSecondEvent =
    "(Entry) 2\n(Cut) I 2 1 2 00.00.00:00/0000 01.00.01:00/0000 01.00.02:00/0000 R\n";

constexpr Row kRows[] = {
    {"clean", "<ADL>", "<ADL>", ""},
    {"returnsAndLineFeeds", "<VERSION>\n", "<VERSION>\r\n", ""},
    {"otherCase", "(Cut) I 2", "(CUT) I 2", ""},
    {"sectionInOtherCase", "<EVENT_LIST>", "<Event_List>", ""},
    {"textAfterTheEnd", "</ADL>\n", "</ADL>\nand more \xFF (Cut)", ""},
    {"endWithoutALineFeed", "</ADL>\n", "</ADL>", ""},
    {"unknownSection", "<EVENT_LIST>", "<MARKLIST>\n(Mark) 1 \"x\"\n</MARKLIST>\n<EVENT_LIST>", ""},
    {"unknownLabel", "(Entry) 2", "(Rem) NAME \"a b\" (Colour) 7\n(Entry) 2", ""},
    {"silence", "(Entry) 2", "(Entry) 3 (Silence) 1 a b c\n(Entry) 2", ""},
    {"numbersThatFall", "(Entry) 1", "(Entry) 7", ""},
    {"bytesBeyondAsciiInAName", "\"one\"", "\"\xC3\xA9\"", ""},
    {"bytesBeyondAsciiInALocation", "a/two.wav", "a/tw\xC3\xB6.wav", "loses"},

    // What may be read in several ways.
    {"byteOrderMark", "<ADL>", "\xEF\xBB\xBF<ADL>", kOdd},
    {"blankBeforeTheTag", "<ADL>", " <ADL>", kOdd},
    {"textGluedToTheTag", "<ADL>", "<ADL>x", kOdd},
    {"noTag", "<ADL>\n", "", kOdd},
    {"noEnd", "</ADL>\n", "", kOdd},
    {"sectionNotClosed", "</EVENT_LIST>\n", "", kOdd},
    {"closedByAnother", "</EVENT_LIST>", "</EVENT_LISTS>", kOdd},
    {"comment", "<EVENT_LIST>", "<EVENT_LIST> /* x */", kOdd},
    {"commentAmongValues", "(Cut) I 2 1 2", "(Cut) I 2 /* x */ 1 2", kOdd},
    {"commentOutsideSections", "<EVENT_LIST>", "/* x */ <EVENT_LIST>", kOdd},
    {"strayWord", "<EVENT_LIST>", "<EVENT_LIST> x", kOdd},
    {"references", "<EVENT_LIST>", "<REF_LIST> <REF> </REF> </REF_LIST> <EVENT_LIST>", kOdd},
    {"sectionInside", "<EVENT_LIST>", "<EVENT_LIST> <X> </X>", kOdd},
    {"countedLabel", "(ADL_ID) \"1234\"", "(ADL_ID)5 1234", kOdd},
    {"labelOfTwoWords", "(ADL_ID)", "(ADL ID)", kOdd},
    {"gluedValue", "(Entry) 2", "(Entry)2", kOdd},
    {"valueWithABracket", "(ADL_ID) \"1234\"", "(ADL_ID) a<b", kOdd},
    {"valueWithAParenthesis", "(ADL_ID) \"1234\"", "(ADL_ID) a(2).wav", ""},
    {"gluedToAQuotationMark", "(ADL_ID) \"1234\"", "(ADL_ID) \"1234\"x", kOdd},
    {"escape", "(ADL_ID) \"1234\"", "(ADL_ID) \"12\x1B\"34\"", kOdd},
    {"quotationNotClosed", "(ADL_ID) \"1234\"", "(ADL_ID) \"1234", kOdd},
    {"bytesBeyondAsciiOutsideQuotes", "(ADL_ID) \"1234\"", "(ADL_ID) \xC3\xA9", kOdd},
    {"secondEventList", "</EVENT_LIST>", "</EVENT_LIST> <EVENT_LIST> </EVENT_LIST>", kOdd},
    {"secondSourceIndex", "<SOURCE_INDEX>", "<SOURCE_INDEX> </SOURCE_INDEX> <SOURCE_INDEX>", kOdd},
    {"labelBeforeTheFirstEntry", "<EVENT_LIST>", "<EVENT_LIST> (Rem) x", kOdd},
    {"cutBeforeTheFirstEntry", "(Entry) 1\n", "", kOdd},
    {"secondCut", "(Entry) 2\n", "", kOdd},
    {"alternative", "(Entry) 2", "(Alt) I 1 1 x (Entry) 2", kOdd},
    {"twoFades", "(Gain)", "(Infade) 00.00.00;05/0000 LIN _ _ _ (Gain)", kOdd},
    {"twoGains", "(Gain)", "(Gain) 1 -6.00 (Gain)", kOdd},
    {"twoLocations", "(Index) 2", "(F) \"x\" _ _ _ (Index) 2", kOdd},
    {"locationBeforeTheFirstIndex", "(Index) 1", "(F) \"x\" _ _ _ (Index) 1", kOdd},
    {"indexWithoutALocation", "(Index) 2", "(Index) 3 (Index) 2", kOdd},
    {"indexThatIsNoNumber", "(Index) 2", "(Index) two", kOdd},
    {"indexTwice", "(Index) 2", "(Index) 1", kOdd},
    {"entryThatIsNoNumber", "(Entry) 2", "(Entry) two", kOdd},
    {"entryTwice", "(Entry) 2", "(Entry) 1", kOdd},
    {"headerOfTwoWords", "S48000", "48 kHz", kOdd},

    // What is decided, judge by judge.
    {"noSuchSource", "I 2 1 2", "I 3 1 2", "loses"},
    {"nameInPlaceOfAnIndex", "I 2 1 2", "I two.wav 1 2", kOdd},
    {"noIndexGiven", "I 2 1 2", "I _ 1 2", kOdd},
    {"noSuchFile", "a/two.wav", "a/gone.wav", "loses"},
    {"noSuchFileAndOff", "a/one.wav", "a/gone.wav", "loses"},
    {"unusedSourceWithoutAFile", "(Index) 2", "(Index) 9 (F) \"/x.wav\" _ _ _ (Index) 2", ""},
    {"locationWithoutQuotes", "\"URL:file://localhost/a/two.wav\"", "xURL:file:/a/two.wavx", ""},
    {"locationOfTwoWords", "\"URL:file://localhost/a/two.wav\"", "URL:/a b/two.wav", kOdd},
    {"startNotGiven", "two.wav\" _ 00.00.00:00/0000", "two.wav\" _ _", "misplaces "},
    {"startNotGivenNorFound", "one.wav\" _ 00.00.10:00/0000", "one.wav\" _ _", "misplaces loses"},
    {"startNoCutLiesInside", "_ 00.00.00:00/0000 00", "_ 23.00.00:00/0000 00", "misplaces "},
    {"startThatIsNoTime", "_ 00.00.00:00/0000 00", "_ x 00", kOdd},
    {"startAtAnotherRate", "_ 00.00.00:00/0000 00", "_ 00.00.00:00|0000 00", kOdd},
    {"beginsBeforeItsFile", "00.00.10:10/0000", "00.00.09:24/0000", "loses"},
    {"endsAfterItsFile", "01.00.02:00/0000 R", "01.00.03:01/0000 R", "loses"},
    {"offAndOutsideItsFile", "01.00.02:00/0000 R", "01.00.03:01/0000 D", "misplaces "},
    {"stereo", "I 2 1 2", "I 2 1~2 1~2", "loses"},
    {"stereoWithADash", "I 2 1 2", "I 2 1-2 3-4", "loses"},
    {"runOfOne", "I 2 1 2", "I 2 1~1 2~2", ""},
    {"channelNotGiven", "I 2 1 2", "I 2 _ 2", ""},
    {"trackNotGiven", "I 2 1 2", "I 2 1 _", kOdd},
    {"channelThatTheFileLacks", "I 2 1 2", "I 2 2 2", "loses"},
    {"trackBeyond16Bits", "I 2 1 2", "I 2 1 40000", "loses"},
    {"disabled", "01.00.02:00/0000 R", "01.00.02:00/0000 D", "misplaces "},
    {"mutedInQuotes", "01.00.02:00/0000 R", "01.00.02:00/0000 \"m\"", "misplaces "},
    {"error", "01.00.02:00/0000 R", "01.00.02:00/0000 E", "loses"},
    {"marked", "01.00.02:00/0000 R", "01.00.02:00/0000 Red", ""},
    {"moreValues", "01.00.02:00/0000 R", "01.00.02:00/0000 R 1 2 3 \"x\"", ""},
    {"ofNoLength", "01.00.02:00/0000 R", "01.00.01:00/0000 R", "misplaces "},
    {"ofNoLengthAndAnError", "01.00.02:00/0000 R", "01.00.01:00/0000 E", "loses"},
    {"endNotGiven", "01.00.02:00/0000 R", "_ R", kOdd},
    {"timeInQuotes", "01.00.02:00/0000 R", "\"01.00.02:00/0000\" R", kOdd},
    {"timeWithoutRemainder", "01.00.02:00/0000 R", "01.00.02:00 R", kOdd},
    {"timeAtAnotherRate", "01.00.02:00/0000 R", "01.00.02:00|0000 R", kOdd},
    {"timeAtOtherFrames", "01.00.02:00/0000 R", "01|00.02:00/0000 R", ""},
    {"fadeOverlong", "00.00.00;05/0000", "00.00.01;01/0000", "loses"},
    {"fadeOfNoLength", "00.00.00;05/0000", "00.00.00;00/0000", ""},
    {"fadeBeforeItsCut", kSecondEvent,
     "(Entry) 2\n(Outfade) 00.00.03;00/0000 LIN _ _ _\n(Cut) I 2 1 2 00.00.00:00/0000 "
     "01.00.01:00/0000 01.00.02:00/0000 R\n",
     "loses"},
    {"fadeAtAnotherRate", "00.00.00;05/0000", "00.00.00;05|0000", kOdd},
    {"curve", "05/0000 LIN _ _ _", "05/0000 CURVE -12 -6 -2", ""},
    {"xfade", "(Gain) _ -3.00", "(Gain) _ -3.00\n(Xfade) 1 a b c 1 d", ""},
    {"gainWithAComma", "(Gain) _ -3.00", "(Gain) _ -3,50", "loses"},
    {"gainWithoutPlaces", "(Gain) _ -3.00", "(Gain) _ -3.", ""},
    {"gainWithItsUnit", "(Gain) _ -3.00", "(Gain) _ -3.00dB", ""},
    {"gainOfSilence", "(Gain) _ -3.00", "(Gain) _ -inf", "loses"},
    {"gainThatIsNone", "(Gain) _ -3.00", "(Gain) _ loud", ""},
    {"gainBeyondAllLevels", "(Gain) _ -3.00", "(Gain) _ 2000", "loses"},
    {"gainOfItsChannel", "(Gain) _ -3.00", "(Gain) 1 -3.00", ""},
    {"gainOfItsChannels", "(Gain) _ -3.00", "(Gain) 1~2 -3.00", ""},
    {"gainOfAnotherChannel", "(Gain) _ -3.00", "(Gain) 2 -3.00", "loses"},
    {"noGainOfAnotherChannel", "(Gain) _ -3.00", "(Gain) 2 -0.00", ""},
    {"headerOfAnotherRate", "S48000", "S44100", "misplaces "},
    {"headerOfOtherFrames", "(SEQ_FRAME_RATE) 25", "(SEQ_FRAME_RATE) 24", "misplaces "},
    {"headerGivenTwice", "S48000", "S44100\n(SEQ_SAMPLE_RATE) \"48 kHz\"", ""},
    {"remainderInTheFirstTime", "01.00.00:00/0000", "01.00.00:00/0001", "misplaces "},
    {"offset", "00.00.00:00/0000\n</SYSTEM>", "01.00.00:00/0000\n</SYSTEM>", ""},
};

TEST_F(GlanceTest, tellsWhatACheckTells) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const std::string text = With(row.from, row.to);
    const std::optional<std::string> quick = Quick(text);
    EXPECT_EQ(quick.has_value(), row.found != kOdd);
    if (!quick) continue;
    EXPECT_EQ(*quick, row.found != kOdd ? row.found : "left to the check");
    EXPECT_EQ(*quick, Full(text));
  }
}

TEST_F(GlanceTest, leavesAnEntryGivenTwiceToTheCheckUnlessSomethingIsLostAnyway) {
  std::string text = With("(Entry) 2", "(Entry) 1");
  EXPECT_EQ(Quick(text), std::nullopt);
  text.replace(text.find("a/one.wav"), 9, "a/gone.wav");
  EXPECT_EQ(Quick(text), "loses");
  EXPECT_EQ(Full(text), "loses");
}

TEST_F(GlanceTest, asksForTheSessionAsTheCheckDoes) {
  options_.sessionRate = 44100;
  EXPECT_EQ(Quick(kClean), "misplaces ");
  EXPECT_EQ(Full(kClean), "misplaces ");
}

TEST_F(GlanceTest, leavesOtherReadingsToTheCheck) {
  options_.reading.trust = field::Trust::Header;
  EXPECT_EQ(Quick(kClean), std::nullopt);
  options_.reading = {.encoding = "GBK"};
  EXPECT_EQ(Quick(kClean), std::nullopt);
}

TEST_F(GlanceTest, findsNothingPlainOnceItIsCancelledNorInWhatIsNoFile) {
  const std::string path = folder_.Write("p.adl", kClean);
  EXPECT_TRUE(GlanceAt(path, options_).isPlain);
  EXPECT_FALSE(GlanceAt(path, options_, [] { return true; }).isPlain);
  EXPECT_FALSE(GlanceAt(folder_.Path("none.adl"), options_).isPlain);
  EXPECT_FALSE(GlanceAt(folder_.Path(), options_).isPlain);
}

/// Pieces of more than a block, and pieces across the border of two.
TEST_F(GlanceTest, readsTextsOfManyBlocks) {
  const std::string name(100, 'n');
  std::string events;
  for (int i = 1; i <= 9000; ++i) {
    events +=
        "(Entry) " + std::to_string(i) +
        "\n(Cut) I 1 1 1 00.00.10:10/0000 01.00.00:00/0000 01.00.01:00/0000 R\n(Rem) NAME \"" +
        name.substr(static_cast<std::size_t>(i) % name.size()) + "\"\n";
  }
  const std::string clean = kClean;
  const std::size_t begin = clean.find("(Entry) 1");
  const std::string head = clean.substr(0, begin);
  const std::string tail = clean.substr(clean.find("</EVENT_LIST>"));
  EXPECT_EQ(Quick(head + events + tail), "");
  EXPECT_EQ(Full(head + events + tail), "");
  const std::string last =
      "(Entry) 9001\n(Cut) I 9 1 1 00.00.10:10/0000 01.00.00:00/0000 "
      "01.00.01:00/0000 E\n(Rem) \"";
  EXPECT_EQ(Quick(head + events + last + std::string(100000, 'x') + "\"\n" + tail), "loses");
  EXPECT_EQ(Quick(head + events + last + std::string(300000, 'x') + "\"\n" + tail), std::nullopt);
}

// A project of random values, most of them plain --------------------------------------------------

class Maker {
 public:
  explicit Maker(std::uint32_t seed) : random_(seed) {}

  std::string Project() {
    common_ = 3 + Below(40);
    std::string text = "<ADL>\n<SEQUENCE>\n(SEQ_SAMPLE_RATE) " +
                       Pick({"S48000", "48000", "\"48 kHz\"", "S44100", "_"}) +
                       "\n(SEQ_FRAME_RATE) " + Pick({"25", "25 ", "24", "29.97"}) +
                       "\n</SEQUENCE>\n<SOURCE_INDEX>\n";
    for (std::size_t i = 1; i <= 4; ++i) text += Source(i);
    text += "</SOURCE_INDEX>\n<EVENT_LIST>\n";
    const std::size_t events = Below(12);
    for (std::size_t i = 1; i <= events; ++i) text += Event(Rarely() ? Below(12) : i);
    return text + "</EVENT_LIST>\n</ADL>\n";
  }

 private:
  std::size_t Below(std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
  }
  bool Rarely() { return Below(common_) == 0; }
  /// The first nearly always.
  std::string Pick(const std::vector<std::string>& choices) {
    return Rarely() ? choices[Below(choices.size())] : choices[0];
  }
  std::string Time(std::size_t frames, char separator = ':') {
    char text[32];
    std::snprintf(text, sizeof text, "%02zu%c%02zu:%02zu%c%02zu%c%s", frames / 90000,
                  Pick({".", "!", "|", ":", "x"})[0], frames / 1500 % 60, frames / 25 % 60,
                  separator, frames % 25, Pick({"/", "/", "/", "|"})[0],
                  Pick({"0000", "0000", "0001"}).c_str());
    return Rarely() ? Pick({text, text, "_", std::string(text, 11), '"' + std::string(text) + '"'})
                    : text;
  }
  std::string Source(std::size_t i) {
    const std::string name = Pick({"one", "two", "fast", "wide", "float", "gone", "late"});
    return "(Index) " + Pick({std::to_string(i), std::to_string(i), std::to_string(i + 1)}) +
           "\n(F) \"URL:file://localhost/a/" + name + ".wav\" _ " +
           Pick({Time(250), "_", Time(0)}) + " " + Pick({Time(50), "_"}) + " \"" + name + "\" N\n";
  }
  std::string Event(std::size_t number) {
    const std::size_t position = 90000 + Below(2000);
    const std::size_t length = Rarely() ? Below(80) : 1 + Below(10);
    std::string text = "(Entry) " + std::to_string(number) + "\n";
    if (Rarely()) return text + Pick({"(Silence) 1 a b c\n", "(Rem) x\n", "(Aux) 1 a b c\n"});
    text += "(Cut) I " + std::to_string(1 + Below(Rarely() ? 6 : 4)) + " " +
            Pick({"1", "_", "2", "1~2"}) + " " + Pick({"1", "2", "1~2", "40000", "2~1"}) + " " +
            Time(250 + Below(20)) + " " + Time(position) + " " + Time(position + length) + " " +
            Pick({"_", "R", "D", "m", "E", "XY"}) + "\n";
    if (Below(3) == 0) text += "(Infade) " + Time(Below(12), ';') + " LIN _ _ _\n";
    if (Below(3) == 0) text += "(Outfade) " + Time(Below(12), ';') + " LIN _ _ _\n";
    if (Below(3) == 0) {
      text += "(Gain) " + Pick({"_", "1", "2", "1~2"}) + " " +
              Pick({"-3.00", "0.00", "+6", "-inf", "-3,5", "1e1", "x"}) + "\n";
    }
    return text;
  }

  std::mt19937 random_;
  std::size_t common_ = 10;
};

class GlanceAtRandom : public GlanceTest {
 protected:
  GlanceAtRandom() {
    Write("fast.wav", Wave({.sampleRate = 44100, .bits = 24}));
    Write("wide.wav", Wave({.channels = 2, .bits = 24}));
    Write("float.wav", test::WaveBytes()
                           .Format({.bits = 32, .formatTag = 3})
                           .Data(std::string(kFrames * 4, '\0'))
                           .Bytes());
    const std::string bext = test::LittleEndian().Zeros(338).U32(480000).Zeros(260).bytes;
    Write("late.wav", test::WaveBytes()
                          .Format({.bits = 24})
                          .Chunk("bext", bext)
                          .Data(std::string(kFrames * 3, '\x12'))
                          .Bytes());
  }
};

TEST_F(GlanceAtRandom, tellsWhatACheckTells) {
  const char* const more = std::getenv("VELMORA_SEEDS");
  const std::uint32_t seeds = more != nullptr ? static_cast<std::uint32_t>(std::stoul(more)) : 600;
  std::map<std::string, std::size_t> plain;  // by what was found
  std::string faults;
  for (std::uint32_t seed = 1; seed <= seeds && faults.size() < 20000; ++seed) {
    std::mt19937 random(seed);
    std::string text = seed % 3 == 0 ? std::string(kClean) : Maker(seed).Project();
    if (seed % 3 != 1) text = Damaged(text, random);
    const std::optional<std::string> quick = Quick(text);
    if (!quick) continue;
    ++plain[*quick];
    const std::string full = Full(text);
    if (full != *quick) {
      faults +=
          "seed " + std::to_string(seed) + ": quick " + *quick + ", full " + full + "\n" + text;
    }
  }
  EXPECT_EQ(faults, "");
  for (const char* const outcome : {"", "loses", "misplaces ", "misplaces loses"}) {
    EXPECT_GT(plain[outcome], 5U) << outcome;
  }
}

}  // namespace
}  // namespace velmora::check
