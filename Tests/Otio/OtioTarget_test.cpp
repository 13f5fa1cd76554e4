#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "ADL/ProjectConstants.h"
#include "Otio/OtioKind.h"
#include "Session/JsonText.h"
#include "Support/SystemConditions.h"
#include "Support/TargetMaterial.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

class OtioTest : public testing::Test {
 protected:
  TargetOutcome Write(const TargetProgress& progress = {}) {
    ClaimedTarget claimed = kOtioKind.claim(path_, {});
    EXPECT_EQ(claimed.complaint, "");
    return material_.Write(*claimed.target, progress);
  }
  /// Writes it and reads it back.
  TargetOutcome WriteAndRead() {
    TargetOutcome outcome = Write();
    EXPECT_EQ(outcome.trouble, "");
    timeline_ = Json::parse(test::TemporaryFolder::Read(path_), nullptr, false);
    EXPECT_FALSE(timeline_.is_discarded());
    return outcome;
  }
  [[nodiscard]] const Json& Track(std::size_t track = 0) const {
    return timeline_.at("tracks").at("children").at(track);
  }
  [[nodiscard]] const Json& Child(std::size_t child) const {
    return Track().at("children").at(child);
  }
  /// Samples of a RationalTime, which must be whole and at the session's rate.
  [[nodiscard]] std::int64_t Samples(const Json& time) const {
    EXPECT_EQ(time.at("OTIO_SCHEMA"), "RationalTime.1");
    EXPECT_EQ(time.at("rate"), material_.rates.sampleRate);
    EXPECT_TRUE(time.at("value").is_number_integer());
    return time.at("value");
  }
  [[nodiscard]] std::string Range(const Json& range) const {
    EXPECT_EQ(range.at("OTIO_SCHEMA"), "TimeRange.1");
    return std::to_string(Samples(range.at("start_time"))) + "+" +
           std::to_string(Samples(range.at("duration")));
  }
  /// "gap 10, trans 0/20, clip 5+100": what stands in a track.
  [[nodiscard]] std::string Text(const Json& track) const {
    std::string text;
    for (const Json& child : track.at("children")) {
      const std::string schema = child.at("OTIO_SCHEMA");
      if (!text.empty()) text += ", ";
      if (schema == "Transition.1") {
        text += "trans " + std::to_string(Samples(child.at("in_offset"))) + "/" +
                std::to_string(Samples(child.at("out_offset")));
      } else if (schema == "Gap.1") {
        text += "gap " + Range(child.at("source_range")).substr(2);
      } else {
        EXPECT_EQ(schema, "Clip.2");
        text += "clip " + Range(child.at("source_range"));
      }
    }
    return text;
  }

  test::TargetMaterial material_;
  std::string path_ = material_.folder.Path("out.otio");
  Json timeline_;
};

TEST_F(OtioTest, isATimelineOfAudioTracks) {
  const std::string path = material_.Wave("a.wav");
  material_.record.title = "Ferry";
  material_.record.firstTrackNumber = 5;
  material_.Place(path, 0, 100);
  material_.Place(path, 0, 100, {}, 3);
  WriteAndRead();
  EXPECT_EQ(timeline_.at("OTIO_SCHEMA"), "Timeline.1");
  EXPECT_EQ(timeline_.at("name"), "Ferry");
  EXPECT_EQ(Samples(timeline_.at("global_start_time")), 0);
  EXPECT_EQ(timeline_.at("tracks").at("OTIO_SCHEMA"), "Stack.1");
  ASSERT_EQ(timeline_.at("tracks").at("children").size(), 2u);
  EXPECT_EQ(Track(0).at("OTIO_SCHEMA"), "Track.1");
  EXPECT_EQ(Track(0).at("kind"), "Audio");
  EXPECT_EQ(Track(0).at("name"), "Track 5");
  EXPECT_EQ(Track(1).at("name"), "Track 8");
  EXPECT_EQ(Track(1).at("metadata").at("velmora").at("track"), 8);
}

