#include "Timecode/AdlTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace velmora {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();

struct Sample {
  std::string_view rule;
  const char* timestamp;
  std::int64_t samples;
};

constexpr auto kWorked = std::to_array<Sample>({
    {"pulled30NonDropHour", "01:00:00:00/0000", 172972800},
    {"pulled30DropHour", "01:00:00;00/0000", 172799828},
    {"plain30HourAt44100", "01|00:00:00|0000", 158760000},
    {"dropMinuteStartsAtFrame2", "00:01:00;02/0000", 2882880},
    {"second25", "00.00:01:00/0000", 48000},
    {"pulled24SecondWithRemainder", "00-00:01:00/0012", 48060},
    {"oneFrameIsRoundedUp", "00:00:00:01|0000", 1472},
    {"tenMinutesDropHave17982Frames", "00:10:00;00/0000", 28799972},
    {"droppedFrameNumberIsNotRefused", "00:01:00;00/0000", 2879677},
    {"droppedFrameNumberEqualsTheOneBefore", "00:00:59;28/0000", 2879677},
    {"commaDropsToo", "01:00:00,00/0000", 172799828},
    {"dotAtPosition8DoesNotDrop", "01:00:00.00/0000", 172972800},
    {"separatorAtPosition5IsNeverLookedAt", "01:00;00:00/0000", 172972800},
    {"dropAppliesToA25FrameMark", "01.00:00;00/0000", 172592640},
    {"dropAppliesToA24FrameMark", "01=01:00,05`0000", 309529080},
    {"remainderIsAddedUnscaledAfterRounding", "00:00:00:01|0005", 1477},
    {"highestRegularStamp", "23:59:59:29/9999", 4151355598},
    {"fieldsBeyondTheirRangeSimplyCount", "99|99:99:99*9999", 34794470799},
});

TEST(AdlToSamples, workedValues) {
  for (const Sample& row : kWorked) {
    EXPECT_EQ(AdlToSamples(row.timestamp), row.samples) << row.rule << ": " << row.timestamp;
  }
}

constexpr auto kOdd = std::to_array<Sample>({
    {"lettersCountByTheirCode", "0A:0Z:0~:0!/00@0", 3065342440},
    {"blanksCountMinus16AndMinutesDivideTowardZero", "00:  :00:00/0000", -507386880},
    {"minusSignCountsMinus3InHours", "-1:00:00:00/0000", -5016211200},
    {"minusSignCountsMinus3InMinutes", "00:-1:00:00/0000", -83603520},
    {"negativeSamplesAreExact", "00|00:00:-1/0000", -46400},
    {"negativeSamplesAt44100", "00|00:00:-1|0000", -42630},
    {"minusSignCountsMinus3InTheRemainder", "00:00:00:00/00-1", -29},
    {"unknownRateMarkLeavesTheRemainder", "12:34:56:17x0042", 42},
    {"unknownFrameMarkGivesTheLowestNumber", "00x00:00:00/0000", kLowest},
    {"unknownFrameMarkGivesTheLowestNumberForAnyCount", "12x34:56:17/0000", kLowest},
    {"unknownFrameMarkWithDropGivesTheLowestNumber", "12x34:56;17/0000", kLowest},
    {"unknownFrameMarkAddsTheRemainder", "00x00:00:00/9999", kLowest + 9999},
    {"bothMarksUnknown", "00x00:00:00x0042", kLowest + 42},
    {"lowestNumberWrapsUnderANegativeRemainder", "00x00:00:00/    ", 9223372036854758032},
});

TEST(AdlToSamples, charactersAreValuedNotValidated) {
  for (const Sample& row : kOdd) {
    EXPECT_EQ(AdlToSamples(row.timestamp), row.samples) << row.rule << ": " << row.timestamp;
  }
}

