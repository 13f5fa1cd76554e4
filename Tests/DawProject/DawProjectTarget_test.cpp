#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "DawProject/DawProjectKind.h"
#include "Support/SystemConditions.h"
#include "Support/TargetMaterial.h"
#include "ZipReader.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

class DawProjectTest : public testing::Test {
 protected:
  TargetOutcome Write(bool embedMedia = false, const TargetProgress& progress = {}) {
    ClaimedTarget claimed = kDawProjectKind.claim(path_, {.embedMedia = embedMedia});
    EXPECT_EQ(claimed.complaint, "");
    return material_.Write(*claimed.target, progress);
  }
  /// Writes it and reads project.xml back.
  TargetOutcome WriteAndRead(bool embedMedia = false) {
    TargetOutcome outcome = Write(embedMedia);
    EXPECT_EQ(outcome.trouble, "");
    const std::string text = test::ZipEntry(path_, "project.xml").value_or("");
    EXPECT_TRUE(xml_.load_buffer(text.data(), text.size()));
    project_ = xml_.child("Project");
    return outcome;
  }
  [[nodiscard]] std::vector<pugi::xml_node> Clips(std::size_t track = 0) const {
    std::vector<pugi::xml_node> clips;
    for (const auto& lane : project_.child("Arrangement").child("Lanes").children("Lanes")) {
      if (track-- != 0) continue;
      for (const auto& clip : lane.child("Clips").children("Clip")) clips.push_back(clip);
    }
    return clips;
  }
  static std::int64_t Samples(const pugi::xml_node& node, const char* attribute,
                              double rate = 48000) {
    EXPECT_TRUE(node.attribute(attribute)) << attribute;
    return std::llround(node.attribute(attribute).as_double(1e9) * rate);
  }
  /// "time+duration@playStart in/out", all in samples.
  static std::string Text(const pugi::xml_node& clip) {
    const auto samples = [&](const char* name) { return std::to_string(Samples(clip, name)); };
    return samples("time") + "+" + samples("duration") + "@" + samples("playStart") + " " +
           samples("fadeInTime") + "/" + samples("fadeOutTime");
  }

  test::TargetMaterial material_;
  std::string path_ = material_.folder.Path("out.dawproject");
  pugi::xml_document xml_;
  pugi::xml_node project_;
};

TEST_F(DawProjectTest, hasATrackWithItsChannelForEachTrackOfTheSession) {
  const std::string mono = material_.Wave("mono.wav");
  const std::string stereo = material_.Wave("stereo.wav", 1000, 48000, 2);
  material_.record.firstTrackNumber = 5;
  material_.Place(mono, 0, 100);
  material_.Place(mono, 100, 100, {}, 3);
  material_.Place(stereo, 200, 100, {}, 3);
  WriteAndRead();
  EXPECT_STREQ(project_.attribute("version").value(), "1.0");
  EXPECT_STRNE(project_.child("Application").attribute("version").value(), "");

  std::vector<std::string> tracks;
  for (const auto& track : project_.child("Structure").children("Track")) {
    const pugi::xml_node channel = track.child("Channel");
    EXPECT_STREQ(track.attribute("contentType").value(), "audio");
    EXPECT_STREQ(channel.attribute("role").value(), "regular");
    tracks.push_back(std::string(track.attribute("name").value()) + "/" +
                     channel.attribute("audioChannels").value());
    // Each lane names its track, in the tracks' order.
    pugi::xml_node lane = project_.child("Arrangement").child("Lanes").child("Lanes");
    for (std::size_t i = 1; i < tracks.size(); ++i) lane = lane.next_sibling("Lanes");
    EXPECT_STREQ(lane.attribute("track").value(), track.attribute("id").value());
    EXPECT_STREQ(lane.child("Clips").attribute("timeUnit").value(), "seconds");
  }
  EXPECT_EQ(tracks, (std::vector<std::string>{"Track 5/1", "Track 8/2"}));
}

TEST_F(DawProjectTest, hasTheTempoAndMetreThatImportersExpect) {
  material_.Place(material_.Wave("a.wav"), 0, 100);
  WriteAndRead();
  const pugi::xml_node transport = project_.child("Transport");
  EXPECT_EQ(transport.child("Tempo").attribute("value").as_double(), 120);
  EXPECT_STREQ(transport.child("Tempo").attribute("unit").value(), "bpm");
  EXPECT_EQ(transport.child("TimeSignature").attribute("numerator").as_int(), 4);
  EXPECT_EQ(transport.child("TimeSignature").attribute("denominator").as_int(), 4);
}

