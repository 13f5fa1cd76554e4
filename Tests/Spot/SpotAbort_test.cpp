#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::Journal;
using test::ProjectBuilder;
using test::Stamp;

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

TEST_F(AbortTest, leavesALongFadeInTheMiddleAndDiscardsIt) {
  constexpr std::uint32_t kFrames = 16U << 20;  // of silence that the disk does not hold
  folder.Write("long.wav", test::WaveBytes()
                               .Format({.bits = 16})
                               .Claim("data", kFrames * 2)
                               .RiffSize(kFrames * 2 + 36)
                               .Bytes());
  std::filesystem::resize_file(folder.Path("long.wav"), 44 + kFrames * 2);
  Load(ProjectBuilder()
           .Source(1, "long.wav")
           .Cut({.destIn = Stamp(0),
                 .destOut = Stamp(kFrames),
                 .infade = test::FadeLength(2'000'000),
                 .outfade = test::FadeLength(2'000'000)}));
  options.doFades = 1;
  const std::vector<std::string> sources = {"long.wav"};
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade(sources), (std::vector<std::string>{"long_FadeIn.wav", "long_FadeOut.wav"}));
  const int polls = observer.polls;
  EXPECT_EQ(polls, 3 + 2 * 3) << "one for each pass with a check, and each half million samples";

  for (observer.abortAtPoll = 4; observer.abortAtPoll <= polls; ++observer.abortAtPoll) {
    SCOPED_TRACE(observer.abortAtPoll);
    for (const char* const name : {"long_FadeIn.wav", "long_FadeOut.wav"}) {
      std::filesystem::remove(folder.Path(name));
    }
    EXPECT_FALSE(Run());
    const bool inFirst = observer.abortAtPoll <= 6;
    EXPECT_EQ(FilesMade(sources),
              inFirst ? std::vector<std::string>{} : std::vector<std::string>{"long_FadeIn.wav"});
    EXPECT_EQ(observer.files.size(), inFirst ? 0U : 1U);
    EXPECT_EQ(journal.back(), "poll");
  }
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