// Each missing character counts as NUL, that is as -48 at a digit's place. The text lies in a block
// of exactly its own size, so that a sanitizer sees any step beyond its terminator.
TEST(AdlToSamples, textThatEndsEarlyIsContinuedByNul) {
  constexpr auto kShort = std::to_array<Sample>({
      {"empty", "", 9223372036854722480},
      {"noFrameMark", "01", 9223372036854722480},
      {"noRateMark", "01:00:00:00", -53328},
      {"noFrames", "01:00:00", -53328},
      {"noRemainder", "01:00:00:00/", 172919472},
      {"threeDigitsOfRemainder", "00:00:00:00/000", -48},
  });
  for (const Sample& row : kShort) {
    const std::size_t size = std::string_view(row.timestamp).size() + 1;
    const auto exact = std::make_unique<char[]>(size);
    std::copy_n(row.timestamp, size, exact.get());
    EXPECT_EQ(AdlToSamples(exact.get()), row.samples) << row.rule;
  }
  EXPECT_EQ(AdlToSamples(nullptr), 9223372036854722480);
}

TEST(AdlToSamples, nothingAfterTheSixteenthCharacterCounts) {
  EXPECT_EQ(AdlToSamples("00.00:01:00/00009999"), 48000);
}

constexpr std::string_view kRateMarks = "('=\")[~|^]<-/+>`?@$!{&*#}";

struct MarkRow {
  char frameMark;
  std::array<std::int64_t, 25> samples;  ///< in the order of kRateMarks
};

// The outside witness: the formula computed in Python, whose floats are IEEE doubles, for
// 12:34:56 and 17 frames.
constexpr auto kNonDrop = std::to_array<MarkRow>(
    {{'?', {1391510528, 1448042092, 1449490134, 1450939624, 1509885556, 1917675447, 1995583007,
            1997578590, 1999576169, 2080811032, 2087265792, 2172063137, 2174235200, 2176409436,
            2264828334, 3835350893, 3991166014, 3995157180, 3999152338, 4161622063, 4174531584,
            4344126274, 4348470400, 4352818871, 4529656667}},
     {'|', {1391510528, 1448042092, 1449490134, 1450939624, 1509885556, 1917675447, 1995583007,
            1997578590, 1999576169, 2080811032, 2087265792, 2172063137, 2174235200, 2176409436,
            2264828334, 3835350893, 3991166014, 3995157180, 3999152338, 4161622063, 4174531584,
            4344126274, 4348470400, 4352818871, 4529656667}},
     {':', {1392902039, 1449490134, 1450939624, 1452390564, 1511395442, 1919593122, 1997578590,
            1999576169, 2001575745, 2082891843, 2089353058, 2174235200, 2176409436, 2178585845,
            2267093162, 3839186244, 3995157180, 3999152338, 4003151490, 4165783685, 4178706116,
            4348470400, 4352818871, 4357171690, 4534186324}},
     {'!', {1391514010, 1448045715, 1449493760, 1450943254, 1509889334, 1917680245, 1995588000,
            1997583588, 1999581172, 2080816238, 2087271015, 2172068572, 2174240640, 2176414881,
            2264834000, 3835360489, 3991176000, 3995167176, 3999162344, 4161632475, 4174542029,
            4344137143, 4348481280, 4352829762, 4529668000}},
     {'.', {1391514010, 1448045715, 1449493760, 1450943254, 1509889334, 1917680245, 1995588000,
            1997583588, 1999581172, 2080816238, 2087271015, 2172068572, 2174240640, 2176414881,
            2264834000, 3835360489, 3991176000, 3995167176, 3999162344, 4161632475, 4174542029,
            4344137143, 4348481280, 4352829762, 4529668000}},
     {'/', {1392905524, 1449493760, 1450943254, 1452394198, 1511399223, 1919597925, 1997583588,
            1999581172, 2001580753, 2082897054, 2089358286, 2174240640, 2176414881, 2178591296,
            2267098834, 3839195850, 3995167176, 3999162344, 4003161506, 4165794108, 4178716571,
            4348481280, 4352829762, 4357182592, 4534197668}},
     {'=', {1391514880, 1448046621, 1449494667, 1450944162, 1509890278, 1917681444, 1995589249,
            1997584838, 1999582423, 2080817540, 2087272320, 2172069931, 2174242000, 2176416242,
            2264835417, 3835362888, 3991178497, 3995169675, 3999164845, 4161635079, 4174544640,
            4344139861, 4348484000, 4352832484, 4529670834}},
     {'#', {1391514880, 1448046621, 1449494667, 1450944162, 1509890278, 1917681444, 1995589249,
            1997584838, 1999582423, 2080817540, 2087272320, 2172069931, 2174242000, 2176416242,
            2264835417, 3835362888, 3991178497, 3995169675, 3999164845, 4161635079, 4174544640,
            4344139861, 4348484000, 4352832484, 4529670834}},
     {'-', {1392906395, 1449494667, 1450944162, 1452395106, 1511400169, 1919599126, 1997584838,
            1999582423, 2001582005, 2082898357, 2089359593, 2174242000, 2176416242, 2178592659,
            2267100253, 3839198251, 3995169675, 3999164845, 4003164010, 4165796714, 4178719185,
            4348484000, 4352832484, 4357185317, 4534200505}}});