TEST_F(OtioTest, holdsTheProjectsConstantsUnderOneName) {
  material_.record.constants[5] = "Title \"in\" \xFF";
  material_.Place(material_.Wave("a.wav"), 0, 100);
  WriteAndRead();
  const Json& metadata = timeline_.at("metadata");
  EXPECT_EQ(metadata.size(), 1u);
  const Json& constants = metadata.at("velmora").at("constants");
  EXPECT_EQ(constants.size(), 24u);
  for (const ProjectConstant& constant : kProjectConstants) {
    EXPECT_TRUE(constants.contains(constant.keyword)) << constant.keyword;
  }
  EXPECT_EQ(constants.at("PROJ_TITLE"), "Title \"in\" \xEF\xBF\xBD");
  EXPECT_TRUE(constants.at("SEQ_TITLE").is_null());
}

TEST_F(OtioTest, aClipTellsItsRegionAndFile) {
  const std::string path = material_.Wave("a b\xC3\xBC.wav", 1234);
  const std::size_t region = material_.Place(path, 1234567891, 321, {0, 0, -6.5}, 0, 17, "Wi\"nd");
  material_.session.Describe(region, {3, 4, 5, RegionPiece::Crossfade});
  material_.Place(path, 1234567891 + 321, 20);
  EXPECT_EQ(WriteAndRead().notes.size(), 1u);  // the gain
  EXPECT_EQ(Text(Track()), "gap 1234567891, clip 17+321, clip 0+20");
  const Json& clip = Child(1);
  EXPECT_EQ(clip.at("name"), "Wi\"nd");
  const Json& media = clip.at("media_references").at(clip.at("active_media_reference_key"));
  EXPECT_EQ(media.at("OTIO_SCHEMA"), "ExternalReference.1");
  EXPECT_EQ(media.at("target_url"), "file://" + material_.folder.Path("") + "/a%20b%C3%BC.wav");
  EXPECT_EQ(Range(media.at("available_range")), "0+1234");
  const Json& facts = clip.at("metadata").at("velmora");
  EXPECT_EQ(facts.at("gainDb"), -6.5);
  EXPECT_EQ(facts.at("region"), 0);
  EXPECT_EQ(facts.at("event"), 3);
  EXPECT_EQ(facts.at("entry"), 4);
  EXPECT_EQ(facts.at("source"), 5);
  EXPECT_EQ(facts.at("piece"), "crossfade");
  // What is known of one clip is not told of the next.
  EXPECT_EQ(Child(2).at("metadata").at("velmora"),
            Json::parse(R"({"region": 1, "gainDb": 0.0, "event": null, "entry": null,
                            "source": null, "piece": null})"));
}

TEST_F(OtioTest, everyObjectHasTheFieldsThatItsSchemaAsksFor) {
  const std::string path = material_.Wave("a.wav");
  material_.record.leftOut = {{1, 2, 0, 5, "gone"}};
  material_.Place(path, 10, 100, {5, 5, 0});
  WriteAndRead();
  const struct {
    std::string schema;
    std::vector<std::string> fields;
  } rows[] = {
      {"Timeline.1", {"name", "metadata", "global_start_time", "tracks"}},
      {"Stack.1", {"name", "metadata", "source_range", "effects", "markers", "children"}},
      {"Track.1", {"name", "metadata", "source_range", "effects", "markers", "children", "kind"}},
      {"Clip.2",
       {"name", "metadata", "source_range", "effects", "markers", "media_references",
        "active_media_reference_key"}},
      {"Gap.1", {"name", "metadata", "source_range", "effects", "markers"}},
      {"Transition.1", {"name", "metadata", "in_offset", "out_offset", "transition_type"}},
      {"Marker.2", {"name", "metadata", "color", "marked_range"}},
      {"ExternalReference.1", {"name", "metadata", "available_range", "target_url"}},
  };
  for (const auto& row : rows) {
    std::size_t found = 0;
    const std::function<void(const Json&)> look = [&](const Json& value) {
      if (value.is_object() && value.value("OTIO_SCHEMA", "") == row.schema) {
        ++found;
        for (const std::string& field : row.fields) {
          EXPECT_TRUE(value.contains(field)) << row.schema << " " << field;
        }
      }
      if (value.is_structured()) {
        for (const Json& part : value) look(part);
      }
    };
    look(timeline_);
    EXPECT_GT(found, 0u) << row.schema;
  }
}