TEST_F(DawProjectTest, tellsAClipToTheSampleAndItsFile) {
  const std::string path = material_.Wave("a b.wav", 1234, 48000, 2);
  material_.Place(path, 1234567891, 321, {}, 0, 17, "Wind");
  EXPECT_TRUE(WriteAndRead().leftOut.empty());
  ASSERT_EQ(Clips().size(), 1u);
  const pugi::xml_node clip = Clips()[0];
  EXPECT_EQ(Text(clip), "1234567891+321@17 0/0");
  EXPECT_STREQ(clip.attribute("contentTimeUnit").value(), "seconds");
  EXPECT_STREQ(clip.attribute("name").value(), "Wind");
  const pugi::xml_node audio = clip.child("Audio");
  EXPECT_EQ(audio.attribute("channels").as_int(), 2);
  EXPECT_EQ(audio.attribute("sampleRate").as_int(), 48000);
  EXPECT_EQ(Samples(audio, "duration"), 1234);
  EXPECT_EQ(audio.child("File").attribute("path").value(), path);
  EXPECT_TRUE(audio.child("File").attribute("external").as_bool());
}

struct ShapeRow {
  const char* rule;
  struct Placed {
    std::int64_t position, length;
    RegionShape shape;
    std::int64_t start = 0;
  };
  std::vector<Placed> regions;
  std::vector<std::string> clips;
  std::size_t notes = 0;
};

class DawProjectShapes : public DawProjectTest, public testing::WithParamInterface<ShapeRow> {};

TEST_P(DawProjectShapes, areTold) {
  const std::string path = material_.Wave("a.wav");
  for (const auto& placed : GetParam().regions) {
    material_.Place(path, placed.position, placed.length, placed.shape, 0, placed.start);
  }
  const TargetOutcome outcome = WriteAndRead();
  std::vector<std::string> clips;
  for (const pugi::xml_node& clip : Clips()) clips.push_back(Text(clip));
  EXPECT_EQ(clips, GetParam().clips);
  EXPECT_EQ(outcome.notes.size(), GetParam().notes);
}

INSTANTIATE_TEST_SUITE_P(
    DawProjectTarget, DawProjectShapes,
    testing::Values(ShapeRow{"coveredRegionsAreCut",
                             {{0, 500, {}}, {100, 50, {}, 10}},
                             {"0+100@0 0/0", "100+50@10 0/0", "150+350@150 0/0"}},
                    ShapeRow{"fades", {{10, 500, {20, 30, 0}, 5}}, {"10+500@5 20/30"}},
                    // The time is the end of the crossfade, and so is the place in the file.
                    ShapeRow{"aCrossfadeIsANegativeFadeIn",
                             {{0, 100, {0, 20, 0}}, {80, 200, {20, 0, 0}, 300}},
                             {"0+100@0 0/0", "100+180@320 -20/0"}},
                    ShapeRow{"aFadeOutOverAnotherIsACrossfadeBack",
                             {{0, 500, {}}, {80, 100, {0, 20, 0}, 300}},
                             {"0+80@0 0/0", "80+100@300 0/0", "180+320@180 -20/0"}},
                    ShapeRow{"whatClipsCannotTellIsNoted",
                             {{0, 90, {}}, {80, 100, {20, 0, 0}}},
                             {"0+90@0 0/0", "90+90@10 -10/0"},
                             1},
                    ShapeRow{"aRegionThatRunsPastItsFileIsCutToItAndNoted",
                             {{0, 100, {}, 950}},
                             {"0+50@950 0/0"},
                             1},
                    ShapeRow{
                        "aFadeThatWasCutIsNoted", {{0, 100, {150, 0, 0}}}, {"0+100@0 100/0"}, 1},
                    ShapeRow{"timesBefore0AreNoted", {{-100, 50, {}}}, {"-100+50@0 0/0"}, 1}),
    [](const auto& row) { return row.param.rule; });

TEST_F(DawProjectTest, gainIsAPointOfTheExpressionGain) {
  material_.Place(material_.Wave("a.wav"), 0, 100, {0, 0, -6});
  WriteAndRead();
  ASSERT_EQ(Clips().size(), 1u);
  const pugi::xml_node lanes = Clips()[0].child("Lanes");
  EXPECT_TRUE(lanes.child("Audio").child("File"));
  const pugi::xml_node points = lanes.child("Points");
  EXPECT_STREQ(points.attribute("unit").value(), "linear");
  EXPECT_STREQ(points.child("Target").attribute("expression").value(), "gain");
  EXPECT_EQ(points.child("RealPoint").attribute("time").as_double(-1), 0);
  EXPECT_EQ(points.child("RealPoint").attribute("value").as_double(), std::pow(10.0, -6 / 20.0));
}