constexpr auto kDrop = std::to_array<MarkRow>(
    {{'?', {1390119936, 1446595005, 1448041600, 1449489642, 1508376667, 1915759037, 1993588742,
            1995582330, 1997577913, 2078731594, 2085179904, 2169892508, 2172062400, 2174234463,
            2262565000, 3831518074, 3987177483, 3991164660, 3995155825, 4157463188, 4170359808,
            4339785015, 4344124800, 4348468925, 4525130000}},
     {'|', {1390119936, 1446595005, 1448041600, 1449489642, 1508376667, 1915759037, 1993588742,
            1995582330, 1997577913, 2078731594, 2085179904, 2169892508, 2172062400, 2174234463,
            2262565000, 3831518074, 3987177483, 3991164660, 3995155825, 4157463188, 4170359808,
            4339785015, 4344124800, 4348468925, 4525130000}},
     {':', {1391510056, 1448041600, 1449489642, 1450939132, 1509885044, 1917674796, 1995582330,
            1997577913, 1999575491, 2080810326, 2087265084, 2172062400, 2174234463, 2176408697,
            2264827565, 3835349592, 3991164660, 3995155825, 3999150981, 4161620651, 4174530168,
            4344124800, 4348468925, 4352817394, 4529655130}},
     {'!', {1389845300, 1446309211, 1447755520, 1449203276, 1508078667, 1915380553, 1993194882,
            1995188076, 1997183265, 2078320913, 2084767949, 2169463817, 2171633280, 2173804914,
            2262118000, 3830761106, 3986389763, 3990376152, 3994366529, 4156641825, 4169535898,
            4338927633, 4343266560, 4347609827, 4524236000}},
     {'.', {1389845300, 1446309211, 1447755520, 1449203276, 1508078667, 1915380553, 1993194882,
            1995188076, 1997183265, 2078320913, 2084767949, 2169463817, 2171633280, 2173804914,
            2262118000, 3830761106, 3986389763, 3990376152, 3994366529, 4156641825, 4169535898,
            4338927633, 4343266560, 4347609827, 4524236000}},
     {'/', {1391235145, 1447755520, 1449203276, 1450652479, 1509586746, 1917295934, 1995188076,
            1997183265, 1999180448, 2080399234, 2086852717, 2171633280, 2173804914, 2175978719,
            2264380118, 3834591868, 3990376152, 3994366529, 3998360895, 4160798467, 4173705434,
            4343266560, 4347609827, 4351957437, 4528760236}},
     {'=', {1389776640, 1446237763, 1447684000, 1449131684, 1508004167, 1915285932, 1993096417,
            1995089513, 1997084603, 2078218243, 2084664960, 2169356644, 2171526000, 2173697526,
            2262006250, 3830571864, 3986192833, 3990179025, 3994169205, 4156436485, 4169329920,
            4338713287, 4343052000, 4347395052, 4524012500}},
     {'#', {1389776640, 1446237763, 1447684000, 1449131684, 1508004167, 1915285932, 1993096417,
            1995089513, 1997084603, 2078218243, 2084664960, 2169356644, 2171526000, 2173697526,
            2262006250, 3830571864, 3986192833, 3990179025, 3994169205, 4156436485, 4169329920,
            4338713287, 4343052000, 4347395052, 4524012500}},
     {'-', {1391166417, 1447684000, 1449131684, 1450580816, 1509512171, 1917201218, 1995089513,
            1997084603, 1999081687, 2080296461, 2086749625, 2171526000, 2173697526, 2175871224,
            2264268257, 3834402436, 3990179025, 3994169205, 3998163374, 4160592921, 4173499250,
            4343052000, 4347395052, 4351742448, 4528536513}}});