struct TrackRow {
  const char* rule;
  struct Placed {
    std::int64_t position, length;
    RegionShape shape;
    std::int64_t start = 0;
  };
  std::vector<Placed> regions;
  const char* children;
  std::size_t notes = 0;
};

class OtioTracks : public OtioTest, public testing::WithParamInterface<TrackRow> {};

TEST_P(OtioTracks, tellWhatIsHeard) {
  const std::string path = material_.Wave("a.wav");
  for (const auto& placed : GetParam().regions) {
    material_.Place(path, placed.position, placed.length, placed.shape, 0, placed.start);
  }
  const TargetOutcome outcome = WriteAndRead();
  EXPECT_EQ(Text(Track()), GetParam().children);
  EXPECT_EQ(outcome.notes.size(), GetParam().notes);
}

INSTANTIATE_TEST_SUITE_P(
    OtioTarget, OtioTracks,
    testing::Values(
        TrackRow{"silenceIsAGap",
                 {{10, 100, {}}, {150, 20, {}, 7}},
                 "gap 10, clip 0+100, gap 40, clip 7+20"},
        TrackRow{"coveredRegionsAreCut",
                 {{0, 500, {}}, {100, 50, {}, 10}},
                 "clip 0+100, clip 10+50, clip 150+350"},
        TrackRow{"fadesLeadOutOfGapsAndIntoThem",
                 {{10, 500, {20, 30, 0}}, {600, 10, {}}},
                 "gap 10, trans 0/20, clip 0+500, trans 30/0, gap 90, clip 0+10"},
        TrackRow{"withoutSilenceTheGapHasNoLength",
                 {{0, 100, {20, 30, 0}}, {100, 50, {5, 0, 0}}, {150, 50, {0, 9, 0}}},
                 "gap 0, trans 0/20, clip 0+100, trans 30/0, gap 0, trans 0/5, clip 0+50, "
                 "clip 0+50, trans 9/0, gap 0"},
        TrackRow{"aCrossfadeEndsWhereTheClipsMeet",
                 {{0, 100, {0, 20, 0}}, {80, 200, {20, 0, 0}, 300}},
                 "clip 0+100, trans 20/0, clip 320+180"},
        TrackRow{"whatTransitionsCannotTellIsNoted",
                 {{0, 90, {}}, {80, 100, {20, 0, 0}}},
                 "clip 0+90, trans 10/0, clip 10+90",
                 1},
        TrackRow{
            "aFadeThatWasCutIsNoted", {{0, 100, {150, 0, 0}}}, "gap 0, trans 0/100, clip 0+100", 1},
        TrackRow{
            "aRegionThatRunsPastItsFileIsCutToItAndNoted", {{0, 100, {}, 950}}, "clip 950+50", 1}),
    [](const auto& row) { return row.param.rule; });

TEST_F(OtioTest, aSessionThatBeginsBefore0BeginsTheTimelineThere) {
  const std::string path = material_.Wave("a.wav");
  material_.record.leftOut = {{1, 2, 0, 5, "gone"}};
  material_.Place(path, -100, 50);
  material_.Place(path, 20, 50, {}, 1);
  WriteAndRead();
  EXPECT_EQ(Samples(timeline_.at("global_start_time")), -100);
  EXPECT_EQ(Text(Track(0)), "clip 0+50");
  EXPECT_EQ(Text(Track(1)), "gap 120, clip 0+50");
  EXPECT_EQ(Range(timeline_.at("tracks").at("markers").at(0).at("marked_range")), "105+0");
}

TEST_F(OtioTest, whatTheSpotLeftOutIsMarked) {
  material_.record.firstTrackNumber = 3;
  material_.record.leftOut = {{1, 2, 4, 48000, "no \"<such>\" source"}};
  material_.Place(material_.Wave("a.wav"), 0, 100);
  WriteAndRead();
  const Json& marker = timeline_.at("tracks").at("markers").at(0);
  EXPECT_EQ(marker.at("OTIO_SCHEMA"), "Marker.2");
  EXPECT_EQ(marker.at("name"), "Left out: no \"<such>\" source");
  EXPECT_EQ(Range(marker.at("marked_range")), "48000+0");
  EXPECT_EQ(marker.at("metadata").at("velmora").at("track"), 7);
}