TEST_F(DawProjectTest, whatIsNotThereIsMarked) {
  const std::string good = material_.Wave("good.wav");
  const std::string other = material_.Wave("other.wav", 1000, 44100);
  const std::string none = material_.folder.Path("none.wav");
  material_.record.leftOut = {{1, 2, 0, 48000, "event 2: no \"<such>\" source & no\x01name"}};
  material_.Place(good, 0, 300);
  material_.Place(other, 100, 50, {}, 0, 0, "Other");
  material_.Place(none, 200, 50);
  material_.Place(good, 250, 0);
  const std::size_t piece = material_.Place(material_.WaveOf8Bits("eight.wav"), 400, 60);
  material_.session.Describe(piece, {0, 1, 1, RegionPiece::FadeIn});
  const TargetOutcome outcome = WriteAndRead();
  ASSERT_EQ(outcome.leftOut.size(), 2u);
  EXPECT_EQ(outcome.leftOut[0], "region 1 \"Other\" (track 1, 00:00:00:00): " + other +
                                    " is of 44100 Hz and the session of 48000 Hz");
  EXPECT_NE(outcome.leftOut[1].find(none + " cannot be read: "), std::string::npos);
  ASSERT_EQ(outcome.notes.size(), 3u);
  EXPECT_NE(outcome.notes[0].find("region 3 "), std::string::npos);
  EXPECT_NE(outcome.notes[0].find("it has no length"), std::string::npos);
  EXPECT_NE(outcome.notes[1].find("it runs past "), std::string::npos);
  EXPECT_NE(outcome.notes[2].find("it is a fade piece of 8 bits"), std::string::npos);
  // What lies under them is heard.
  ASSERT_EQ(Clips().size(), 2u);
  EXPECT_EQ(Text(Clips()[0]), "0+300@0 0/0");

  const pugi::xml_node markers = project_.child("Arrangement").child("Markers");
  EXPECT_STREQ(markers.attribute("timeUnit").value(), "seconds");
  std::vector<std::int64_t> times;
  for (const auto& marker : markers.children("Marker")) times.push_back(Samples(marker, "time"));
  EXPECT_EQ(times, (std::vector<std::int64_t>{100, 200, 48000}));
  EXPECT_STREQ(markers.last_child().attribute("name").value(),
               "Left out: event 2: no \"<such>\" source & no\xEF\xBF\xBDname");
}

