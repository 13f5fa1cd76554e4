#include "Session/PartialSession.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Session/RegionLabel.h"
#include "Support/TargetMaterial.h"

namespace velmora::host {
namespace {

class PartialSessionTest : public testing::Test {
 protected:
  test::TargetMaterial material_;
};

TEST_F(PartialSessionTest, whatLiesUnderALeftOutRegionIsHeard) {
  material_.Place("a.wav", 0, 100);
  material_.Place("gone.wav", 40, 20);
  material_.Place("b.wav", 90, 30, {10, 0, -6});
  const HeardSession heard(material_.session);
  const TargetInput input = {material_.session, heard, material_.rates, material_.record};
  const PartialSession partial(input, {false, true, false});
  ASSERT_EQ(partial.Regions().Regions().size(), 2u);
  EXPECT_EQ(partial.Regions().Visible(0).size(), 2u);  // the first in one piece
  EXPECT_EQ(partial.Regions().Regions()[1].shape, (RegionShape{10, 0, -6}));
  EXPECT_EQ(partial.Heard().Shapes()[1].fadeIn, 10);
  EXPECT_EQ(partial.Original(0), 0u);
  EXPECT_EQ(partial.Original(1), 2u);
}

TEST_F(PartialSessionTest, aWholeSessionIsTakenAsItIs) {
  material_.Place("a.wav", 0, 100);
  const HeardSession heard(material_.session);
  const TargetInput input = {material_.session, heard, material_.rates, material_.record};
  const PartialSession partial(input, {false});
  EXPECT_EQ(&partial.Regions(), &material_.session);
  EXPECT_EQ(&partial.Heard(), &heard);
  EXPECT_EQ(partial.Original(0), 0u);
}

TEST_F(PartialSessionTest, ofASessionWithoutAnyRegionLeftThereIsAnEmptyOne) {
  material_.Place("a.wav", 0, 100);
  const HeardSession heard(material_.session);
  const TargetInput input = {material_.session, heard, material_.rates, material_.record};
  EXPECT_TRUE(PartialSession(input, {true}).Regions().Regions().empty());
}

TEST(RegionTexts, whatIsOddAboutARegionIsToldOnceForAllTargets) {
  const std::string past = "it runs past a.wav, which has 500 samples; the rest is silence";
  const std::string early = "it begins 1 sample before a.wav; these are silence";
  const std::string eight =
      "it is a fade piece of 8 bits, a.wav, whose samples have signs where a wave file has none; "
      "it "
      "does not sound right";
  const struct {
    const char* rule;
    std::int64_t start, stop;
    bool is8Bits;
    std::optional<RegionPiece> piece;
    std::vector<std::string> odd;
  } rows[] = {
      {"inside", 0, 500, false, RegionPiece::Main, {}},
      {"beforeTheFile", -1, 500, false, RegionPiece::Main, {early}},
      {"afterTheFile", 0, 501, false, RegionPiece::Main, {past}},
      {"mainOf8Bits", 0, 500, true, RegionPiece::Main, {}},
      {"unknownOf8Bits", 0, 500, true, {}, {}},
      {"pieceOf8Bits", 0, 500, true, RegionPiece::Crossfade, {eight}},
      {"pieceOf16Bits", 0, 500, false, RegionPiece::FadeOut, {}},
      {"both", 400, 600, true, RegionPiece::FadeIn, {past, eight}},
  };
  for (const auto& row : rows) {
    SessionRegion region{0, 0, row.start, row.stop, 1, "a.wav", "a"};
    if (row.piece) region.origin = RegionOrigin{0, 1, 1, *row.piece};
    EXPECT_EQ(OddAbout(region, 500, row.is8Bits), row.odd) << row.rule;
  }
}

}  // namespace
}  // namespace velmora::host
