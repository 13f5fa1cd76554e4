#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "BounceFixture.h"

namespace velmora::bounce {
namespace {

class OddRegions : public BounceFixture {
 protected:
  [[nodiscard]] TargetOutcome BounceIt(BounceDepth depth = BounceDepth::Bits24) const {
    return Bounce(kBounceKind, folder_.Path("out.wav"), depth);
  }
  /// How a region is named. `place` is its track and its timecode.
  static std::string Named(int region, const char* place) {
    return "region " + std::to_string(region) + " \"name\" (" + place + "): ";
  }
};

TEST_F(OddRegions, anotherRateIsLeftOutAndWhatLiesUnderItIsHeard) {
  record_.firstTrackNumber = 5;
  const TestSource fits = MakeSource("fits.wav", {24}, 500);
  const TestSource other = MakeSource("other.wav", {24, 2, false, 44100}, 500);
  Place(1, 1000, fits, 0, 500);
  Place(1, 1100, other, 0, 200);
  Place(2, 1000, other, 0, 500);
  const TargetOutcome outcome = BounceIt();
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.leftOut, (std::vector<std::string>{
                                 Named(1, "track 6, 00:00:00:00") + other.path +
                                     " is of 44100 Hz and the session of 48000 Hz",
                                 Named(2, "track 7, 00:00:00:00") + other.path +
                                     " is of 44100 Hz and the session of 48000 Hz",
                             }));
  EXPECT_EQ(outcome.notes, std::vector<std::string>{});
  // The track that lost its only region keeps its place, with one channel.
  std::vector<double> expected;
  for (const double sample : fits.samples) expected.insert(expected.end(), {sample, 0.0});
  EXPECT_TRUE(AudioOf(folder_.Path("out.wav")) == Packed(expected, BounceDepth::Bits24));
}

TEST_F(OddRegions, aFadeThatALeftOutRegionWouldHaveCoveredIsHeard) {
  const TestSource fits = MakeSource("fits.wav", {24}, 500);
  const TestSource other = MakeSource("other.wav", {24, 1, false, 96000}, 500);
  Place(0, 0, fits, 0, 500, {0, 100, 0});
  const std::string alone = Expected(BounceDepth::Bits24);
  Place(0, 400, other, 0, 100, {100, 0, 0});
  EXPECT_EQ(BounceIt().leftOut.size(), 1u);
  EXPECT_TRUE(AudioOf(folder_.Path("out.wav")) == alone);
}

TEST_F(OddRegions, aSourceThatIsGoneOrBrokenIsLeftOut) {
  const TestSource fits = MakeSource("fits.wav", {24}, 500);
  TestSource gone = fits, broken = fits, folder = fits;
  gone.path = folder_.Path("gone.wav");
  broken.path = folder_.Write("broken.wav", "no sound at all");
  folder.path = folder_.Path();
  Place(0, 0, fits, 0, 500);
  const std::string alone = Expected(BounceDepth::Bits24);
  Place(0, 10, gone, 0, 50);
  Place(0, 100, broken, 0, 50);
  Place(0, 200, folder, 0, 50);
  const TargetOutcome outcome = BounceIt();
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.leftOut, (std::vector<std::string>{
                                 Named(1, "track 1, 00:00:00:00") + gone.path +
                                     " cannot be read: No such file or directory",
                                 Named(2, "track 1, 00:00:00:00") + broken.path +
                                     " cannot be read: this is no sound file, or a damaged one",
                                 Named(3, "track 1, 00:00:00:00") + folder.path +
                                     " cannot be read: this is a folder",
                             }));
  EXPECT_TRUE(AudioOf(folder_.Path("out.wav")) == alone);
}