template <std::size_t Rows>
void ExpectMarks(const std::array<MarkRow, Rows>& rows, char separator) {
  static_assert(Rows == 9, "there are nine frame-rate marks");
  for (const MarkRow& row : rows) {
    for (std::size_t i = 0; i < kRateMarks.size(); ++i) {
      const std::string timestamp =
          std::string("12") + row.frameMark + "34:56" + separator + "17" + kRateMarks[i] + "0000";
      EXPECT_EQ(AdlToSamples(timestamp.c_str()), row.samples[i]) << timestamp;
    }
  }
}

TEST(AdlToSamples, everyPairOfMarksNonDrop) {
  ExpectMarks(kNonDrop, ':');
}
TEST(AdlToSamples, everyPairOfMarksDropBySemicolon) {
  ExpectMarks(kDrop, ';');
}
TEST(AdlToSamples, everyPairOfMarksDropByComma) {
  ExpectMarks(kDrop, ',');
}

TEST(AdlToSamples, everyOtherFrameMarkGivesTheLowestNumber) {
  constexpr std::string_view kFrameMarks = "?|:!./=#-";
  for (int code = 1; code < 256; ++code) {
    const char mark = static_cast<char>(code);
    if (kFrameMarks.find(mark) != std::string_view::npos) continue;
    const std::string timestamp = std::string("01") + mark + "02:03:04/0005";
    EXPECT_EQ(AdlToSamples(timestamp.c_str()), kLowest + 5) << "code " << code;
  }
}

TEST(AdlToSamples, everyOtherSeparatorAtPosition8IsNonDrop) {
  for (int code = 1; code < 256; ++code) {
    const char separator = static_cast<char>(code);
    const std::string timestamp = std::string("01:00:00") + separator + "00/0000";
    const std::int64_t expected = separator == ';' || separator == ',' ? 172799828 : 172972800;
    EXPECT_EQ(AdlToSamples(timestamp.c_str()), expected) << "code " << code;
  }
}

