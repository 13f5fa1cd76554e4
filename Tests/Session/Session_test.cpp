#include "Session/Session.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <tuple>
#include <utility>

namespace velmora::host {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

SessionRegion Region(std::int64_t position, std::int64_t length, std::int64_t track = 0) {
  SessionRegion region;
  region.track = track;
  region.position = position;
  region.start = 1000;
  region.stop = 1000 + length;
  region.path = "/audio/a.wav";
  return region;
}

/// Region, position, end.
using Piece = std::tuple<std::size_t, std::int64_t, std::int64_t>;

std::vector<Piece> Pieces(const Session& session, std::int64_t track = 0) {
  std::vector<Piece> pieces;
  for (const VisiblePiece& piece : session.Visible(track)) {
    pieces.emplace_back(piece.region, piece.position, piece.end);
  }
  return pieces;
}

TEST(Session, holdsNothingAtFirst) {
  const Session session;
  EXPECT_TRUE(session.Regions().empty());
  EXPECT_TRUE(session.Tracks().empty());
  EXPECT_TRUE(session.Visible(0).empty());
  const SessionSummary summary = session.Summary();
  EXPECT_EQ(summary.tracks, 0u);
  EXPECT_EQ(summary.regions, 0u);
  EXPECT_EQ(summary.files, 0u);
  EXPECT_EQ(summary.first, 0);
  EXPECT_EQ(summary.end, 0);
}

TEST(Session, laterRegionCoversWhatLiesUnderIt) {
  struct Row {
    const char* rule;
    std::vector<std::pair<std::int64_t, std::int64_t>> regions;  // position, length
    std::vector<Piece> visible;
  };
  const Row rows[] = {
      {"coversWhole", {{100, 50}, {90, 70}}, {{1, 90, 160}}},
      {"coversEqual", {{100, 50}, {100, 50}}, {{1, 100, 150}}},
      {"coversHead", {{100, 50}, {80, 40}}, {{1, 80, 120}, {0, 120, 150}}},
      {"coversHeadFromTheSamePosition", {{100, 50}, {100, 20}}, {{1, 100, 120}, {0, 120, 150}}},
      {"coversTail", {{100, 50}, {130, 40}}, {{0, 100, 130}, {1, 130, 170}}},
      {"coversTailToTheSameEnd", {{100, 50}, {130, 20}}, {{0, 100, 130}, {1, 130, 150}}},
      {"coversMiddle", {{100, 50}, {110, 20}}, {{0, 100, 110}, {1, 110, 130}, {0, 130, 150}}},
      {"coversAllButTheLastSample", {{100, 50}, {100, 49}}, {{1, 100, 149}, {0, 149, 150}}},
      {"coversAllButTheFirstSample", {{100, 50}, {101, 49}}, {{0, 100, 101}, {1, 101, 150}}},
      {"touchesTheEnd", {{100, 50}, {150, 10}}, {{0, 100, 150}, {1, 150, 160}}},
      {"touchesTheBegin", {{100, 50}, {90, 10}}, {{1, 90, 100}, {0, 100, 150}}},
      {"coversSeveral",
       {{0, 10}, {10, 10}, {20, 10}, {30, 10}, {5, 30}},
       {{0, 0, 5}, {4, 5, 35}, {3, 35, 40}}},
      {"coversBothPartsOfOne",
       {{0, 100}, {40, 20}, {30, 40}},
       {{0, 0, 30}, {2, 30, 70}, {0, 70, 100}}},
      {"oneOfNoLengthCoversNothing", {{0, 100}, {50, 0}}, {{0, 0, 100}}},
      {"oneOfNegativeLengthCoversNothing", {{0, 100}, {50, -20}}, {{0, 0, 100}}},
      {"oneSample", {{0, 3}, {1, 1}}, {{0, 0, 1}, {1, 1, 2}, {0, 2, 3}}},
      {"negativePositions", {{-100, 60}, {-50, 60}}, {{0, -100, -50}, {1, -50, 10}}},
  };
  for (const Row& row : rows) {
    Session session;
    for (const auto& [position, length] : row.regions) session.Place(Region(position, length));
    EXPECT_EQ(Pieces(session), row.visible) << row.rule;
    EXPECT_EQ(session.Regions().size(), row.regions.size()) << row.rule;
  }
}

TEST(Session, keepsEveryRegionInOrderOfArrival) {
  Session session;
  EXPECT_EQ(session.Place(Region(500, 10, 3)), 0u);
  EXPECT_EQ(session.Place(Region(0, 0, 1)), 1u);
  EXPECT_EQ(session.Place(Region(495, 100, 3)), 2u);
  ASSERT_EQ(session.Regions().size(), 3u);
  EXPECT_EQ(session.Regions()[0].position, 500);
  EXPECT_EQ(session.Regions()[1].track, 1);
  EXPECT_EQ(session.Regions()[2].End(), 595);
}

TEST(Session, tracksRiseAndDoNotCoverEachOther) {
  Session session;
  session.Place(Region(0, 10, 7));
  session.Place(Region(0, 10, 2));
  session.Place(Region(0, 0, 5));
  session.Place(Region(3, 4, 2));
  EXPECT_EQ(session.Tracks(), (std::vector<std::int64_t>{2, 5, 7}));
  EXPECT_EQ(Pieces(session, 7), (std::vector<Piece>{{0, 0, 10}}));
  EXPECT_EQ(Pieces(session, 2), (std::vector<Piece>{{1, 0, 3}, {3, 3, 7}, {1, 7, 10}}));
  EXPECT_TRUE(Pieces(session, 5).empty());
  EXPECT_TRUE(Pieces(session, 6).empty());
}

TEST(Session, summaryCountsCoveredRegionsAndDifferentPaths) {
  Session session;
  session.Place(Region(100, 50, 4));
  session.Place(Region(90, 70, 4));
  SessionRegion other = Region(400, 5, 0);
  other.path = "/audio/b.wav";
  session.Place(other);
  const SessionSummary summary = session.Summary();
  EXPECT_EQ(summary.tracks, 2u);
  EXPECT_EQ(summary.regions, 3u);
  EXPECT_EQ(summary.files, 2u);
  EXPECT_EQ(summary.first, 90);
  EXPECT_EQ(summary.end, 405);
}

TEST(Session, summarySpansNegativePositionsAndIgnoresNegativeLengths) {
  Session session;
  session.Place(Region(-300, 100));
  session.Place(Region(-250, -100));
  EXPECT_EQ(session.Summary().first, -300);
  EXPECT_EQ(session.Summary().end, -200);
}

TEST(Session, endStaysInsideSixtyFourBits) {
  EXPECT_EQ(Region(kMax - 10, 10).End(), kMax);
  EXPECT_EQ(Region(kMax - 10, 11).End(), kMax);
  EXPECT_EQ(Region(kMin + 10, -11).End(), kMin);
  EXPECT_EQ(Region(kMin, 5).End(), kMin + 5);
  Session session;
  session.Place(Region(kMax - 1, 4));
  session.Place(Region(kMax, 4));
  session.Place(Region(kMin, 4));
  session.Place(Region(kMin, -4));
  EXPECT_EQ(Pieces(session), (std::vector<Piece>{{2, kMin, kMin + 4}, {0, kMax - 1, kMax}}));
  EXPECT_EQ(session.Summary().first, kMin);
  EXPECT_EQ(session.Summary().end, kMax);
}

/// What is heard at each sample, as the simplest possible receiver keeps it.
class SampleModel {
 public:
  void Place(const SessionRegion& region, std::size_t index) {
    for (std::int64_t at = region.position; at < region.End(); ++at)
      heard_[region.track][at] = index;
  }
  /// Runs of one region. A region that is placed twice side by side has two indexes, so that a run
  /// ends where a piece does.
  std::vector<Piece> Runs(std::int64_t track) {
    std::vector<Piece> runs;
    for (const auto& [at, index] : heard_[track]) {
      if (!runs.empty() && std::get<0>(runs.back()) == index && std::get<2>(runs.back()) == at) {
        std::get<2>(runs.back()) = at + 1;
      } else {
        runs.emplace_back(index, at, at + 1);
      }
    }
    return runs;
  }

 private:
  std::map<std::int64_t, std::map<std::int64_t, std::size_t>> heard_;
};

TEST(Session, agreesWithAModelOfSingleSamples) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    // Short timelines make equal and touching bounds, long ones leave gaps.
    const auto span = static_cast<std::int64_t>(8 + random() % 120);
    Session session;
    SampleModel model;
    const std::size_t count = 1 + random() % 60;
    for (std::size_t i = 0; i < count; ++i) {
      const std::int64_t position = static_cast<std::int64_t>(random()) % span - span / 2;
      const std::int64_t length = static_cast<std::int64_t>(random()) % (span / 3 + 2) - 1;
      const SessionRegion region = Region(position, length, random() % 3);
      model.Place(region, session.Place(region));
      for (std::int64_t track = 0; track < 3; ++track) {
        ASSERT_EQ(Pieces(session, track), model.Runs(track))
            << "seed " << seed << ", region " << i << ", track " << track;
      }
    }
  }
}

}  // namespace
}  // namespace velmora::host
