#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

std::unique_ptr<Project> WithSources(const std::string& lines) {
  return ReadProject("<ADL>\n<SOURCE_INDEX>\n" + lines + "\n</SOURCE_INDEX>\n</ADL>\n",
                     "/nowhere/p.adl", {});
}

const std::string kStart = "00.00.01.00/0000";
const std::string kLength = "00.00.10.00/0000";

TEST(ReadSources, valuesOfASource) {
  struct Row {
    const char* rule;
    std::string values;
    const char* location;
    const char* reference;
    std::optional<std::int64_t> start;   ///< seconds
    std::optional<std::int64_t> length;  ///< seconds
    const char* name;
  };
  const std::optional<std::int64_t> none;
  const std::vector<Row> rows = {
      {"all of them",
       "\"URL:file://localhost/V/a b.wav\" USID " + kStart + " " + kLength + " \"a b\" N",
       "URL:file://localhost/V/a b.wav", "USID", 1, 10, "a b"},
      {"not given", "\"a.wav\" _ _ _ _ N", "a.wav", "", none, none, ""},
      {"nor the last one", "\"a.wav\" _ _ _ _ _", "a.wav", "", none, none, ""},
      {"a name, but no last one", "\"a.wav\" _ _ _ take 1 _", "a.wav", "", none, none, "take 1"},
      {"four values", "\"a.wav\" _ " + kStart + " " + kLength, "a.wav", "", 1, 10, ""},
      {"a location alone", "\"a.wav\"", "a.wav", "", none, none, ""},
      {"a location and a reference", "\"a.wav\" USID", "a.wav", "USID", none, none, ""},
      {"a start without a length", "\"a.wav\" _ " + kStart, "a.wav", "", 1, none, ""},
      {"escaped marks", "\"a \x1B\"b\x1B\".wav\" _ _ _", "a \"b\".wav", "", none, none, ""},
      {"no reference", "a.wav " + kStart + " " + kLength + " a", "a.wav", "", 1, 10, "a"},
      {"no quotation marks", "file:///a.wav _ " + kStart + " " + kLength + " a N", "file:///a.wav",
       "", 1, 10, "a"},
      {"nor a word without blanks",
       "URL:file://localhost/My  Disk/take one.wav USID " + kStart + " " + kLength + " take one N",
       "URL:file://localhost/My  Disk/take one.wav", "USID", 1, 10, "take one"},
      {"where only the length is given", "take one.wav _ _ " + kLength + " take one",
       "take one.wav", "", none, 10, "take one"},
      {"where only the start is given", "take one.wav _ " + kStart + " _", "take one.wav", "", 1,
       none, ""},
      {"where nothing is given", "take one.wav _ _ _ _ N", "take one.wav", "", none, none, ""},
      {"but a reference", "take one.wav USID _ _", "take one.wav", "USID", none, none, ""},
      {"a number in brackets", "take (2).wav _ " + kStart + " " + kLength, "take (2).wav", "", 1,
       10, ""},
      {"a name of digits", "a.wav _ _ _ take 1", "a.wav", "", none, none, "take 1"},
      {"times that are none", "\"a.wav\" _ 0 480000 \"a\" N", "a.wav", "", none, none, "a"},
      {"values on the next line", "\"a.wav\"\n USID " + kStart + "\n " + kLength + " \"a\"",
       "a.wav", "USID", 1, 10, "a"},
      {"words on the next line", "a.wav _ " + kStart + " " + kLength + " a N\nvendor words",
       "a.wav", "", 1, 10, "a"},
      {"a comment between", "\"a.wav\" /* Vol (2) */ USID " + kStart + " " + kLength, "a.wav",
       "USID", 1, 10, ""},
      {"no value at all", "", "", "", none, none, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const auto project = WithSources("(Index) 1 (F) " + row.values + "\n(Index) 2\n");
    ASSERT_EQ(project->sources.size(), 2U);
    const Source& source = project->sources[0];
    EXPECT_EQ(source.location, row.location);
    EXPECT_EQ(source.reference, row.reference);
    EXPECT_EQ(source.givenStart, row.start ? std::optional(*row.start * 48000) : none);
    EXPECT_EQ(source.length, row.length ? std::optional(*row.length * 48000) : none);
    EXPECT_EQ(source.name, row.name);
    EXPECT_TRUE(source.fPlace);
    EXPECT_FALSE(project->sources[1].fPlace);
  }
}

/// "number@location" of each source, "?" for a number that is not there.
std::string Shown(const Project& project) {
  std::string text;
  for (const Source& source : project.sources) {
    if (!text.empty()) text += ' ';
    text += std::to_string(source.index) + (source.numberMissing ? "?@" : "@") + source.location;
  }
  return text;
}

TEST(ReadSources, numbers) {
  struct Row {
    const char* rule;
    const char* lines;
    const char* sources;
    std::size_t replaced;
  };
  const std::vector<Row> rows = {
      {"in file order", "(Index) 0009 (F) \"a\"\n(Index) 2 (F) \"b\"", "9@a 2@b", 0},
      {"the place in the list", "(Index) 9 (F) \"a\"\n(Index) (F) \"b\"\n(Index) x (F) \"c\"",
       "9@a 2?@b 3?@c", 0},
      {"the later of one number", "(Index) 1 (F) \"a\"\n(Index) 2 (F) \"b\"\n(Index) 01 (F) \"c\"",
       "2@b 1@c", 1},
      {"three of one number", "(Index) 1 (F) \"a\"\n(Index) 1 (F) \"b\"\n(Index) 1 (F) \"c\"",
       "1@c", 2},
      {"without an (Index)", "(F) \"a\"\n(Index) 5 (F) \"b\"", "1?@a 5@b", 0},
      {"the later (F) of one source", "(Index) 1 (F) \"a\" (F) \"b\"", "1@b", 0},
      {"with a tape between", "(Index) 1 (T) a b c d e (F) \"a\" (T) a b c d e", "1@a", 0},
      {"two indexes", "(Index) 1 (F) \"a\"\n</SOURCE_INDEX>\n<SOURCE_INDEX>\n(F) \"b\"", "1@a 2?@b",
       0},
      {"labels in any case", "(INDEX) 1 (f) \"a\"", "1@a", 0},
      {"negative ones", "(Index) -4 (F) \"a\"", "-4@a", 0},
      {"none", "", "", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const auto project = WithSources(row.lines);
    EXPECT_EQ(Shown(*project), row.sources);
    EXPECT_EQ(project->replacedSources.size(), row.replaced);
  }
}

TEST(ReadSources, reachTheValuesAsTheyStandInTheFile) {
  const auto project = WithSources("(Index) 1 (F) \"a.wav\" _ " + kStart + " x");
  const Entry& entry = project->tree.entries[*project->sources[0].fPlace];
  const SourceTexts texts = ReadSourceTexts(project->tree, entry);
  EXPECT_EQ(project->tree.RawText(texts.location), "\"a.wav\"");
  EXPECT_EQ(texts.start.text, kStart);
  EXPECT_EQ(texts.length.text, "x");
  EXPECT_TRUE(texts.reference.IsThere());
  EXPECT_FALSE(texts.reference.IsGiven());
  EXPECT_FALSE(texts.name.IsThere());
}

TEST(ReadSources, inReferenceListsAreNoSources) {
  const auto project = ReadProject(
      "<ADL> <REF_LIST> <REF> <SOURCE_INDEX> (Index) 1 (F) \"a\" </SOURCE_INDEX> </REF> "
      "</REF_LIST> </ADL>",
      "/nowhere/p.adl", {});
  EXPECT_TRUE(project->sources.empty());
}

TEST(ReadProject, whatIsAnAdl) {
  const auto isAdl = [](const char* text) { return ReadProject(text, "/p.adl", {})->isAdl; };
  EXPECT_TRUE(isAdl("<ADL>"));
  EXPECT_TRUE(isAdl("noise <adl> noise"));
  EXPECT_TRUE(isAdl("<EVENT_LIST>\n(Entry) 1"));
  EXPECT_FALSE(isAdl(""));
  EXPECT_FALSE(isAdl("RIFF....WAVE"));
  EXPECT_FALSE(isAdl("<REF_LIST> <REF> <EVENT_LIST> </EVENT_LIST> </REF> </REF_LIST>"));
  EXPECT_FALSE(isAdl("<SOURCE_INDEX> (Index) 1 </SOURCE_INDEX>"));
}

TEST(ReadSampleRate, formsOfRealFiles) {
  struct Row {
    const char* text;
    std::optional<double> hz;
  };
  const std::vector<Row> rows = {
      {"S48000", 48000},
      {"s44100", 44100},
      {"48000", 48000},
      {"48kHz", 48000},
      {"48 kHz", 48000},
      {"44.1", 44100},
      {"44,1 kHz", 44100},
      {"48000.00", 48000},
      {"48000 Hz", 48000},
      {"S96000", 96000},
      {"192000", 192000},
      {"S48048", 48048},
      {"47952", 48000 / 1.001},
      {"47.952", 48000 / 1.001},
      {"S44144", 44144.1},
      {"SR 48000", 48000},
      {"", {}},
      {"_", {}},
      {"unknown", {}},
      {"0", {}},
      {"-48000", {}},
      {"99999999", {}},
  };
  for (const Row& row : rows) {
    const std::optional<double> hz = ReadSampleRate(row.text);
    ASSERT_EQ(hz.has_value(), row.hz.has_value()) << row.text;
    if (hz) {
      EXPECT_NEAR(*hz, *row.hz, 1e-9) << row.text;
    }
  }
}

TEST(ReadFrameRate, formsOfRealFiles) {
  struct Row {
    const char* text;
    std::int32_t nominal;  ///< 0: unreadable
    bool pulled;
    bool drop;
  };
  const std::vector<Row> rows = {
      {"25", 25, false, false},        {"24", 24, false, false},
      {"30", 30, false, false},        {"29.97", 30, true, false},
      {"29,97", 30, true, false},      {"23.976", 24, true, false},
      {"23.98", 24, true, false},      {"30D", 30, false, true},
      {"30DF", 30, false, true},       {"29.97 df", 30, true, true},
      {"29.97DF", 30, true, true},     {"29.97 drop", 30, true, true},
      {"29.97ND", 30, true, false},    {"30 NDF", 30, false, false},
      {"25fps", 25, false, false},     {"25.00 fps", 25, false, false},
      {"29.97fps-DF", 30, true, true}, {"30000/1001", 30, true, false},
      {"24/1.001", 24, true, false},   {"24.975", 25, true, false},
      {"2997", 30, true, false},       {"23976", 24, true, false},
      {"F25", 25, false, false},       {"50", 50, false, false},
      {"59.94", 60, true, false},      {"", 0, false, false},
      {"_", 0, false, false},          {"film", 0, false, false},
      {"17", 0, false, false},         {"0", 0, false, false},
      {"25/0", 25, false, false},
  };
  for (const Row& row : rows) {
    const std::optional<TimeRates> rates = ReadFrameRate(row.text);
    ASSERT_EQ(rates.has_value(), row.nominal != 0) << row.text;
    if (!rates) continue;
    EXPECT_EQ(rates->framesPerSecond, row.nominal) << row.text;
    EXPECT_EQ(rates->pulledDown, row.pulled) << row.text;
    EXPECT_EQ(rates->dropFrame, row.drop) << row.text;
  }
}

std::unique_ptr<Project> WithHeader(const std::string& header, const std::string& events = "",
                                    Trust trust = Trust::Marks) {
  return ReadProject("<ADL>\n<SEQUENCE>\n" + header + "\n</SEQUENCE>\n<EVENT_LIST>\n" + events +
                         "\n</EVENT_LIST>\n</ADL>\n",
                     "/nowhere/p.adl", {.trust = trust, .encoding = ""});
}

TEST(ReadHeader, ratesAndPlaces) {
  const auto project = WithHeader(
      "(SEQ_SAMPLE_RATE)\n S96000\n(seq_frame_rate) 29.97 df\n(SEQ_DEST_START) 01.00.00.00/0000\n"
      "(SEQ_SAMPLE_RATE)");
  EXPECT_EQ(project->times.headerSampleRate, 96000.0);
  ASSERT_TRUE(project->times.headerFrames);
  EXPECT_TRUE(project->times.headerFrames->pulledDown);
  EXPECT_TRUE(project->times.headerFrames->dropFrame);
  EXPECT_EQ(project->header.sampleRatePlace, 0U);
  EXPECT_EQ(project->header.frameRatePlace, 1U);
  EXPECT_EQ(project->header.destStartPlace, 2U);
  ASSERT_EQ(project->marks.size(), 1U);
  EXPECT_EQ(project->marks[0].role, TimeRole::Header);
}

TEST(ReadHeader, stampsWithoutARateMark) {
  const std::string cut = "(Entry) 1 (Cut) I 1 1 1 00.00.01.00 01.00.00.00 01.00.01.00 _\n";
  EXPECT_EQ(WithHeader("", cut)->rates.sampleRate, 48000.0);
  EXPECT_EQ(WithHeader("(SEQ_SAMPLE_RATE) 44.1", cut)->rates.sampleRate, 44100.0);
  EXPECT_EQ(WithHeader("(SEQ_SAMPLE_RATE) x", cut)->rates.sampleRate, 48000.0);
  const auto project = WithHeader("(SEQ_SAMPLE_RATE) 44.1\n(SEQ_DEST_START) 01.00.00.00@0000", cut);
  EXPECT_EQ(project->rates.sampleRate, 88200.0) << "the first full stamp, wherever it stands";
  EXPECT_EQ(project->events[0].sourceIn, 88200);
}

TEST(ReadHeader, trustInTheHeader) {
  const std::string cut =
      "(Entry) 1 (Cut) I 1 1 1 00:00:01:05/0000 01:00:00:00/0000 01:00:01:00/0000 _\n";
  const std::string header = "(SEQ_SAMPLE_RATE) S44100\n(SEQ_FRAME_RATE) 25";
  EXPECT_EQ(WithHeader(header, cut)->rates, (TimeRates{48000, 30, true, false}));
  const auto project = WithHeader(header, cut, Trust::Header);
  EXPECT_EQ(project->rates, (TimeRates{44100, 25, false, false}));
  EXPECT_EQ(project->events[0].sourceIn, 44100 + 5 * 1764);
  EXPECT_EQ(project->marks[0].marks.rates.sampleRate, 48000) << "the marks stay what they are";
  EXPECT_EQ(WithHeader("(SEQ_FRAME_RATE) 25", cut, Trust::Header)->rates,
            (TimeRates{48000, 25, false, false}));
}

TEST(ReadHeader, sourceOffset) {
  const auto has = [](const char* value) {
    return WithHeader("(SYS_SRC_OFFSET) " + std::string(value))->header.hasSourceOffset;
  };
  for (const char* value : {"", "_", "0", "0.0", "00.00.00.00/0000", "00:00:00:00", "x"}) {
    EXPECT_FALSE(has(value)) << value;
  }
  for (const char* value : {"12", "-0.5", "00.00.00.01/0000", "00.00.00.00/0001"}) {
    EXPECT_TRUE(has(value)) << value;
  }
}

TEST(ReadHeader, ratesOfAProjectWithoutCuts) {
  EXPECT_EQ(WithHeader("")->rates, (TimeRates{}));
  EXPECT_EQ(WithHeader("(SEQ_SAMPLE_RATE) 96000\n(SEQ_FRAME_RATE) 25")->rates,
            (TimeRates{96000, 25, false, false}));
  EXPECT_EQ(WithHeader("(SEQ_DEST_START) 01=00:00:00|0000")->rates,
            (TimeRates{44100, 24, false, false}));
}

}  // namespace
}  // namespace velmora::field
