#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::Journal;

/// The abort at each poll: the journal is the full run's up to that poll.
class AbortTest : public test::SpotWorkerTest {
 protected:
  void ExpectEveryAbortToCutTheFullRunShort(std::size_t expectedPolls) {
    ASSERT_TRUE(Run());
    const Journal full = journal;
    const auto polls =
        static_cast<std::size_t>(std::count(full.begin(), full.end(), std::string("poll")));
    ASSERT_EQ(polls, expectedPolls);
    for (int poll = 1; poll <= static_cast<int>(polls); ++poll) {
      for (const std::string& made : FilesMade({"take.wav"})) {
        std::filesystem::remove(folder.Path(made));  // so that names come out alike
      }
      ReleaseRenderedFiles(*project);
      observer.abortAtPoll = poll;
      EXPECT_FALSE(Run());
      Journal expected;
      for (int seen = 0; seen < poll;) {
        expected.push_back(full.at(expected.size()));
        if (expected.back() == "poll") ++seen;
      }
      EXPECT_EQ(journal, expected) << "aborted at poll " << poll;
    }
  }
};

TEST_F(AbortTest, endsARunOfThreePassesAtEachPoll) {
  LoadThreeEvents();
  ExpectEveryAbortToCutTheFullRunShort(6);
}

TEST_F(AbortTest, endsARunOfFivePassesAtEachPoll) {
  LoadThreeEvents();
  options.doGain = options.doFades = 1;
  ExpectEveryAbortToCutTheFullRunShort(12);
}

TEST_F(AbortTest, endsARunBetweenTheAttemptsOfARegion) {
  LoadThreeEvents();
  RefuseSends(2, 4);
  ExpectEveryAbortToCutTheFullRunShort(9);
}

TEST_F(AbortTest, waitsForAllAttemptsOfTheFadesOfAnEvent) {
  LoadThreeEvents();
  options.doFades = 1;
  RefuseSends(3, 82);  // the out-fade of the first event, all 80 attempts
  observer.abortAtPoll = 8;
  EXPECT_FALSE(Run());
  EXPECT_EQ(host.messages.size(), 82U);
  EXPECT_EQ(journal.back(), "poll");
  EXPECT_EQ(observer.reports.back(), 10) << "the step of the next event is counted, not reported";
}

TEST_F(AbortTest, leavesFilesAndRenderedFiles) {
  LoadThreeEvents();
  options.doGain = 1;
  observer.abortAtPoll = 5;
  EXPECT_FALSE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), (std::vector<std::string>{"take_Gain.wav"}));
  ASSERT_NE(project->events[0].renderedFile, nullptr);
  EXPECT_EQ(project->events[0].renderedFile->GetPath(), folder.Path("take_Gain.wav"));
}

TEST_F(AbortTest, nextRunStartsAnew) {
  LoadThreeEvents();
  observer.abortAtPoll = 2;
  EXPECT_FALSE(Run());
  observer.abortAtPoll = 0;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, -1}));
}

}  // namespace
}  // namespace velmora