TEST_F(DawProjectTest, anyNameIsXml) {
  const std::string name = "a & <b> \"c\" 'd' \x01\x1B\t\n\xFF Gr\xC3\xBC\xC3\x9F";
  material_.record.title = name;
  material_.record.constants[8] = "notes ]]> & <x>";  // PROJ_NOTES
  material_.Place(material_.Wave("a & <b> \"Gr\xC3\xBC\xC3\x9F\".wav"), 0, 100, {}, 0, 0, name);
  WriteAndRead();
  const std::string expected =
      "a & <b> \"c\" 'd' \xEF\xBF\xBD\xEF\xBF\xBD\t\n\xEF\xBF\xBD Gr\xC3\xBC\xC3\x9F";
  EXPECT_EQ(Clips()[0].attribute("name").value(), expected);
  EXPECT_EQ(Clips()[0].child("Audio").child("File").attribute("path").value(),
            material_.folder.Path("a & <b> \"Gr\xC3\xBC\xC3\x9F\".wav"));

  pugi::xml_document metadata;
  const std::string text = test::ZipEntry(path_, "metadata.xml").value_or("");
  EXPECT_TRUE(metadata.load_buffer(text.data(), text.size()));
  EXPECT_EQ(metadata.child("MetaData").child("Title").child_value(), expected);
  EXPECT_STREQ(metadata.child("MetaData").child("Comment").child_value(), "notes ]]> & <x>");
  // A strict reader is the witness that nothing forbidden is in it.
  const std::string command = std::string(VELMORA_PYTHON) +
                              " -c \"import zipfile, xml.etree.ElementTree as e; z = "
                              "zipfile.ZipFile('" +
                              path_ + "'); [e.fromstring(z.read(n)) for n in z.namelist()]\"";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_F(DawProjectTest, aFileWhoseNameXmlCannotTellGoesInsideOrIsLeftOut) {
  material_.Place(material_.Wave("bad\x01\xFF.wav"), 0, 100);
  EXPECT_EQ(WriteAndRead().leftOut.size(), 1u);
  EXPECT_EQ(Clips().size(), 0u);
  fs::remove(path_);
  EXPECT_EQ(WriteAndRead(true).leftOut.size(), 0u);
  EXPECT_EQ(Clips().size(), 1u);
}

TEST_F(DawProjectTest, embeddedFilesAreInsideOnceEach) {
  const std::string one = material_.Wave("one/a.wav", 100), two = material_.Wave("two/a.wav", 200);
  material_.Place(one, 0, 50);
  material_.Place(two, 50, 50);
  material_.Place(one, 100, 50);
  WriteAndRead(true);
  EXPECT_EQ(test::ZipNames(path_), (std::vector<std::string>{"metadata.xml", "project.xml",
                                                             "audio/a.wav", "audio/a-2.wav"}));
  const char* const names[] = {"audio/a.wav", "audio/a-2.wav", "audio/a.wav"};
  ASSERT_EQ(Clips().size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const pugi::xml_node file = Clips()[i].child("Audio").child("File");
    EXPECT_STREQ(file.attribute("path").value(), names[i]);
    EXPECT_FALSE(file.attribute("external").as_bool(true));
  }
  EXPECT_EQ(test::ZipEntry(path_, "audio/a.wav"), test::TemporaryFolder::Read(one));
  EXPECT_EQ(test::ZipEntry(path_, "audio/a-2.wav"), test::TemporaryFolder::Read(two));
}

TEST_F(DawProjectTest, aFullDiskLeavesNothing) {
  for (const bool embedMedia : {false, true}) {
    material_.Place(material_.Wave("a.wav", 100000), 0, 100);
    for (int i = 0; i < 3000; ++i) material_.Place(material_.folder.Path("a.wav"), i * 31, 60);
    const std::size_t before = material_.EntriesOf("");
    TargetOutcome outcome;
    {
      const test::FileSizeLimit limit(20000);
      outcome = Write(embedMedia);
    }
    EXPECT_EQ(outcome.trouble, path_ + " cannot be written: File too large");
    EXPECT_EQ(material_.EntriesOf(""), before);
  }
}

TEST_F(DawProjectTest, aFileThatVanishesWhileItIsCopiedIsNamed) {
  const std::string path = material_.Wave("a.wav");
  material_.Place(path, 0, 100);
  const TargetOutcome outcome = Write(true, [&](double) {
    fs::remove(path);
    return true;
  });
  EXPECT_EQ(outcome.trouble,
            path_ + " is not written: " + path + " cannot be read: No such file or directory");
  EXPECT_EQ(material_.EntriesOf(""), 0u);
}

TEST_F(DawProjectTest, cancellingLeavesNothing) {
  material_.Place(material_.Wave("a.wav", 3000000), 0, 100);
  for (const bool embedMedia : {false, true}) {
    for (const double stopAt : {0.0, 0.5}) {
      if (!embedMedia && stopAt > 0) continue;
      const TargetOutcome outcome = Write(embedMedia, [&](double share) { return share < stopAt; });
      EXPECT_EQ(outcome.trouble, path_ + " is not written: it was cancelled");
      EXPECT_EQ(material_.EntriesOf(""), 1u);
    }
  }
}

TEST_F(DawProjectTest, takesNoNameThatIsHeld) {
  material_.folder.Write("out.dawproject", "mine");
  const ClaimedTarget claimed = kDawProjectKind.claim(path_, {});
  EXPECT_EQ(claimed.target, nullptr);
  EXPECT_EQ(claimed.complaint, path_ + " is there; it is not written over");
}

TEST_F(DawProjectTest, aNameThatAppearsMeanwhileStays) {
  material_.Place(material_.Wave("a.wav"), 0, 100);
  ClaimedTarget claimed = kDawProjectKind.claim(path_, {});
  material_.folder.Write("out.dawproject", "mine");
  EXPECT_EQ(material_.Write(*claimed.target).trouble,
            path_ + " has appeared meanwhile; it is not written over");
  EXPECT_EQ(test::TemporaryFolder::Read(path_), "mine");
}

TEST_F(DawProjectTest, positionsAtTheLimitsOf64BitsDoNoHarm) {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::string path = material_.Wave("a.wav");
  material_.record.leftOut = {{1, 2, 0, Limits::max(), "gone"}};
  material_.Place(path, Limits::min(), 50);
  material_.Place(path, Limits::max() - 10, 50, {20, 20, 0});
  WriteAndRead();
  ASSERT_EQ(Clips().size(), 2u);
  EXPECT_LT(Clips()[0].attribute("time").as_double(), -1e14);
}

TEST_F(DawProjectTest, noPipeIsOpened) {
  const test::Watchdog watchdog;
  material_.Place(test::Fifo(material_.folder, "pipe.wav"), 0, 100);
  EXPECT_EQ(WriteAndRead().leftOut.size(), 1u);
}

}  // namespace
}  // namespace velmora::host
