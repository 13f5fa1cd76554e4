#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "BounceFixture.h"

namespace velmora::bounce {
namespace {

/// A session, held against a renderer that goes by the law sample by sample.
struct SessionRow {
  const char* rule;
  std::function<void(BounceFixture&)> fill;
};

class BouncedSessions : public BounceFixture,
                        public testing::WithParamInterface<std::tuple<SessionRow, BounceDepth>> {};

TEST_P(BouncedSessions, soundAsTheLawHasIt) {
  const auto& [row, depth] = GetParam();
  row.fill(*this);
  const TargetOutcome outcome = Bounce(kBounceKind, folder_.Path("out.wav"), depth);
  ASSERT_EQ(outcome.trouble, "");
  const std::string expected = Expected(depth);
  ASSERT_NE(expected.find_first_not_of('\0'), std::string::npos) << "the session is silent";
  EXPECT_TRUE(AudioOf(folder_.Path("out.wav")) == expected);
}

TEST_P(BouncedSessions, tracksAreThoseOfTheOneFile) {
  const auto& [row, depth] = GetParam();
  row.fill(*this);
  ASSERT_EQ(Bounce(kBounceTracksKind, folder_.Path("tracks"), depth).trouble, "");
  for (const std::int64_t track : session_.Tracks()) {
    const std::string name = "tracks/Track " + std::to_string(track + 1) + ".wav";
    EXPECT_TRUE(AudioOf(folder_.Path(name)) == Packed(Law(track, Width(track)), depth)) << name;
  }
}

const SessionRow kSessions[] = {
    {"oneRegion", [](auto& s) { s.Place(0, 1000, s.MakeSource("a", {24}, 500), 0, 500); }},
    {"aPartOfAFile", [](auto& s) { s.Place(0, 7, s.MakeSource("a", {24}, 500), 123, 200); }},
    {"silenceBetween",
     [](auto& s) {
       const TestSource a = s.MakeSource("a", {24}, 500);
       s.Place(0, 100, a, 0, 500);
       s.Place(0, 200000, a, 100, 300);
     }},
    {"moreThanOneBlock",
     [](auto& s) { s.Place(0, 5, s.MakeSource("a", {24}, 200000), 3, 199000); }},
    {"oneSampleBeyondABlock",
     [](auto& s) { s.Place(0, 0, s.MakeSource("a", {24}, 65537), 0, 65537); }},
    {"aGapOfOneTrackInALaterBlock",
     [](auto& s) {
       const TestSource a = s.MakeSource("a", {24}, 140000);
       s.Place(0, 0, a, 0, 140000);
       s.Place(1, 0, a, 100, 66000);
       s.Place(1, 80000, a, 100, 50000);
     }},
    {"laterRegionsHideEarlierOnes",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 900), 0, 900);
       s.Place(0, 300, s.MakeSource("b", {24}, 900), 50, 200);
     }},
    {"everyDepth",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {8}, 400), 0, 400);
       s.Place(1, 0, s.MakeSource("b", {16}, 400), 0, 400);
       s.Place(2, 0, s.MakeSource("c", {24}, 400), 0, 400);
       s.Place(3, 0, s.MakeSource("d", {32}, 400), 0, 400);
       s.Place(4, 0, s.MakeSource("e", {32, 1, true}, 400), 0, 400);
       s.Place(5, 0, s.MakeSource("f", {64, 1, true}, 400), 0, 400);
     }},
    {"narrowRegionsRepeatOnWideTracks",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24, 5}, 300), 0, 300);
       s.Place(0, 300, s.MakeSource("b", {24, 2}, 300), 0, 300);
       s.Place(0, 600, s.MakeSource("c", {16, 1}, 300), 0, 300);
       s.Place(0, 900, s.MakeSource("d", {32, 3, true}, 300), 0, 300);
     }},
    {"tracksOfDifferentWidths",
     [](auto& s) {
       s.Place(3, 0, s.MakeSource("a", {24, 2}, 300), 0, 300);
       s.Place(1, 100, s.MakeSource("b", {24, 1}, 300), 0, 300);
       s.Place(9, 50, s.MakeSource("c", {16, 4}, 300), 0, 300);
     }},
    {"aRegionPastItsFileIsSilentThere",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 1000), 0, 1000);
       s.Place(0, 100, s.MakeSource("b", {24}, 100), 20, 300);
       s.Place(0, 600, s.MakeSource("c", {16}, 100), -30, 60);
     }},
    {"fadesOverSilence",
     [](auto& s) {
       s.Place(0, 10, s.MakeSource("a", {24}, 1000), 0, 1000, {300, 200, 0});
       s.Place(1, 10, s.MakeSource("b", {16, 2}, 1000), 0, 1000, {1, 1, 0});
       s.Place(2, 10, s.MakeSource("c", {32, 1, true}, 1000), 0, 1000, {0, 999, 0});
     }},
    {"aFadeInCrossfades",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 500), 0, 500, {0, 120, 0});
       s.Place(0, 380, s.MakeSource("b", {24}, 500), 0, 500, {120, 0, 0});
     }},
    {"aFadeOutLetsTheEarlierOneThrough",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 900), 0, 900, {400, 400, 0});
       s.Place(0, 200, s.MakeSource("b", {16}, 500), 0, 500, {70, 90, 0});
     }},
    {"threeDeepOfDifferentWidths",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24, 2}, 600), 0, 600, {50, 500, 2});
       s.Place(0, 50, s.MakeSource("b", {16, 1}, 600), 0, 500, {300, 200, -3});
       s.Place(0, 100, s.MakeSource("c", {32, 2, true}, 600), 0, 400, {200, 100, 0.5});
     }},
    {"fadesLongerThanTheirRegion",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 500), 0, 500, {300, 400, 0});
     }},
    {"gainClips",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 500), 0, 500, {0, 0, -6.5});
       s.Place(0, 500, s.MakeSource("b", {16, 2}, 500), 0, 500, {0, 0, 12});
       s.Place(1, 0, s.MakeSource("c", {32, 1, true}, 500), 0, 500, {0, 0, 6});
     }},
    {"fadesOverAHoleAndPastAFile",
     [](auto& s) {
       s.Place(0, 0, s.MakeSource("a", {24}, 100), 0, 400, {60, 350, 0});
       s.Place(0, 250, s.MakeSource("b", {24}, 300), -20, 300, {50, 20, 3});
     }},
};

std::string NameOf(const testing::TestParamInfo<std::tuple<SessionRow, BounceDepth>>& info) {
  static const char* const kDepths[] = {"16", "24", "32f"};
  return std::get<0>(info.param).rule +
         std::string(kDepths[static_cast<std::size_t>(std::get<1>(info.param))]);
}

INSTANTIATE_TEST_SUITE_P(Bounce, BouncedSessions,
                         testing::Combine(testing::ValuesIn(kSessions),
                                          testing::Values(BounceDepth::Bits16, BounceDepth::Bits24,
                                                          BounceDepth::Float32)),
                         NameOf);

}  // namespace
}  // namespace velmora::bounce
