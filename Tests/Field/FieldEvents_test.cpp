#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

constexpr std::int64_t kFrame = 1920;  ///< samples, at 25 frames and 48 kHz

/// A project of two sources, numbered 1 and 7, and these lines in its EVENT_LIST.
std::unique_ptr<Project> WithEvents(const std::string& lines) {
  return ReadProject(
      "<ADL>\n<SOURCE_INDEX>\n"
      "(Index) 1 (F) \"URL:file://localhost/V/one.wav\" _ 00.00.00.00/0000 00.00.10.00/0000 \"A\"\n"
      "(Index) 7 (F) \"URL:file:///C:/B%20side/Two.WAV\" _ _ _ \"the two\" N\n"
      "</SOURCE_INDEX>\n<EVENT_LIST>\n" +
          lines + "\n</EVENT_LIST>\n</ADL>\n",
      "/nowhere/p.adl", {});
}

const std::string kTimes = "00.00.01.00/0000 01.00.00.00/0000 01.00.02.00/0000";

/// The only event of a project with this line after its (Entry).
Event OnlyEvent(const std::string& line) {
  const auto project = WithEvents("(Entry) 1 " + line);
  EXPECT_EQ(project->events.size(), 1U) << line;
  return project->events.empty() ? Event{} : project->events[0];
}

TEST(ReadEvents, aCut) {
  const Event event = OnlyEvent("(Cut) I 7 1~2 3-4 " + kTimes + " R");
  EXPECT_EQ(event.number, 1);
  EXPECT_EQ(event.kind, EventKind::Cut);
  EXPECT_TRUE(event.complete);
  EXPECT_EQ(event.source, 1U);
  EXPECT_EQ(event.sourceIndex, 7);
  EXPECT_FALSE(event.indexIsName);
  EXPECT_EQ(event.sourceChannels, (ChannelRun{1, 2}));
  EXPECT_EQ(event.tracks, (ChannelRun{3, 4}));
  EXPECT_EQ(event.sourceIn, 48000);
  EXPECT_EQ(event.position, 3600 * 48000);
  EXPECT_EQ(event.end, 3602 * 48000);
  EXPECT_EQ(event.status, 'R');
  EXPECT_FALSE(event.IsOff());
}

TEST(ReadEvents, channelRuns) {
  struct Row {
    const char* text;
    ChannelRun run;
  };
  const std::vector<Row> rows = {
      {"1", {1, 1}},
      {"0012", {12, 12}},
      {"1~2", {1, 2}},
      {"1-2", {1, 2}},
      {"_", {1, 1}},
      {"3~3", {3, 3}},
      {"2~1", {1, 2}},
      {"0", {0, 0}},
      {"x", {1, 1}},
      {"2x", {2, 2}},
      {"2~", {2, 2}},
      {"2~x", {2, 2}},
      {"-3", {-3, -3}},
      {"1~2~3", {1, 2}},
      {"1~2000000000", {1, 2000000000}},
      {"\"1~2\"", {1, 2}},
      {"99999999999", {2147483647, 2147483647}},
      {"0~99999999999", {0, 2147483646}},
  };
  for (const Row& row : rows) {
    const Event event = OnlyEvent(std::string("(Cut) I 1 ") + row.text + " 1 " + kTimes + " _");
    EXPECT_EQ(event.sourceChannels, row.run) << row.text;
    EXPECT_GE(event.sourceChannels.Count(), 1) << row.text;
  }
}

TEST(ReadEvents, status) {
  struct Row {
    const char* text;
    char status;
    bool off;
  };
  const std::vector<Row> rows = {{"R", 'R', false},   {"D", 'D', true},  {"d", 'D', true},
                                 {"M", 'M', true},    {"m", 'M', true},  {"E", 'E', true},
                                 {"X", 'X', false},   {"_", '_', false}, {"", '_', false},
                                 {"Done", '_', false}};
  for (const Row& row : rows) {
    const Event event = OnlyEvent("(Cut) I 1 1 1 " + kTimes + " " + row.text);
    EXPECT_EQ(event.status, row.status) << row.text;
    EXPECT_EQ(event.IsOff(), row.off) << row.text;
    EXPECT_TRUE(event.complete) << row.text;
  }
}