TEST_F(OtioTest, filesThatAreNotAsTheyShouldBeAreTold) {
  const std::string good = material_.Wave("good.wav");
  const std::string other = material_.Wave("other.wav", 800, 44100);
  const std::string none = material_.folder.Path("none.wav");
  material_.Place(other, 0, 50);
  material_.Place(none, 50, 50);
  material_.Place(good, 100, 0);
  const std::size_t piece = material_.Place(material_.WaveOf8Bits("eight.wav"), 100, 60);
  material_.session.Describe(piece, {0, 1, 1, RegionPiece::FadeIn});
  const TargetOutcome outcome = WriteAndRead();
  EXPECT_EQ(Text(Track()), "clip 0+50, clip 0+50, clip 0+50");
  ASSERT_EQ(outcome.notes.size(), 4u);
  EXPECT_NE(outcome.notes[0].find(other + " is of 44100 Hz"), std::string::npos);
  ASSERT_EQ(outcome.leftOut.size(), 1u);
  EXPECT_NE(outcome.leftOut[0].find(none + " cannot be read: "), std::string::npos);
  EXPECT_NE(outcome.notes[1].find("it has no length"), std::string::npos);
  EXPECT_NE(outcome.notes[2].find("it runs past "), std::string::npos);
  EXPECT_NE(outcome.notes[3].find("it is a fade piece of 8 bits"), std::string::npos);
  const Json& media = Child(1).at("media_references").at("DEFAULT_MEDIA");
  EXPECT_TRUE(media.at("available_range").is_null());
  EXPECT_EQ(media.at("target_url"), "file://" + none);
}

TEST_F(OtioTest, positionsAtTheLimitsOf64BitsDoNoHarm) {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::string path = material_.Wave("a.wav");
  material_.record.leftOut = {{1, 2, 0, Limits::max(), "gone"}};
  material_.Place(path, Limits::min(), 50);
  material_.Place(path, Limits::max() - 10, 50, {20, 20, 0});
  WriteAndRead();
  EXPECT_EQ(Samples(timeline_.at("global_start_time")), Limits::min());
}

TEST_F(OtioTest, anyNameIsJson) {
  material_.Place(material_.Wave("bad\x01\xFF.wav"), 0, 100, {}, 0, 0, "a\x01\"\\\n\xFF<&>");
  EXPECT_TRUE(WriteAndRead().leftOut.empty());
  EXPECT_EQ(Child(0).at("name"), "a\x01\"\\\n\xEF\xBF\xBD<&>");
}

TEST_F(OtioTest, aRateThatIsNoWholeNumberStaysOne) {
  material_.rates.sampleRate = 47952.046875F;
  material_.Place(material_.Wave("a.wav"), 3, 100);
  WriteAndRead();
  EXPECT_EQ(Text(Track()), "gap 3, clip 0+100");
}

TEST_F(OtioTest, aFullDiskLeavesNothing) {
  const std::string path = material_.Wave("a.wav");
  for (int i = 0; i < 300; ++i) material_.Place(path, i * 31, 60);
  TargetOutcome outcome;
  {
    const test::FileSizeLimit limit(20000);
    outcome = Write();
  }
  EXPECT_EQ(outcome.trouble, path_ + " cannot be written: File too large");
  EXPECT_EQ(material_.EntriesOf(""), 1u);
}

TEST_F(OtioTest, cancellingLeavesNothing) {
  material_.Place(material_.Wave("a.wav"), 0, 100);
  EXPECT_EQ(Write([](double) { return false; }).trouble,
            path_ + " is not written: it was cancelled");
  EXPECT_EQ(material_.EntriesOf(""), 1u);
}

TEST_F(OtioTest, takesNoNameThatIsHeld) {
  material_.Place(material_.Wave("a.wav"), 0, 100);
  ClaimedTarget claimed = kOtioKind.claim(path_, {});
  material_.folder.Write("out.otio", "mine");
  EXPECT_EQ(material_.Write(*claimed.target).trouble,
            path_ + " has appeared meanwhile; it is not written over");
  EXPECT_EQ(kOtioKind.claim(path_, {}).complaint, path_ + " is there; it is not written over");
  EXPECT_EQ(test::TemporaryFolder::Read(path_), "mine");
}

}  // namespace
}  // namespace velmora::host
