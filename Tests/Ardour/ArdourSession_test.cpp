#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <vector>

#include "ArdourFixture.h"

// With the real Ardour: what a session sounds like is read back through Ardour and held against the
// bounce, which has tests of its own.

namespace velmora::ardour {
namespace {

using bounce::SourceForm;
using bounce::TestSource;

constexpr double kInaudible = 1e-6;  // -120 dBFS

class ArdourSession : public ArdourFixture {
 public:
  static void ExpectWhole(const host::TargetOutcome& outcome) {
    EXPECT_EQ(outcome.trouble, "");
    EXPECT_EQ(outcome.leftOut, std::vector<std::string>());
    EXPECT_EQ(outcome.notes, std::vector<std::string>());
  }
};

struct RateRow {
  std::uint32_t rate;
  std::uint16_t bits;
  bool isFloat;
  std::int64_t hours;
  std::int32_t frameRate;
};

class ArdourSessionRates : public ArdourSession, public testing::WithParamInterface<RateRow> {};

TEST_P(ArdourSessionRates, soundsAsTheBounceDoesToTheSample) {
  const RateRow row = GetParam();
  rates_ = {static_cast<float>(row.rate), row.frameRate};
  const auto source = [&](const char* name, std::uint16_t channels, std::int64_t frames) {
    return MakeSource(name, {row.bits, channels, row.isFloat, row.rate}, frames);
  };
  const TestSource mono = source("mono.wav", 1, 5000), stereo = source("stereo.wav", 2, 7000);
  const TestSource six = source("six.wav", 6, 1000);
  const std::int64_t at = row.hours * 3600 * row.rate;
  Place(0, at, mono, 100, 3000);
  Place(0, at + 1500, mono, 0, 400);     // over the one before, like a rendered fade piece
  Place(0, at + 2900, stereo, 7, 6000);  // the track becomes a stereo one
  Place(2, at + 10, mono, 0, 5000);
  Place(2, at + 11, mono, 4000, 2);
  Place(2, at + 300, mono, 1, 100);  // inside another
  Place(7, at + 500, six, 0, 1000);
  Place(7, at + 1400, mono, 0, 1000);  // on all six channels
  const std::string path = folder_.Path("session");
  ExpectWhole(Make(path));
  EXPECT_EQ(LargestDifference(path, 4096), 0);
}

INSTANTIATE_TEST_SUITE_P(Rates, ArdourSessionRates,
                         testing::Values(RateRow{44100, 16, false, 1, 4},
                                         RateRow{48000, 24, false, 24, 7},
                                         RateRow{96000, 32, true, 23, 3}),
                         [](const auto& row) { return std::to_string(row.param.rate); });

TEST_F(ArdourSession, fadesAndGainAreRegionFacts) {
  rates_.frameRate = 1;
  const TestSource one = MakeSource("one.wav", {24, 1}, 6000);
  const TestSource two = MakeSource("two.wav", {24, 2}, 6000);
  const TestSource over = MakeSource("over.wav", {24, 1}, 400);
  Place(0, 1000, one, 0, 2000, {100, 300, -6});
  Place(0, 2500, one, 0, 2000, {500, 250, 3});  // a crossfade: the fade-out before it is dropped
  Place(0, 4300, one, 3000, 1500, {90, 0, 0});  // its fade-in lies in a fade-out
  Place(1, 1000, two, 0, 3000, {0, 1000, 0});
  Place(1, 1500, two, 500, 600, {200, 200, -1});  // over the middle of another
  // Files that are too short: fades keep their places, and fade what lies under them.
  Place(2, 1000, one, -200, 6400, {400, 300, 0});
  Place(3, 1000, one, 0, 3000);
  Place(3, 1500, over, -300, 1400, {500, 600, 0});
  const std::string path = folder_.Path("session");
  const host::TargetOutcome outcome = Make(path);
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.leftOut, std::vector<std::string>());
  EXPECT_EQ(outcome.notes.size(), 4u);
  // Ardour reads the last sample of a region, alone, as silence; also those of a region's parts.
  isIgnored_ = [this](std::int64_t track, std::int64_t position) {
    static const std::set<std::int64_t> kPartEnds[] = {{}, {}, {7199}, {1799, 2199, 2599}};
    for (const host::SessionRegion& region : session_.Regions()) {
      if (region.track == track && position == region.End() - 1) return true;
    }
    return kPartEnds[track].contains(position);
  };
  EXPECT_LT(LargestDifference(path, 1), kInaudible);
}

TEST_F(ArdourSession, oddNamesAreKeptAndWhatCannotBeIsNamed) {
  rates_.frameRate = 6;
  const char* const kNames[] = {"a \"b\" 'c' & <d>.wav", "Glöckchen 鐘.wav", "a: 1;2%20#3?.wav",
                                "back\\slash.wav"};
  std::int64_t position = 0;
  for (const char* const name : kNames) {
    const TestSource source = MakeSource(name, {24, 1}, 100);
    Place(0, position, source, 0, 100, {}, name);
    position += 100;
  }
  const TestSource under = MakeSource("under.wav", {24, 1}, 5000);
  const TestSource over = MakeSource("over.wav", {24, 1}, 400);
  Place(1, 0, under, 0, 5000);
  Place(1, 1000, over, 100, 1500);  // 300 samples sound, 1200 are missing
  Place(1, 4000, over, -50, 200);
  Place(1, 4500, over, 400, 100);  // all of it is missing
  const TestSource other = MakeSource("other.wav", {24, 1, false, 44100}, 1000);
  const std::string noise = folder_.Write("noise.wav", std::string(5000, 'n'));
  Place(0, 2000, other, 0, 1000);
  Place({0, 3000, 0, 1000, 1, folder_.Path("missing.wav"), "missing", {}, {}});
  Place({0, 4000, 0, 1000, 1, noise, "noise", {}, {}});
  const std::string path = folder_.Path("Öl & <\"Wasser\">: 1");
  const host::TargetOutcome outcome = Make(path);
  EXPECT_EQ(outcome.trouble, "");
  EXPECT_EQ(outcome.notes.size(), 2u);
  ASSERT_EQ(outcome.leftOut.size(), 4u);
  EXPECT_NE(outcome.leftOut[0].find("over.wav"), std::string::npos) << outcome.leftOut[0];
  EXPECT_NE(outcome.leftOut[1].find("44100"), std::string::npos) << outcome.leftOut[1];
  EXPECT_NE(outcome.leftOut[2].find("missing.wav"), std::string::npos) << outcome.leftOut[2];
  EXPECT_NE(outcome.leftOut[3].find("noise.wav"), std::string::npos) << outcome.leftOut[3];
  EXPECT_EQ(LargestDifference(path, 64), 0);
  const pugi::xml_document xml = Xml(path);
  std::vector<std::string> names;
  for (const pugi::xml_node region : xml.child("Session").child("Playlists").child("Playlist")) {
    names.emplace_back(region.attribute("name").value());
  }
  EXPECT_EQ(names, std::vector<std::string>(std::begin(kNames), std::end(kNames)));
}

TEST_F(ArdourSession, folderNamesThatAreNoTextAreMadeToo) {
  const TestSource source = MakeSource("one.wav", {24, 1}, 100);
  Place(0, 0, source, 0, 100);
  std::filesystem::create_directory(folder_.Path("b\xff"));
  for (const std::string& name : {std::string("b\xff/a\xff"), std::string(250, 'n')}) {
    const std::string path = folder_.Path(name);
    ExpectWhole(Make(path));
    EXPECT_TRUE(std::filesystem::exists(path + "/Session.ardour"));
  }
}

TEST_F(ArdourSession, whatIsInTheFileIsWhatAUserNeeds) {
  const TestSource source = MakeSource("one.wav", {24, 1}, 1000);
  record_.firstTrackNumber = 3;
  rates_.frameRate = 2;
  Place(0, 48000, source, 0, 1000);
  Place(4, 96000, source, 0, 1000);
  Place(5, 60000, MakeSource("six.wav", {24, 6}, 100), 0, 100);
  const std::string before = test::TemporaryFolder::Read(source.path);
  const auto writtenBefore = std::filesystem::last_write_time(source.path);
  const std::string path = folder_.Path("session");
  ExpectWhole(Make(path));
  const pugi::xml_document xml = Xml(path);
  const pugi::xml_node session = xml.child("Session");
  std::vector<std::string> tracks;
  for (const pugi::xml_node route : session.child("Routes").children("Route")) {
    tracks.emplace_back(route.attribute("name").value());
    if (tracks.back() == "Master") continue;
    // A panner would take 3 dB from a mono track, and spread the channels of the wide one.
    EXPECT_TRUE(route.select_node(".//PannerShell").node().attribute("bypassed").as_bool());
    const pugi::xml_node output = route.find_child_by_attribute("IO", "direction", "Output");
    EXPECT_TRUE(output.child("Port").child("Connection")) << tracks.back();
  }
  EXPECT_EQ(tracks, (std::vector<std::string>{"Master", "Track 3", "Track 7", "Track 8"}));
  for (const pugi::xml_node file : session.child("Sources").children("Source")) {
    EXPECT_EQ(std::filesystem::path(file.attribute("origin").value()).parent_path(),
              folder_.Path());
    EXPECT_STREQ(file.attribute("flags").value(), "");
  }
  EXPECT_FALSE(session.child("EngineHints"));
  const pugi::xml_node range = session.child("Locations").child("Location");
  EXPECT_STREQ(range.attribute("flags").value(), "IsSessionRange");
  EXPECT_STREQ(range.attribute("start").value(), "a282240000");  // a second
  pugi::xml_document view;
  ASSERT_TRUE(view.load_file((path + "/instant.xml").c_str()));
  const pugi::xml_node editor = view.child("instant").child("Editor");
  EXPECT_EQ(editor.attribute("playhead").as_llong(), 48000);
  EXPECT_LT(editor.attribute("left-frame").as_llong(), 48000);
  EXPECT_GT(editor.attribute("left-frame").as_llong() + 1000 * editor.attribute("zoom").as_llong(),
            97000);
  EXPECT_EQ(test::TemporaryFolder::Read(source.path), before);
  EXPECT_EQ(std::filesystem::last_write_time(source.path), writtenBefore);
  EXPECT_EQ(Names(), (std::vector<std::string>{"one.wav", "session", "six.wav"}));
}

TEST_F(ArdourSession, aRateAtWhichArdourMissesSamplesIsTold) {
  rates_.sampleRate = 31000;
  const TestSource source = MakeSource("one.wav", {24, 1, false, 31000}, 100);
  Place(0, 158760000, source, 0, 100);
  const host::TargetOutcome outcome = Make(folder_.Path("session"));
  EXPECT_NE(outcome.trouble.find("31000 Hz"), std::string::npos) << outcome.trouble;
  EXPECT_EQ(Names(), std::vector<std::string>{"one.wav"});
}

TEST_F(ArdourSession, threeThousandRegionsAreThere) {
  rates_.frameRate = 5;
  const TestSource source = MakeSource("one.wav", {24, 1}, 48000);
  for (int i = 0; i < 3000; ++i) Place(i % 24, 48000 + i * 24, source, i * 10, 700);
  const auto begin = std::chrono::steady_clock::now();
  const std::string path = folder_.Path("session");
  ExpectWhole(Make(path));
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  RecordProperty("seconds", std::to_string(taken.count()));
  std::printf("3000 regions: %.2f s\n", taken.count());
  EXPECT_EQ(LargestDifference(path, 4096), 0);
}

TEST_F(ArdourSession, cancelLeavesNothing) {
  const TestSource source = MakeSource("one.wav", {24, 1}, 100);
  Place(0, 0, source, 0, 100);
  const host::TargetOutcome outcome =
      Make(folder_.Path("session"), [](double share) { return share == 0; });
  EXPECT_NE(outcome.trouble.find("cancelled"), std::string::npos) << outcome.trouble;
  EXPECT_EQ(Names(), std::vector<std::string>{"one.wav"});
}

}  // namespace
}  // namespace velmora::ardour
