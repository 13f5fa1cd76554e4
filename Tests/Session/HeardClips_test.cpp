#include "Session/HeardClips.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace velmora::host {
namespace {

struct Placed {
  std::int64_t position;
  std::int64_t length;
  RegionShape shape = {};
};

Session SessionOf(const std::vector<Placed>& regions) {
  Session session;
  for (const Placed& placed : regions) {
    const std::size_t index =
        session.Place({0, placed.position, 1000, 1000 + placed.length, 1, "/a.wav", "a"});
    session.Shape(index, placed.shape);
  }
  return session;
}

/// "0:0-100 1:100-180x20>5<7": region, from, to; a crossfade before it, fade-in, fade-out.
std::string Text(const HeardClips& told) {
  std::string text;
  const auto part = [&](const char* mark, std::int64_t samples) {
    if (samples != 0) text += mark + std::to_string(samples);
  };
  for (const HeardClip& clip : told.clips) {
    text += (text.empty() ? "" : " ") + std::to_string(clip.region) + ":" +
            std::to_string(clip.position) + "-" + std::to_string(clip.end);
    part("x", clip.crossfade);
    part(">", clip.fadeIn);
    part("<", clip.fadeOut);
  }
  if (!told.remarks.empty()) {
    text += " !";
    for (const Remark& remark : told.remarks) text += std::to_string(remark.region);
  }
  return text;
}

struct Row {
  const char* rule;
  std::vector<Placed> regions;
  const char* clips;
};

class Clips : public testing::TestWithParam<Row> {};

TEST_P(Clips, tellWhatIsHeard) {
  const Session session = SessionOf(GetParam().regions);
  EXPECT_EQ(Text(ClipsOf(session, HeardSession(session), 0)), GetParam().clips);
}

INSTANTIATE_TEST_SUITE_P(
    HeardClips, Clips,
    testing::ValuesIn(std::vector<Row>{
        {"nothing", {}, ""},
        {"withoutFadesTheyAreWhatIsVisible", {{0, 100}, {40, 20}}, "0:0-40 1:40-60 0:60-100"},
        {"twoOfOneFileThatMeetStayTwo", {{0, 10}, {10, 10}}, "0:0-10 1:10-20"},
        {"fadesOverSilence", {{5, 100, {10, 20, 0}}}, "0:5-105>10<20"},
        {"aFadeAsLongAsItsRegion", {{0, 100, {100, 0, 0}}}, "0:0-100>100"},
        {"fadesThatTouchInTheMiddle", {{0, 100, {60, 40, 0}}}, "0:0-100>60<40"},
        {"aFadeInOverAnEarlierOneIsACrossfade",
         {{0, 100, {0, 20, 0}}, {80, 100, {20, 0, 0}}},
         "0:0-100 1:100-180x20"},
        {"theEarlierOneComesBackAfterIt",
         {{0, 300}, {80, 100, {20, 0, 0}}},
         "0:0-100 1:100-180x20 0:180-300"},
        {"aFadeOutOverAnEarlierOneLeadsBackToIt",
         {{0, 300}, {80, 100, {0, 30, 0}}},
         "0:0-80 1:80-180 0:180-300x30"},
        {"aCrossfadeIntoItAndOneBack",
         {{0, 300}, {80, 100, {20, 30, 0}}},
         "0:0-100 1:100-180x20 0:180-300x30"},
        {"oneFadeMeetsTheOther",
         {{0, 300}, {80, 50, {20, 30, 0}}},
         "0:0-100 1:100-130x20 0:130-300x30"},
        {"aFadeOutThenAFadeInWithoutOverlap",
         {{0, 100, {0, 20, 0}}, {100, 100, {10, 0, 0}}},
         "0:0-100<20 1:100-200>10"},
        {"aCrossfadeOverAStretchThatWasHidden",
         {{0, 100}, {20, 60}, {80, 100, {20, 0, 0}}},
         "0:0-20 1:20-80 0:80-100 2:100-180x20"},
        {"aFadeUnderALaterRegionIsNoMatter", {{0, 100, {50, 0, 0}}, {0, 60}}, "1:0-60 0:60-100"},
        // What clips cannot tell.
        {"whatIsUnderEndsInTheFadeIn", {{0, 90}, {80, 100, {20, 0, 0}}}, "0:0-90 1:90-180x10 !1"},
        {"whatIsUnderBeginsInTheFadeIn",
         {{90, 100}, {80, 100, {20, 0, 0}}},
         "1:80-180>20 0:180-190 !1"},
        {"whatIsUnderFadesItself",
         {{0, 100, {0, 30, 0}}, {80, 100, {20, 0, 0}}},
         "0:0-100 1:100-180x20 !01"},
        {"aFadeInOverAnotherToItsVeryEnd",
         {{0, 300}, {80, 100, {100, 0, 0}}},
         "0:0-80 1:80-180>100 0:180-300 !1"},
        {"aLaterRegionHidesTheFadesBeginning",
         {{0, 100, {50, 0, 0}}, {0, 20}},
         "1:0-20 0:20-100>30 !0"},
        {"aLaterRegionHidesTheFadesEnd", {{0, 100, {0, 50, 0}}, {80, 20}}, "0:0-80<30 1:80-100 !0"},
    }),
    [](const auto& row) { return row.param.rule; });

/// By region, how much of it is heard at a sample; what is silent has no entry.
using Mix = std::map<std::size_t, double>;

void AddTo(Mix& mix, std::size_t region, double factor) {
  if (factor != 0) mix[region] += factor;
}

Mix MixOf(const Session& session, const HeardSession& heard, const HeardStretch& stretch,
          std::int64_t sample) {
  Mix mix;
  double left = 1;
  for (auto layer = stretch.regions.rbegin(); layer != stretch.regions.rend(); ++layer) {
    const SessionRegion& region = session.Regions()[*layer];
    const FadeFactor factor =
        heard.Shapes()[*layer].FactorAt(sample - region.position, region.Length());
    const double share =
        static_cast<double>(factor.numerator) / static_cast<double>(factor.denominator);
    AddTo(mix, *layer, left * share);
    left *= 1 - share;
  }
  return mix;
}

Mix MixOf(const std::vector<HeardClip>& clips, std::int64_t sample) {
  Mix mix;
  for (std::size_t i = 0; i < clips.size(); ++i) {
    const HeardClip& clip = clips[i];
    const std::int64_t next =
        i + 1 < clips.size() && clips[i + 1].position == clip.end ? clips[i + 1].crossfade : 0;
    double share = 0;
    const auto ramp = [&](std::int64_t from, std::int64_t length) {
      return static_cast<double>(sample - from) / static_cast<double>(length);
    };
    if (sample >= clip.position && sample < clip.end) {
      share = 1;
      if (sample < clip.position + clip.fadeIn) share = ramp(clip.position, clip.fadeIn);
      if (sample >= clip.end - clip.fadeOut)
        share = 1 - ramp(clip.end - clip.fadeOut, clip.fadeOut);
      if (sample >= clip.end - next) share = 1 - ramp(clip.end - next, next);
    } else if (sample >= clip.position - clip.crossfade && sample < clip.position) {
      share = ramp(clip.position - clip.crossfade, clip.crossfade);
    }
    AddTo(mix, clip.region, share);
  }
  return mix;
}

std::vector<Placed> RandomRegions(std::mt19937& random) {
  const auto upTo = [&](int most) {
    return static_cast<std::int64_t>(random() % static_cast<unsigned>(most + 1));
  };
  std::vector<Placed> regions(static_cast<std::size_t>(1 + upTo(4)));
  for (Placed& region : regions) {
    region = {upTo(30), 1 + upTo(20), {}};
    if (upTo(2) != 0) region.shape.fadeIn = upTo(6);
    if (upTo(2) != 0) region.shape.fadeOut = upTo(6);
  }
  return regions;
}

void ExpectInOrder(const std::vector<HeardClip>& clips) {
  for (std::size_t i = 0; i < clips.size(); ++i) {
    EXPECT_GT(clips[i].Length(), 0);
    EXPECT_GE(clips[i].fadeIn, 0);
    EXPECT_GE(clips[i].fadeOut, 0);
    EXPECT_LE(clips[i].fadeIn + clips[i].fadeOut, clips[i].Length());
    if (i == 0) {
      EXPECT_EQ(clips[i].crossfade, 0);
      continue;
    }
    const HeardClip& before = clips[i - 1];
    EXPECT_GE(clips[i].position, before.end);
    if (clips[i].crossfade == 0) continue;
    EXPECT_EQ(clips[i].position, before.end);
    EXPECT_LE(before.fadeIn + clips[i].crossfade, before.Length());
  }
}

TEST(HeardClips, areCutToTheirFilesWhereNoRampIsTouched) {
  const struct {
    const char* rule;
    std::int64_t start, length, frames;
    RegionShape shape;
    const char* clips;
  } rows[] = {
      {"inside", 5, 100, 200, {}, "0:1000-1100"},
      {"runsPast", 150, 100, 200, {}, "0:1000-1050"},
      {"beginsBefore", -30, 100, 200, {}, "0:1030-1100"},
      {"both", -30, 300, 200, {}, "0:1030-1230"},
      {"whollyAfter", 200, 100, 200, {}, ""},
      {"whollyBefore", -100, 100, 200, {}, ""},
      {"fadeOutStays", 150, 100, 200, {0, 10, 0}, "0:1000-1100<10"},
      {"fadeInStays", -30, 100, 200, {10, 0, 0}, "0:1000-1100>10"},
      {"fadeAtTheOtherEnd", 150, 100, 200, {10, 0, 0}, "0:1000-1050>10"},
      {"fadeBeyondTheFile", 195, 100, 200, {10, 0, 0}, "0:1000-1100>10"},
      {"emptyFile", 0, 100, 0, {}, ""},
  };
  for (const auto& row : rows) {
    Session session;
    session.Shape(session.Place({0, 1000, row.start, row.start + row.length, 1, "/a.wav", "a"}),
                  row.shape);
    HeardClips told = ClipsOf(session, HeardSession(session), 0);
    CutToFiles(
        session, [&](const SessionRegion&) { return std::optional(row.frames); }, told.clips);
    EXPECT_EQ(Text(told), row.clips) << row.rule;
  }
}

TEST(HeardClips, aCrossfadeKeepsBothItsClips) {
  Session session = SessionOf({{0, 100}, {80, 100, {20, 0, 0}}});  // from sample 1000 of the file
  HeardClips told = ClipsOf(session, HeardSession(session), 0);
  ASSERT_EQ(Text(told), "0:0-100 1:100-180x20");
  CutToFiles(
      session, [](const SessionRegion&) { return std::optional<std::int64_t>(1050); }, told.clips);
  EXPECT_EQ(Text(told), "0:0-100 1:100-130x20");
  CutToFiles(
      session, [](const SessionRegion&) { return std::nullopt; }, told.clips);
  EXPECT_EQ(Text(told), "0:0-100 1:100-130x20");
}

TEST(HeardClips, withoutRemarksSoundAsTheSession) {
  std::mt19937 random(8);
  std::size_t told = 0, crossfades = 0;
  for (int round = 0; round < 6000; ++round) {
    const Session session = SessionOf(RandomRegions(random));
    const HeardSession heard(session);
    const HeardClips clips = ClipsOf(session, heard, 0);
    ExpectInOrder(clips.clips);
    if (HasFailure()) FAIL() << "round " << round << ": " << Text(clips);
    if (!clips.remarks.empty()) continue;
    ++told;
    for (const HeardClip& clip : clips.clips) crossfades += clip.crossfade > 0 ? 1 : 0;
    std::map<std::int64_t, Mix> law;
    heard.Walk(0, [&](const HeardStretch& stretch) {
      for (std::int64_t at = stretch.position; at < stretch.end; ++at) {
        law[at] = MixOf(session, heard, stretch, at);
      }
      return true;
    });
    for (std::int64_t at = 0; at < 60; ++at) {
      const Mix mix = MixOf(clips.clips, at);
      ASSERT_EQ(mix.size(), law[at].size()) << "round " << round << ", " << at << Text(clips);
      for (const auto& [region, share] : law[at]) {
        ASSERT_NEAR(mix.count(region) != 0 ? mix.at(region) : -1, share, 1e-12)
            << "round " << round << ", " << at << ": " << Text(clips);
      }
    }
  }
  EXPECT_GT(told, 1500u);
  EXPECT_GT(crossfades, 300u);
}

}  // namespace
}  // namespace velmora::host
