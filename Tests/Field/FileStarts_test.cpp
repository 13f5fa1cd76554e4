#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Field/FieldProject.h"

namespace velmora::field {
namespace {

/// A second at 25 frames and 48 kHz, written as a time.
std::string At(int seconds) {
  const auto two = [](int number) {
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
  };
  return two(seconds / 3600) + "." + two(seconds / 60 % 60) + "." + two(seconds % 60) + ".00/0000";
}

struct CutRow {
  int in;      ///< seconds
  int length;  ///< seconds
  const char* status = "_";
};

std::unique_ptr<Project> OneSource(const std::string& start, const std::vector<CutRow>& cuts) {
  std::string adl = "<ADL>\n<SOURCE_INDEX>\n(Index) 1 (F) \"x.wav\" _ " + start +
                    " _\n</SOURCE_INDEX>\n<EVENT_LIST>\n";
  for (const CutRow& cut : cuts) {
    adl += "(Entry) 1 (Cut) I 1 1 1 " + At(cut.in) + " " + At(0) + " " + At(cut.length) + " " +
           cut.status + "\n";
  }
  return ReadProject(adl + "</EVENT_LIST>\n</ADL>\n", "/nowhere/p.adl", {});
}

constexpr std::int64_t kSecond = 48000;

struct StartRow {
  const char* rule;
  std::string given;
  std::vector<CutRow> cuts;
  std::optional<std::int64_t> timeReference;  ///< seconds
  std::int64_t start;                         ///< seconds
  bool decided;
};

/// The file has 10 seconds at 48 kHz.
TEST(DecideFileStarts, byTheCutsThatLieInside) {
  const std::vector<StartRow> rows = {
      {"given, and the cut fits", At(100), {{103, 2}}, 100, 100, false},
      {"given, and nothing else fits either", At(100), {{300, 2}}, 200, 100, false},
      {"given, and one of the cuts fits", At(100), {{103, 2}, {203, 2}}, 200, 100, false},
      {"given wrongly: all fit under the reference", At(100), {{203, 2}, {204, 2}}, 200, 200, true},
      {"given wrongly: all fit under 0", At(100), {{3, 2}, {4, 2}}, 200, 0, true},
      {"given wrongly, but one fits nowhere else", At(100), {{203, 2}, {3, 2}}, 200, 100, false},
      {"given wrongly, no bext", At(100), {{3, 2}}, {}, 0, true},
      {"given without any cut", At(100), {}, 200, 100, false},
      {"not given: the reference", "_", {{203, 2}}, 200, 200, true},
      {"not given: 0", "_", {{3, 2}}, 200, 0, true},
      {"not given: more fit under 0", "_", {{3, 2}, {4, 2}, {203, 2}}, 200, 0, true},
      {"not given: more fit under the reference",
       "_",
       {{3, 2}, {204, 2}, {203, 2}},
       200,
       200,
       true},
      {"not given: equal", "_", {{3, 2}, {203, 2}}, 200, 200, true},
      {"not given: equal because both are the same", "_", {{3, 2}}, 1, 1, true},
      {"not given: none fits", "_", {{300, 2}}, 200, 0, true},
      {"not given: no bext", "_", {{203, 2}}, {}, 0, true},
      {"not given, no cut", "_", {}, 200, 0, true},
      {"no timestamp is not given", "x", {{203, 2}}, 200, 200, true},
      {"a cut to the last sample fits", "_", {{200, 10}}, 200, 200, true},
      {"one past it does not", "_", {{200, 11}}, 200, 0, true},
      {"cuts that are off do not count", "_", {{3, 2, "M"}, {4, 2, "D"}, {203, 2}}, 200, 200, true},
      {"unless all are", "_", {{3, 2, "M"}, {4, 2, "D"}, {203, 2, "E"}}, 200, 0, true},
  };
  for (const StartRow& row : rows) {
    SCOPED_TRACE(row.rule);
    const auto project = OneSource(row.given, row.cuts);
    ASSERT_EQ(project->sources.size(), 1U);
    SourceAudio audio{48000, 10 * kSecond, {}};
    if (row.timeReference) audio.timeReference = *row.timeReference * kSecond;
    DecideFileStarts(*project, {audio});
    EXPECT_EQ(project->sources[0].fileStart, row.start * kSecond);
    EXPECT_EQ(project->sources[0].startDecided, row.decided);
    if (!row.cuts.empty()) {
      EXPECT_EQ(project->FileOffset(project->events[0]), (row.cuts[0].in - row.start) * kSecond);
    }
  }
}

TEST(DecideFileStarts, ofAFileThatNobodyKnows) {
  auto project = OneSource("_", {{203, 2}});
  DecideFileStarts(*project, {std::nullopt});
  EXPECT_EQ(project->sources[0].fileStart, 0);
  EXPECT_TRUE(project->sources[0].startDecided);

  project = OneSource(At(200), {{3, 2}});
  DecideFileStarts(*project, {std::nullopt});
  EXPECT_EQ(project->sources[0].fileStart, 200 * kSecond);
  EXPECT_FALSE(project->sources[0].startDecided);
}

TEST(DecideFileStarts, ofAFileAtAnotherRate) {
  const auto project = OneSource("_", {{203, 2}});
  DecideFileStarts(*project, {SourceAudio{96000, 960000, 200 * 96000}});
  EXPECT_EQ(project->sources[0].fileStart, 200 * kSecond);
}

TEST(DecideFileStarts, ofAnAbsurdTimeReference) {
  const auto project = OneSource("_", {{3, 2}});
  DecideFileStarts(*project, {SourceAudio{48000, 480000, std::int64_t{-0x7FFFFFFFFFFFFFFF}}});
  EXPECT_EQ(project->sources[0].fileStart, 0);
}

}  // namespace
}  // namespace velmora::field
