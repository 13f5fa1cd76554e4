// What a spot makes of an event's source: gain files, and the names of what it makes.

#include "Spot/EventFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "Support/BwfReference.h"
#include "Support/RendererFixture.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();

class GainRenderer : public RendererTest {
 protected:
  std::unique_ptr<AES31BWF> Render(AES31BWF* source, double gainDb, bool present = true) {
    AES31Event event{};
    event.sourceFile = source;
    event.gain.present = present;
    event.gain.gainDb = gainDb;
    return RenderGainFile(event, target.c_str());
  }
};

TEST_F(GainRenderer, zeroDecibelsStillTakeTheFloatRoad) {
  AES31BWF source(Source({.channels = 2}, {32767, -32768, 1, 100}).c_str());
  ExpectUsable(Render(&source, 0.0));
  EXPECT_EQ(source.stream, nullptr);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 2, 16, 2) + PcmBytes(16, {32766, -32767, 0, 99}));
}

TEST_F(GainRenderer, minusSixDecibelsInDoubles) {
  AES31BWF source(Source({.bits = 24}, {6404384, 7413043, 4342220, -6404384}).c_str());
  ExpectUsable(Render(&source, -6.0));
  // The factor 0.5011872336272722; as a float it would give 3209794, 3715321 and 2176265.
  EXPECT_EQ(TargetSamples(24), (Ints{3209795, 3715322, 2176265, -3209795}));
}

TEST_F(GainRenderer, twentyDecibelsAreTenfoldAndWrap) {
  AES31BWF source(Source({}, {1000, 3276, 3277, -4000, 20000}).c_str());
  ExpectUsable(Render(&source, 20.0));
  EXPECT_EQ(TargetSamples(16), (Ints{9999, 32759, 32769 - 65536, 65536 - 39998, 199993 - 196608}));
}

TEST_F(GainRenderer, absurdLevelsAreSilenceOrTheMostNegative) {
  AES31BWF source(Source({.bits = 32}, {0x40000000, 0, -0x40000000}).c_str());
  ExpectUsable(Render(&source, -1e6));
  EXPECT_EQ(TargetSamples(32), (Ints{0, 0, 0}));
  ExpectUsable(Render(&source, 400.0));
  EXPECT_EQ(TargetSamples(32), (Ints{kMostNegative, 0, kMostNegative}));
  ExpectUsable(Render(&source, 1e6));
  EXPECT_EQ(TargetSamples(32), (Ints{kMostNegative, kMostNegative, kMostNegative}));
}

TEST_F(GainRenderer, takesTheWholeSourceWhereverItsStreamStands) {
  AES31BWF source(Source({.sampleRate = 44100}, {0x1000, 0x2000, 0x4000}).c_str());
  source.GetSampleAt(2, 0);
  ExpectUsable(Render(&source, 0.0));
  EXPECT_EQ(TargetBytes(), WrittenHeader(44100, 1, 16, 3) + PcmBytes(16, {0x0FFF, 0x1FFF, 0x3FFF}));
}

TEST_F(GainRenderer, longFileComesWhole) {
  Ints samples;
  Ints expected;
  for (std::int32_t i = 0; i < 50001; ++i) {
    samples.push_back(i - 25000);
    expected.push_back(Encoded(
        static_cast<float>(static_cast<double>(Decoded(i - 25000, 16)) * 0.5011872336272722), 16));
  }
  AES31BWF source(Source({.channels = 3}, samples).c_str());
  ExpectUsable(Render(&source, -6.0));
  EXPECT_TRUE(TargetBytes() == WrittenHeader(48000, 3, 16, 16667) + PcmBytes(16, expected));
}

TEST_F(GainRenderer, givesNullAndNoFileWithoutGainOrSource) {
  AES31BWF source(Source({}, {1, 2}).c_str());
  AES31BWF invalid(folder.Write("text.wav", "text").c_str());
  EXPECT_EQ(Render(&source, -6.0, false), nullptr);
  EXPECT_EQ(Render(nullptr, -6.0, false), nullptr);
  EXPECT_EQ(Render(nullptr, -6.0), nullptr);
  EXPECT_EQ(Render(&invalid, -6.0), nullptr);
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(GainRenderer, sourceThatVanishedGivesNull) {
  const std::string path = Source({}, {1, 2});
  AES31BWF source(path.c_str());
  std::filesystem::remove(path);
  EXPECT_EQ(Render(&source, -6.0), nullptr);
}

/// An event whose source has the given path. The file need not exist: a name is all that is asked.
class Named {
 public:
  explicit Named(const std::string& path) : file_(path.c_str()) { event_.sourceFile = &file_; }
  const AES31Event& operator*() const { return event_; }

 private:
  AES31BWF file_;
  AES31Event event_{};
};

struct NameRow {
  const char* rule;
  const char* source;
  const char* folder;  // null: beside the source, which only derived files can lie
  const char* copy;
  const char* gain;
};

// No such folder exists, so the first name is always free.
constexpr NameRow kNameRows[] = {
    {"stemAndExtension", "/no-x/a.b.wav", "/no-y", "/no-y/a.wav", "/no-y/a_Gain.wav"},
    {"wholeNameBeside", "/no-x/a.b.wav", nullptr, nullptr, "/no-x/a.b_Gain.wav"},
    {"noExtension", "/no-x/take", "/no-y", "/no-y/take", "/no-y/take_Gain"},
    {"emptyFolder", "/no-x/no-take.wav", "", "/no-take.wav", "/no-take_Gain.wav"},
};

TEST(EventNames, comeFromTheSourceOfTheEvent) {
  for (const NameRow& row : kNameRows) {
    SCOPED_TRACE(row.rule);
    const Named event(row.source);
    EXPECT_EQ(SourcePath(*event), row.source);
    EXPECT_EQ(BuildDerivedPath(*event, row.folder, "_Gain"), row.gain);
    if (row.copy != nullptr) {
      EXPECT_EQ(BuildCopyPath(*event, row.folder), row.copy);
    }
  }
}

TEST(EventNames, eventWithoutASourceHasNoPath) {
  EXPECT_EQ(SourcePath(AES31Event{}), "");
}

TEST(EventNames, heldNamesArePassedOver) {
  TemporaryFolder folder;
  const std::string root = folder.Path();
  const Named event(root + "/src/a.wav");
  for (const char* const expected : {"a.wav", "a.1.wav", "a.2.wav"}) {
    EXPECT_EQ(BuildCopyPath(*event, root.c_str()), folder.Path(expected));
    EXPECT_EQ(BuildCopyPath(*event, root.c_str()), folder.Path(expected)) << "nothing is reserved";
    folder.Write(expected, "");
  }
  folder.Write("a_Gain.wav", "");
  std::filesystem::create_symlink("nowhere", folder.Path("a_Gain.1.wav"));
  EXPECT_EQ(BuildDerivedPath(*event, root.c_str(), "_Gain"), folder.Path("a_Gain.2.wav"));
  EXPECT_EQ(BuildDerivedPath(*event, root.c_str(), "_XFade"), folder.Path("a_XFade.wav"));
}

}  // namespace
}  // namespace velmora::test