// Drawn at random once and computed by the same witness.
TEST(AdlToSamples, arbitraryStamps) {
  struct Row {
    const char* timestamp;
    std::int64_t samples;
  };
  constexpr auto kRows =
      std::to_array<Row>({{"01#14.18:17\"8768", 142830114},   {"29:18:84:17|8776", 4660061564},
                          {"93#67.26:15(6601", 10409374921},  {"43!26.50,76|3446", 6889541822},
                          {"92!53:06;45)3340", 11132887340},  {"18=03:94.83~3403", 2867052267},
                          {"55/24.82;61'4315", 6377126875},   {"43.42.61,27#1561", 15105646996},
                          {"98.22.11;24(9853", 10865888893},  {"47|85.36,83~1867", 7672980399},
                          {"58!42.51:71*1933", 20291890573},  {"34|81:24;42[2488", 5383369221},
                          {"60?63.47.81$0623", 19408369143},  {"14#17.98:32`7698", 4362252690},
                          {"44!01:48,57[0738", 6702641339},   {"16|72:78;24]3011", 2845227824},
                          {"70#71.29;91!7561", 23517477171},  {"39#41:47:66-3138", 6852818323},
                          {"37=74:05:93+3402", 6613756548},   {"18!48.26.91]8872", 3110420460},
                          {"75!99.94:04`4490", 23372368886},  {"33-25.89,26/0546", 5777276050},
                          {"56=90:30;41-4866", 9915191680},   {"89/14:08;79*7856", 30833912398},
                          {"63#83.84;53'1114", 7403044738},   {"61:38.00:35/4464", 10660950760},
                          {"96.38:74,51}3820", 34753855820},  {"30:80.12;02-8887", 5409573687},
                          {"63.86.66,39/6520", 11123966200},  {"86!70:98.06$3969", 27713514562},
                          {"90!06.87,34\"9000", 10380269451}, {"07/31.97.18}0780", 2718488552},
                          {"39/05.28.69)1255", 4695717614},   {"02#60.34.97`0055", 917678719},
                          {"86/30:11.45'9326", 9965218926},   {"50/79.25.28'7310", 5912523150},
                          {"04=57.17,54|9111", 785735136},    {"32|58:17,90~2050", 5224211701},
                          {"82=59:35,43+5131", 14337686489},  {"34#85.43:23{3704", 11754454904},
                          {"33:14:90,34&7380", 11482708180},  {"55!10:42.61-2347", 9525410060},
                          {"88=61:07,76<5139", 14748811539},  {"39-07.15;70?9700", 12406383400},
                          {"74:33:69,49!7231", 24663889162},  {"69/77.95:82!2755", 23278499972},
                          {"19:60:54.23[7544", 3053568657},   {"65:87.49.25`5505", 20279720289}});
  for (const Row& row : kRows) EXPECT_EQ(AdlToSamples(row.timestamp), row.samples) << row.timestamp;
}

TEST(AdlDifference, countsFromFirstToSecond) {
  EXPECT_EQ(AdlDifference("00.00:00:00/0000", "00.00:01:00/0000"), 48000);
}

TEST(AdlDifference, equalStampsDifferByNothing) {
  for (const Sample& row : kWorked) EXPECT_EQ(AdlDifference(row.timestamp, row.timestamp), 0);
  EXPECT_EQ(AdlDifference("", ""), 0);
}

TEST(AdlDifference, reversingTheArgumentsNegates) {
  for (const Sample& first : kWorked) {
    for (const Sample& second : kWorked) {
      const std::int64_t forward = AdlDifference(first.timestamp, second.timestamp);
      EXPECT_EQ(forward, second.samples - first.samples);
      EXPECT_EQ(AdlDifference(second.timestamp, first.timestamp), -forward);
    }
  }
}

TEST(AdlDifference, comparesStampsOfDifferentRatesAsCounts) {
  EXPECT_EQ(AdlDifference("01|00:00:00|0000", "01:00:00;00/0000"), 172799828 - 158760000);
}

TEST(AdlDifference, wrapsAt64Bits) {
  EXPECT_EQ(AdlDifference("00x00:00:00/0000", "00:00:00:00/0001"), kLowest + 1);
  EXPECT_EQ(AdlDifference("00:00:00:00/0001", "00x00:00:00/0000"),
            std::numeric_limits<std::int64_t>::max());
}

struct Shown {
  const char* text;
  const char* shown;
};

TEST(TimestampTimecode, endsBeforeTheFirstSlash) {
  constexpr auto kShown = std::to_array<Shown>({
      {"01:02:03;04/0005", "01:02:03;04"},       // the mark of 48 kHz is the slash
      {"01|02:03:04|0005", "01|02:03:04|0005"},  // no slash at another rate
      {"01/02:03:04/0005", "01"},                // the slash as a frame-rate mark
      {"/", ""},
      {"", ""},
      {"no timestamp", "no timestamp"},
      {"one/two/three", "one"},
  });
  for (const Shown& row : kShown) EXPECT_EQ(TimestampTimecode(row.text), row.shown) << row.text;
  EXPECT_EQ(TimestampTimecode(nullptr), "");
}

TEST(TimestampTimecode, hasNoLimitOfLength) {
  const std::string text(100'000, 'x');
  EXPECT_EQ(TimestampTimecode(text.c_str()), text);
  EXPECT_EQ(TimestampTimecode((text + "/tail").c_str()), text);
}

}  // namespace
}  // namespace velmora
