#include "Ardour/ArdourPlan.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "Support/TargetMaterial.h"

namespace velmora::ardour {
namespace {

class ArdourPlanning : public testing::Test, public test::TargetMaterial {
 protected:
  [[nodiscard]] ArdourPlan Plan() const {
    const host::HeardSession heard(session);
    return ArdourPlan({session, heard, rates, record});
  }
};

TEST_F(ArdourPlanning, whatArdourWouldTakeWithoutAWordIsLeftOut) {
  const std::string wave = Wave("a.wav");
  const struct {
    const char* rule;
    std::string path;
    std::int64_t position, start, length;
    const char* cause;
  } rows[] = {
      {"before the timeline", wave, -1, 0, 10, "before the start"},
      {"beyond the timeline", wave, std::numeric_limits<std::int64_t>::max() - 5, 0, 10,
       "beyond Ardour's timeline"},
      {"after the file's end", wave, 0, 1000, 10, "no part of it"},
      {"before the file's start", wave, 0, -10, 10, "no part of it"},
      {"an empty file", Wave("empty.wav", 0), 0, -5, 10, "has no samples"},
      {"another rate", Wave("b.wav", 100, 44100), 0, 0, 10, "44100 Hz"},
      {"no file", folder.Path("none.wav"), 0, 0, 10, "none.wav"},
      {"no audio", folder.Write("text.wav", "text"), 0, 0, 10, "text.wav"},
      {"a folder", folder.Path(), 0, 0, 10, "cannot be used"},
      {"a name that XML cannot tell", Wave("\x01.wav"), 0, 0, 10, "cannot tell"},
      {"a name that is no text", Wave("\xff.wav"), 0, 0, 10, "cannot tell"},
  };
  for (const auto& row : rows) Place(row.path, row.position, row.length, {}, 0, row.start);
  Place(wave, 0, 10);
  const ArdourPlan plan = Plan();
  EXPECT_EQ(plan.Trouble(), "");
  EXPECT_EQ(plan.Regions(), 1u);
  ASSERT_EQ(plan.LeftOut().size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_NE(plan.LeftOut()[i].find(rows[i].cause), std::string::npos)
        << rows[i].rule << ": " << plan.LeftOut()[i];
  }
}

TEST_F(ArdourPlanning, aRegionIsCutToItsFileAndNamed) {
  Place(Wave("a.wav"), 500, 1300, {}, 0, -100);
  const ArdourPlan plan = Plan();
  const PlannedRegion& region = plan.Tracks().at(0).regions.at(0);
  EXPECT_EQ(region.position, 600);
  EXPECT_EQ(region.start, 0);
  EXPECT_EQ(region.length, 1000);
  EXPECT_EQ(plan.Notes().size(), 2u);
  EXPECT_TRUE(plan.LeftOut().empty());
}

TEST_F(ArdourPlanning, fadesKeepTheirPlaceInWhatIsLeft) {
  const struct {
    const char* rule;
    std::int64_t start, length;
    host::RegionShape shape;
    Ramp fadeIn, fadeOut;
  } rows[] = {
      {"whole", 0, 1000, {100, 50, 0}, {100, 0, 1}, {50, 1, 0}},
      {"start cut within the fade", -25, 1025, {100, 0, 0}, {75, 0.25, 1}, {}},
      {"start cut after the fade", -200, 1200, {100, 0, 0}, {}, {}},
      {"end cut within the fade", 0, 1010, {0, 40, 0}, {}, {30, 1, 0.25}},
      {"end cut before the fade", 0, 1100, {0, 40, 0}, {}, {}},
      {"nothing but fade is left",
       -100,
       1200,
       {1200, 0, 0},
       {1000, 100.0 / 1200, 1100.0 / 1200},
       {}},
  };
  const std::string wave = Wave("a.wav");
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    Place(wave, 0, rows[i].length, rows[i].shape, static_cast<std::int64_t>(i), rows[i].start);
  }
  const ArdourPlan plan = Plan();
  const auto expectRamp = [](const Ramp& ramp, const Ramp& expected, const char* rule) {
    EXPECT_EQ(ramp.length, expected.length) << rule;
    EXPECT_DOUBLE_EQ(ramp.from, expected.from) << rule;
    EXPECT_DOUBLE_EQ(ramp.to, expected.to) << rule;
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const PlannedRegion& region = plan.Tracks().at(i).regions.at(0);
    expectRamp(region.fadeIn, rows[i].fadeIn, rows[i].rule);
    expectRamp(region.fadeOut, rows[i].fadeOut, rows[i].rule);
  }
}

TEST_F(ArdourPlanning, silenceHidesWhereAFileIsTooShort) {
  const std::string wave = Wave("a.wav"), tiny = Wave("tiny.wav", 1);
  Place(Wave("long.wav", 4500), 0, 4500);
  Place(wave, 500, 3500);               // two whole files and a half are missing
  Place(wave, 5000, 1200);              // nothing lies under it
  Place(tiny, 100, 200, {}, 0);         // too short to hide anything with
  Place(wave, 3800, 300, {}, 0, 1000);  // all of it is missing
  Place(wave, 9000, 300, {}, 0, 1000);  // the same where nothing lies under it
  const ArdourPlan plan = Plan();
  const std::vector<PlannedRegion>& regions = plan.Tracks().at(0).regions;
  const struct {
    std::int64_t position, length;
    double gain;
  } rows[] = {{0, 4500, 1},   {1500, 1000, 0}, {2500, 1000, 0}, {3500, 500, 0},
              {500, 1000, 1}, {5000, 1000, 1}, {100, 1, 1},     {3800, 300, 0}};
  ASSERT_EQ(regions.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(regions[i].position, rows[i].position) << i;
    EXPECT_EQ(regions[i].length, rows[i].length) << i;
    EXPECT_EQ(regions[i].gain, rows[i].gain) << i;
  }
  EXPECT_EQ(plan.End(), 6200);
  EXPECT_EQ(plan.LeftOut().size(), 2u);
  EXPECT_NE(plan.Notes().at(2).find("too short to hide"), std::string::npos) << plan.Notes()[2];
}

TEST_F(ArdourPlanning, oddRegionsAreNamed) {
  const std::string wave = Wave("a.wav");
  Place(wave, 0, 0);
  Place(wave, 0, -5);
  Place(wave, 0, 1);
  const ArdourPlan plan = Plan();
  EXPECT_EQ(plan.Regions(), 1u);
  ASSERT_EQ(plan.Notes().size(), 3u);
  EXPECT_NE(plan.Notes()[0].find("no length"), std::string::npos);
  EXPECT_NE(plan.Notes()[1].find("no length"), std::string::npos);
  EXPECT_NE(plan.Notes()[2].find("one sample"), std::string::npos);
}

TEST_F(ArdourPlanning, tracksHaveTheirNumbersAndTheWidthOfTheirWidestRegion) {
  record.firstTrackNumber = 5;
  Place(Wave("mono.wav"), 0, 10, {}, 0);
  Place(Wave("six.wav", 100, 48000, 6), 0, 10, {}, 3);
  Place(Wave("mono2.wav"), 50, 10, {}, 3);
  Place(Wave("other.wav", 100, 44100), 0, 10, {}, 4);
  const ArdourPlan plan = Plan();
  ASSERT_EQ(plan.Tracks().size(), 3u);
  EXPECT_EQ(plan.Tracks()[0].name, "Track 5");
  EXPECT_EQ(plan.Tracks()[0].channels, 1);
  EXPECT_EQ(plan.Tracks()[1].name, "Track 8");
  EXPECT_EQ(plan.Tracks()[1].channels, 6);
  EXPECT_EQ(plan.Tracks()[2].name, "Track 9");
  EXPECT_TRUE(plan.Tracks()[2].regions.empty());
}

TEST_F(ArdourPlanning, aFadeOutIsKeptWhereTheRegionThatCoversItIsLeftOut) {
  const std::string wave = Wave("a.wav");
  Place(wave, 0, 1000, {0, 100, 0});
  Place(Wave("other.wav", 1000, 44100), 900, 500, {100, 0, 0});
  EXPECT_EQ(Plan().Tracks().at(0).regions.at(0).fadeOut.length, 100);
}

TEST_F(ArdourPlanning, withoutARegionOrARateThereIsNoSession) {
  Place(folder.Path("none.wav"), 0, 10);
  EXPECT_NE(Plan().Trouble(), "");
  rates.sampleRate = std::numeric_limits<float>::quiet_NaN();
  EXPECT_NE(Plan().Trouble(), "");
}

}  // namespace
}  // namespace velmora::ardour