TEST_F(OddRegions, whatIsHeardOtherwiseThanItIsPlacedIsNamed) {
  const TestSource a = MakeSource("a.wav", {24}, 500);
  const TestSource eight = MakeSource("eight.wav", {8}, 500);
  Place(0, 0, a, 100, 500);
  Place(0, 700, a, -5, 105);
  Place(0, 900, a, 7, 0);
  Place(0, 1000, a, 0, 100, {70, 80, 0});
  Place({0, 2000, 0, 500, 1, eight.path, "name", {}, RegionOrigin()});
  Place({1, 2000, 0, 500, 1, eight.path, "name", {}, RegionOrigin{0, 0, {}, RegionPiece::FadeIn}});
  Place({2, 2000, 0, 500, 1, a.path, "", {}, RegionOrigin{0, 0, {}, RegionPiece::FadeIn}});
  const TargetOutcome outcome = BounceIt();
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.leftOut, std::vector<std::string>{});
  const std::string past =
      "it runs past " + a.path + ", which has 500 samples; the rest is silence";
  EXPECT_EQ(
      outcome.notes,
      (std::vector<std::string>{
          Named(0, "track 1, 00:00:00:00") + past,
          Named(1, "track 1, 00:00:00:00") + "it begins 5 samples before " + a.path +
              "; these are silence",
          Named(2, "track 1, 00:00:00:00") + "it has no length and is left out",
          Named(5, "track 2, 00:00:00:01") + "it is a fade piece of 8 bits, " + eight.path +
              ", whose samples have signs where a wave file has none; it does not sound right",
          Named(3, "track 1, 00:00:00:00") +
              "its fade-out of 80 samples is longer than what it has; it is cut to 30",
      }));
}

TEST_F(OddRegions, aSessionThatNoBounceCanTellIsRefused) {
  const TestSource a = MakeSource("a.wav", {24}, 500);
  const TestSource other = MakeSource("other.wav", {24, 1, false, 44100}, 500);
  struct Row {
    const char* rule;
    std::function<void()> fill;
    const char* cause;
  };
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  const Row rows[] = {
      {"negative", [&] { Place(0, -7, a, 0, 500); },
       "the session begins at sample -7, before zero, and a Broadcast Wave file cannot say so; "
       "spot it at a later position"},
      {"noRegion", [] {}, "no region of the session has a length"},
      {"noLength", [&] { Place(0, 5, a, 0, 0); }, "no region of the session has a length"},
      {"nothingToPlay", [&] { Place(0, 5, other, 0, 10); },
       "of no region of the session the audio can be played"},
      {"tooLong",
       [&] {
         Place(0, 0, a, 0, 10);
         Place(0, kMost - 20, a, 0, 10);
       },
       "a wave file cannot hold 9223372036854775797 samples of every channel"},
  };
  for (const Row& row : rows) {
    session_ = {};
    row.fill();
    const TargetOutcome outcome = BounceIt();
    EXPECT_EQ(outcome.trouble, folder_.Path("out.wav") + " is not made: " + row.cause) << row.rule;
    EXPECT_EQ(outcome.leftOut.size(), std::string(row.rule) == "nothingToPlay" ? 1u : 0u);
    EXPECT_EQ(Bounce(kBounceTracksKind, folder_.Path("tracks"), BounceDepth::Bits16).trouble,
              folder_.Path("tracks") + " is not made: " + row.cause)
        << row.rule;
    EXPECT_EQ(Names(), (std::vector<std::string>{"a.wav", "other.wav"})) << row.rule;
  }
}

TEST_F(OddRegions, aSessionWithoutARateIsRefused) {
  Place(0, 0, MakeSource("a.wav", {24}, 500), 0, 500);
  for (const float rate : {0.0F, -48000.0F, std::numeric_limits<float>::quiet_NaN(), 3e9F,
                           std::numeric_limits<float>::infinity()}) {
    rates_.sampleRate = rate;
    EXPECT_EQ(BounceIt().trouble, folder_.Path("out.wav") +
                                      " is not made: the session has no sample rate that a wave "
                                      "file could have");
  }
}

/// A pulled rate is told to the whole number, as wave files do.
TEST_F(OddRegions, aRateBetweenWholeNumbersIsTheNearest) {
  rates_.sampleRate = 47952.047F;
  Place(0, 0, MakeSource("a.wav", {24, 1, false, 47952}, 500), 0, 500);
  const TargetOutcome outcome = BounceIt();
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.leftOut, std::vector<std::string>{});
  const WaveFile wave = ParseWave(test::TemporaryFolder::Read(folder_.Path("out.wav")));
  EXPECT_EQ(NumberAt(wave.body.at("fmt "), 4, 4), 47952u);
}

}  // namespace
}  // namespace velmora::bounce