TEST(ReadEvents, theSourceThatACutMeans) {
  struct Row {
    const char* rule;
    const char* index;
    std::optional<std::size_t> source;
    std::optional<std::int32_t> number;
    bool name;
  };
  const std::vector<Row> rows = {
      {"a number", "0007", 1, 7, false},
      {"a number in quotation marks", "\"7\"", 1, 7, false},
      {"no such index", "2", {}, 2, false},
      {"a file name", "one.wav", 0, {}, true},
      {"in quotation marks", "\"one.wav\"", 0, {}, true},
      {"a name with escapes in the location", "Two.WAV", 1, {}, true},
      {"in another case", "two.wav", 1, {}, true},
      {"without its extension", "one", 0, {}, true},
      {"with another one", "ONE.aif", 0, {}, true},
      {"the name that the source is given", "\"the two\"", 1, {}, true},
      {"the same without quotation marks", "the two", 1, {}, true},
      {"a path", "/V/one.wav", 0, {}, true},
      {"another path to that name", "D:\\x\\one.wav", 0, {}, true},
      {"no such name", "three.wav", {}, {}, true},
      {"a name that begins with digits", "7th.wav", {}, {}, true},
      {"not given", "_", {}, {}, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const Event event = OnlyEvent(std::string("(Cut) I ") + row.index + " 1~2 3 " + kTimes + " D");
    EXPECT_EQ(event.source, row.source);
    EXPECT_EQ(event.sourceIndex, row.number);
    EXPECT_EQ(event.indexIsName, row.name);
    EXPECT_EQ(event.sourceChannels, (ChannelRun{1, 2}));
    EXPECT_EQ(event.tracks, (ChannelRun{3, 3}));
    EXPECT_EQ(event.status, 'D');
    EXPECT_EQ(event.end - event.position, 96000);
  }
}

TEST(ReadEvents, cutsThatLackValues) {
  struct Row {
    const char* rule;
    std::string line;
    bool complete;
    std::optional<std::int32_t> index;
    std::int32_t channel;
    std::int32_t track;
  };
  const std::vector<Row> rows = {
      {"the status", "(Cut) I 1 2 3 " + kTimes, true, 1, 2, 3},
      {"one of the channels", "(Cut) I 1 2 " + kTimes + " _", true, 1, 2, 2},
      {"the channels", "(Cut) I 1 " + kTimes + " _", true, 1, 1, 1},
      {"all but the times", "(Cut) I " + kTimes, true, {}, 1, 1},
      {"the source type", "(Cut) 1 2 3 " + kTimes + " _", true, 1, 2, 3},
      {"destination out", "(Cut) I 1 2 3 00.00.01.00/0000 01.00.00.00/0000", false, 1, 2, 3},
      {"a time that is not given", "(Cut) I 1 2 3 _ 01.00.00.00/0000 01.00.02.00/0000 _", false, 1,
       2, 3},
      {"times that are none", "(Cut) I 1 2 3 a b c _", false, 1, 2, 3},
      {"everything", "(Cut)", false, {}, 1, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const Event event = OnlyEvent(row.line);
    EXPECT_EQ(event.kind, EventKind::Cut);
    EXPECT_EQ(event.complete, row.complete);
    EXPECT_EQ(event.sourceIndex, row.index);
    EXPECT_EQ(event.sourceChannels.first, row.channel);
    EXPECT_EQ(event.tracks.first, row.track);
    if (row.complete) {
      EXPECT_EQ(event.end - event.position, 96000);
    }
  }
}

TEST(ReadEvents, commentsAmongValuesChangeNothing) {
  const Event event = OnlyEvent("(Cut) I /* the (first) */ 7 1 2 " + kTimes + " /* on */ M");
  EXPECT_EQ(event.sourceIndex, 7);
  EXPECT_EQ(event.status, 'M');
  EXPECT_TRUE(event.complete);
}

TEST(ReadEvents, wordsOnALineOfTheirOwnChangeNothing) {
  const Event event =
      OnlyEvent("\n(Cut) I 1 1 2 " + kTimes + " R\n17 vendor words M\n(Gain) _ 1.5");
  EXPECT_EQ(event.status, 'R');
  EXPECT_EQ(event.GainOf(2), 1.5);
}

TEST(ReadEvents, fades) {
  struct Row {
    const char* rule;
    const char* values;
    std::optional<std::int64_t> length;  ///< frames
    const char* shape;
    std::vector<std::optional<double>> levels;
    const char* rendered;
  };
  const std::optional<double> none;
  const std::vector<Row> rows = {
      {"a straight line", "00.00.00.05/0000 LIN _ _ _", 5, "LIN", {none, none, none}, nullptr},
      {"a curve", "00.00.00,05/0000 CURVE -12.5 -6 -1,5", 5, "CURVE", {-12.5, -6.0, -1.5}, nullptr},
      {"levels in part", "00.00.00.05/0000 CURVE _ -6dB", 5, "CURVE", {none, -6.0, none}, nullptr},
      {"rendered",
       "00.00.00.05/0000 CURVE _ _ _ I 3 00.00.00.02/0000",
       5,
       "CURVE",
       {none, none, none},
       "I 3 at 2"},
      {"rendered, without levels",
       "00.00.00.05/0000 LIN I 3 _",
       5,
       "LIN",
       {none, none, none},
       "I 3 at ?"},
      {"three more that are not given",
       "00.00.00.05/0000 LIN _ _ _ _ _ _",
       5,
       "LIN",
       {none, none, none},
       nullptr},
      {"an index of 0 alone",
       "00.00.00.05/0000 LIN _ _ _ _ 0 _",
       5,
       "LIN",
       {none, none, none},
       nullptr},
      {"a shape that is not given", "00.00.00.05/0000 _", 5, "", {none, none, none}, nullptr},
      {"a length alone", "00.00.00.05", 5, "", {none, none, none}, nullptr},
      {"no length", "_ LIN _ _ _", {}, "", {}, nullptr},
      {"a length of 0", "00.00.00.00/0000 LIN _ _ _", {}, "", {}, nullptr},
      {"a length that is no time", "5 LIN _ _ _", {}, "", {}, nullptr},
      {"nothing at all", "", {}, "", {}, nullptr},
  };
  for (const Row& row : rows) {
    for (const char* label : {"Infade", "Outfade"}) {
      SCOPED_TRACE(row.rule);
      const Event event =
          OnlyEvent("(Cut) I 1 1 1 " + kTimes + " _\n(" + label + ") " + row.values);
      const bool in = label[0] == 'I';
      const Seldom<Fade>& fade = in ? event.fadeIn : event.fadeOut;
      EXPECT_EQ(in ? event.fadeInPlace : event.fadeOutPlace, event.place + 2);
      EXPECT_FALSE(in ? event.fadeOut : event.fadeIn);
      ASSERT_EQ(fade.has_value(), row.length.has_value());
      if (!fade) continue;
      EXPECT_EQ(fade->length, *row.length * kFrame);
      EXPECT_EQ(fade->shape, row.shape);
      EXPECT_EQ(std::vector(fade->levelsDb.begin(), fade->levelsDb.end()), row.levels);
      ASSERT_EQ(fade->rendered.has_value(), row.rendered != nullptr);
      if (!fade->rendered) continue;
      const std::string in2 =
          fade->rendered->in ? std::to_string(*fade->rendered->in / kFrame) : "?";
      EXPECT_EQ(fade->rendered->source + " at " + in2, row.rendered);
    }
  }
}

TEST(ReadEvents, theLaterFadeCounts) {
  const Event event = OnlyEvent("(Cut) I 1 1 1 " + kTimes +
                                " _\n(Infade) 00.00.00.05/0000 CURVE -1 -2 -3\n"
                                "(Infade) 00.00.00.07/0000 LIN\n(Outfade) 00.00.00.05/0000 LIN\n"
                                "(Outfade) _");
  ASSERT_TRUE(event.fadeIn);
  EXPECT_EQ(event.fadeIn->length, 7 * kFrame);
  EXPECT_EQ(event.fadeIn->levelsDb[0], std::nullopt);
  EXPECT_FALSE(event.fadeOut);
}

TEST(ReadEvents, gains) {
  struct Row {
    const char* rule;
    const char* lines;
    std::optional<double> first;   ///< of track 1
    std::optional<double> second;  ///< of track 2
  };
  const std::vector<Row> rows = {
      {"none", "", {}, {}},
      {"all channels", "(Gain) _ +5.00", 5.0, 5.0},
      {"one channel", "(Gain) 1 -6.02", -6.02, {}},
      {"a decimal comma", "(Gain) _ -6,02", -6.02, -6.02},
      {"a run", "(Gain) 1~2 -3", -3.0, -3.0},
      {"several lines", "(Gain) 1 -1\n(Gain) 2 -2", -1.0, -2.0},
      {"the last that holds", "(Gain) 1 -1\n(Gain) _ -2\n(Gain) 2 -3", -2.0, -3.0},
      {"the level alone", "(Gain) -4.5", -4.5, -4.5},
      {"with its unit", "(Gain) _ -4.5dB", -4.5, -4.5},
      {"silence", "(Gain) _ -inf", -1000.0, -1000.0},
      {"not given", "(Gain) _ _", {}, {}},
      {"no level", "(Gain) 1 loud", {}, {}},
      {"nothing", "(Gain)", {}, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    const Event event = OnlyEvent("(Cut) I 1 1~2 1~2 " + kTimes + " _\n" + row.lines);
    EXPECT_EQ(event.GainOf(1), row.first);
    EXPECT_EQ(event.GainOf(2), row.second);
  }
}

TEST(ReadEvents, names) {
  struct Row {
    const char* rule;
    const char* lines;
    const char* name;
  };
  const std::vector<Row> rows = {
      {"on the next line", " _\n(Rem) NAME \"One (1)\"", "One (1)"},
      {"on the event's line", " _ (Rem) NAME \"One\"", "One"},
      {"the keyword in another case", " _ (rem) name \"One\"", "One"},
      {"the name on a line of its own", " _\n(Rem) NAME\n  \"One\"", "One"},
      {"without quotation marks", " _\n(Rem) NAME One", "One"},
      {"and with blanks", " _\n(Rem) NAME One  two\tthree\n(Gain) _ 1", "One  two\tthree"},
      {"words of the next line are none of it", " _\n(Rem) NAME One two\nvendor words", "One two"},
      {"words after the quotation marks are none of it", " _\n(Rem) NAME \"One\" two", "One"},
      {"a comment is none of it", " _\n(Rem) NAME One /* take */ two", "One"},
      {"escaped marks", " _\n(Rem) NAME \"a \x1B\"b\x1B\" c\"", "a \"b\" c"},
      {"the later counts", " _\n(Rem) NAME \"One\"\n(Rem) NAME \"Two\"", "Two"},
      {"another remark", " _\n(Rem) COLOUR \"red\"", ""},
      {"another remark after it", " _\n(Rem) NAME \"One\" (Rem) free words", "One"},
      {"not given", " _\n(Rem) NAME _", ""},
      {"nothing", " _\n(Rem) NAME", ""},
      {"before the cut's own line", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    EXPECT_EQ(OnlyEvent("(Cut) I 1 1 1 " + kTimes + row.lines).name, row.name);
  }
  EXPECT_EQ(OnlyEvent("(Rem) NAME \"One\"\n(Cut) I 1 1 1 " + kTimes + " _").name, "One");
}

/// "number/kind/missing" of each event.
std::string Shown(const Project& project) {
  constexpr const char* kKinds[] = {"cut", "silence", "aux", "video", "other"};
  std::string text;
  for (const Event& event : project.events) {
    if (!text.empty()) text += ' ';
    text += std::to_string(event.number) + ":" + kKinds[static_cast<int>(event.kind)];
    if (event.numberMissing) text += "?";
    if (event.kind == EventKind::Cut) {
      text += "@" + std::to_string((event.position - std::int64_t{3600} * 48000) / 48000);
    }
  }
  return text;
}

std::string CutAt(int seconds) {
  const std::string at = "01.00.0" + std::to_string(seconds) + ".00/0000";
  return "(Cut) I 1 1 1 00.00.01.00/0000 " + at + " 01.00.09.00/0000 _\n";
}

TEST(ReadEvents, entries) {
  struct Row {
    const char* rule;
    std::string lines;
    const char* events;
  };
  const std::vector<Row> rows = {
      {"by rising number",
       "(Entry) 0003 " + CutAt(1) + "(Entry) -2 " + CutAt(2) + "(Entry) 1 " + CutAt(3),
       "-2:cut@2 1:cut@3 3:cut@1"},
      {"one number twice",
       "(Entry) 2 " + CutAt(1) + "(Entry) 1 " + CutAt(2) + "(Entry) 2 " + CutAt(3),
       "1:cut@2 2:cut@1 2:cut@3"},
      {"without a number",
       "(Entry) 7 " + CutAt(1) + "(Entry)\n" + CutAt(2) + "(Entry) x " + CutAt(3),
       "2:cut?@2 3:cut?@3 7:cut@1"},
      {"a cut before the first", CutAt(1) + "(Entry) 5 " + CutAt(2), "1:cut?@1 5:cut@2"},
      {"two cuts in one", "(Entry) 5 " + CutAt(1) + "(Gain) _ 1\n" + CutAt(2), "5:cut@1 5:cut@2"},
      {"the other kinds",
       "(Entry) 1 (Silence) 1 a b c\n(Entry) 2 (Aux) 1 a b c\n(Entry) 3 (Vid) a b "
       "c d\n(Entry) 4 (Alt) I 1 1 a\n(Entry) 5 (Rem) x",
       "1:silence 2:aux 3:video 4:other 5:other"},
      {"an alternative is no edit", "(Entry) 1 (Alt) I 1 1 a " + CutAt(1), "1:cut@1"},
      {"of a cut and a silence the cut stays", "(Entry) 1 " + CutAt(1) + "(Silence) 1 a b c",
       "1:cut@1"},
      {"a cut after a silence is one more", "(Entry) 1 (Silence) 1 a b c\n" + CutAt(1),
       "1:silence 1:cut@1"},
      {"labels in any case", "(ENTRY) 1 (CUT) I 1 1 1 " + kTimes + " _", "1:cut@0"},
      {"two lists",
       "(Entry) 2 " + CutAt(1) + "</EVENT_LIST>\n<EVENT_LIST>\n(Gain) _ 1\n(Entry) 1 " + CutAt(2),
       "1:cut@2 2:cut@1"},
      {"a section inside the list",
       "(Entry) 2 " + CutAt(1) + "<FADERS>\n(Entry) 8\n</FADERS>\n(Entry) 3 " + CutAt(2),
       "2:cut@1 3:cut@2"},
      {"words of a vendor",
       "free words\n1 2 3\n(Entry) 2 " + CutAt(1) + "free words\n(Entry) 3 " + CutAt(2),
       "2:cut@1 3:cut@2"},
      {"none", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.rule);
    EXPECT_EQ(Shown(*WithEvents(row.lines)), row.events);
  }
}

TEST(ReadEvents, linesBelongToTheEntryAboveThem) {
  const auto project = WithEvents("(Gain) _ 9\n(Entry) 1 " + CutAt(1) + "(Entry) 2 " + CutAt(2) +
                                  "(Gain) _ 2\n<X>\n(Gain) _ 3\n</X>\n(Infade) 00.00.00.05/0000 "
                                  "LIN\n</EVENT_LIST>\n<EVENT_LIST>\n(Gain) _ 4\n");
  ASSERT_EQ(project->events.size(), 2U);
  EXPECT_EQ(project->events[0].GainOf(1), std::nullopt);
  EXPECT_EQ(project->events[1].GainOf(1), 2.0);
  EXPECT_TRUE(project->events[1].fadeIn) << "the list goes on after a section inside it";
}

TEST(ReadEvents, theEntriesOfAnEvent) {
  const auto project = WithEvents("(Entry) 1 " + CutAt(1) +
                                  "(Gain) _ 9\n(Xfade) 1 2 3 4 5 6\n(Entry) 2 " + CutAt(2));
  const std::size_t before = project->events[0].place;
  EXPECT_EQ(project->tree.entries[before].label, "Entry");
  EXPECT_EQ(project->events[0].edit, before + 1);
  EXPECT_EQ(project->events[0].endPlace, before + 4);
  EXPECT_EQ(project->events[1].place, before + 4);
  EXPECT_EQ(project->events[1].endPlace, before + 6);
}

TEST(ReadEvents, aCutThatTheEndOfTheTextCuts) {
  struct Row {
    std::string text;
    bool complete;
  };
  const std::string before = "<ADL> <EVENT_LIST> (Entry) 1 (Cut) I 1 1 1 ";
  const std::vector<Row> rows = {
      {kTimes + " _\n", true},
      {kTimes + " _", true},
      {kTimes, true},
      {"00.00.01.00/0000 01.00.00.00/0000 01.00.02.00\n", true},
      {"00.00.01.00/0000 01.00.00.00/0000 01.00.02.00", false},
      {"00.00.01.00/0000 01.00.00.00/0000 01.00.0", false},
      {"00.00.01.00/0000 01.00.00.00/0000", false},
      {"", false},
  };
  for (const Row& row : rows) {
    const auto project = ReadProject(before + row.text, "/nowhere/p.adl", {});
    ASSERT_EQ(project->events.size(), 1U) << row.text;
    EXPECT_EQ(project->events[0].complete, row.complete) << row.text;
    EXPECT_TRUE(project->tree.cutOff) << row.text;
  }
}

TEST(ReadEvents, allTimesAtTheRateOfTheFirstCut) {
  // The first cut in the text is at 96 kHz, the other at 48 kHz; the source at 44.1 kHz.
  const auto project = ReadProject(
      "<ADL>\n<SOURCE_INDEX>\n(Index) 1 (F) \"x.wav\" _ 00.00.01.00|0000 00.00.01.00|0001 _\n"
      "</SOURCE_INDEX>\n<EVENT_LIST>\n"
      "(Entry) 2 (Cut) I 1 1 1 00.00.01.00*0001 01.00.00.00*0000 01.00.01.00*0000 _\n"
      "(Infade) 00.00.00,05/0001 LIN\n"
      "(Entry) 1 (Cut) I 1 1 1 00.00.01.00/0001 01.00.00.00/0000 01.00.01.00/0000 _\n"
      "</EVENT_LIST>\n</ADL>\n",
      "/nowhere/p.adl", {});
  EXPECT_EQ(project->rates, (TimeRates{96000, 25, false, false}));
  ASSERT_EQ(project->events.size(), 2U);
  EXPECT_EQ(project->events[0].sourceIn, 96002);
  EXPECT_EQ(project->events[1].sourceIn, 96001);
  EXPECT_EQ(project->events[1].fadeIn->length, 5 * 3840 + 2);
  EXPECT_EQ(project->sources[0].givenStart, 96000);
  EXPECT_EQ(project->sources[0].length, 96002) << "2.18 samples, to the nearest";
  ASSERT_EQ(project->marks.size(), 4U);
  EXPECT_EQ(project->marks[0].role, TimeRole::Source);
  EXPECT_EQ(project->marks[0].marks.sampleRateMark, '|');
  EXPECT_EQ(project->marks[0].count, 2U);
  EXPECT_EQ(project->marks[1].role, TimeRole::Cut);
  EXPECT_EQ(project->marks[1].marks.rates.sampleRate, 96000);
  EXPECT_EQ(project->marks[1].count, 3U);
  EXPECT_EQ(project->marks[1].first, "00.00.01.00*0001");
  EXPECT_EQ(project->marks[2].role, TimeRole::Fade);
  EXPECT_TRUE(project->marks[2].marks.rates.dropFrame);
  EXPECT_EQ(project->marks[3].marks.sampleRateMark, '/');
}

}  // namespace
}  // namespace velmora::field
