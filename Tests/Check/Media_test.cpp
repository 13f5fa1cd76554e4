// Findings that depend on the files beside a project, and on the session that it is to go into.

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "CheckFixture.h"

namespace velmora::check {
namespace {

using test::LittleEndian;
using test::WaveBytes;

class MediaFindings : public CheckTest {};

struct FileRow {
  const char* name;
  std::string bytes;  ///< of two.wav
  const char* told;
};

TEST_F(MediaFindings, ofWhatStandsInTheFile) {
  const std::string samples(kFrames * 3, '\x12');
  const std::string guid("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14);
  const std::string extensibleBody = LittleEndian()
                                         .Text(test::FormatBody({.bits = 24, .formatTag = 0xFFFE}))
                                         .U16(22)
                                         .U16(24)
                                         .U32(4)
                                         .U16(1)
                                         .Text(guid)
                                         .bytes;
  const std::string floats(kFrames * 4, '\0');
  const FileRow rows[] = {
      {"plain", Wave(), ""},
      {"extensible", WaveBytes().Chunk("fmt ", extensibleBody).Data(samples).Bytes(),
       "media-kind lost 16:5 source 2\n"},
      {"float", WaveBytes().Format({.bits = 32, .formatTag = 3}).Data(floats).Bytes(),
       "media-kind lost 16:5 source 2\n"},
      {"eightBit", WaveBytes().Format({.bits = 8}).Data(std::string(kFrames, '\x80')).Bytes(),
       "media-kind lost 16:5 source 2\n"},
      {"oddChunk",
       WaveBytes()
           .Format({.bits = 24})
           .Chunk("junk", "abc")
           .Raw(std::string(1, '\0'))
           .Data(samples)
           .Bytes(),
       "media-chunks lost 16:5 source 2\n"},
      {"dataLongerThanTheFile",
       WaveBytes().Format({.bits = 24}).Claim("data", 3 * 2 * kFrames, samples).Bytes(),
       "media-chunks lost 16:5 source 2\n"},
      {"noAudio", "Dear diary", "media-broken lost 16:5 source 2\n"},
      {"empty", "", "media-broken lost 16:5 source 2\n"},
      {"anotherRate", Wave({.sampleRate = 44100, .bits = 24}),
       "media-rate misplaced 16:5 source 2\n"},
      {"stereo", Wave({.channels = 2, .bits = 24}), "channels lost 25:1 entry 2 source 2\n"},
      {"short", Wave({.bits = 24}, 47999), "cut-outside-file lost 25:1 entry 2 source 2\n"},
      {"justLongEnough", Wave({.bits = 24}, 48000), ""},
  };
  for (const FileRow& row : rows) {
    Write("two.wav", row.bytes);
    EXPECT_EQ(Told(Check(kClean).findings), row.told) << row.name;
  }
}

TEST_F(MediaFindings, ofASourceThatNoLiveCutUsesAreNotes) {
  const std::string off = With("01.00.02:00/0000 R", "01.00.02:00/0000 D");
  Remove("two.wav");
  EXPECT_EQ(Told(Check(off).findings),
            "media-missing note 16:5 source 2\nevent-off misplaced 25:66 entry 2\n");
  Write("two.wav", Wave({.sampleRate = 44100, .bits = 24}));
  EXPECT_EQ(Told(Check(off).findings),
            "media-rate note 16:5 source 2\nevent-off misplaced 25:66 entry 2\n");
}

TEST_F(MediaFindings, severalFilesAreAmbiguousAndTheirNamesTold) {
  Remove("two.wav");
  Write("reel 1/two.wav", Wave());
  Write("reel 2/two.wav", Wave({.bits = 16}));
  const CheckedProject checked = Check(kClean);
  EXPECT_EQ(Told(checked.findings), "media-ambiguous lost 16:5 source 2\n");
  ASSERT_EQ(checked.findings.size(), 1U);
  EXPECT_NE(checked.findings[0].text.Text().find("reel 1/two.wav"), std::string::npos);
  EXPECT_NE(checked.findings[0].text.Text().find("reel 2/two.wav"), std::string::npos);
}

TEST_F(MediaFindings, aFileInAMediaFolderIsElsewhere) {
  Remove("two.wav");
  const test::TemporaryFolder takes;
  takes.Write("deep/two.wav", Wave());
  options_.mediaFolders = {takes.Path()};
  const CheckedProject checked = Check(kClean);
  EXPECT_EQ(Told(checked.findings), "media-elsewhere lost 16:5 source 2\n");
  EXPECT_EQ(checked.media[1].located.path, takes.Path("deep/two.wav"));
}

TEST_F(MediaFindings, atAGlanceNoFolderIsWalkedThrough) {
  Remove("two.wav");
  Write("reel 1/two.wav", Wave());
  EXPECT_EQ(Told(Check(kClean).findings), "media-elsewhere lost 16:5 source 2\n");
  options_.atAGlance = true;
  EXPECT_EQ(Told(Check(kClean).findings), "media-missing lost 16:5 source 2\n");
}

TEST_F(MediaFindings, aNameInUtf8IsHiddenByTheEncodingAlone) {
  Remove("two.wav");
  Write("Str\xC3\xB6mung.wav", Wave());
  EXPECT_EQ(Told(Check(With("a/two.wav", "a/Str\xC3\xB6mung.wav")).findings),
            "text-encoding lost 16:5 source 2\n");
}

struct SessionRow {
  const char* name;
  std::optional<double> rate;
  std::optional<std::int32_t> frames;
  const char* moved;  ///< in the effect; empty for no finding
};

TEST_F(MediaFindings, compensationIsTheSystemsOwn) {
  // One hour of 25 frames is 172,800,000 samples at 48000 Hz, 158,760,000 at 44100 Hz; one hour of
  // 24 frames is as long, one of 29.97 frames 3.6 s longer.
  const SessionRow rows[] = {
      {"itsOwn", std::nullopt, std::nullopt, ""},
      {"at44100", 44100, std::nullopt, "-14040000 samples"},
      {"at96000", 96000, std::nullopt, ""},
      {"at24Frames", std::nullopt, 1, ""},
      {"at2997", std::nullopt, 3, "172800 samples"},
  };
  for (const SessionRow& row : rows) {
    options_.sessionRate = row.rate;
    options_.sessionFrameRate = row.frames;
    const CheckedProject checked = Check(kClean);
    if (*row.moved == '\0') {
      EXPECT_EQ(Told(checked.findings), "") << row.name;
      continue;
    }
    EXPECT_EQ(Told(checked.findings), "rate-compensated misplaced 20:32 entry 1\n") << row.name;
    ASSERT_EQ(checked.findings.size(), 1U) << row.name;
    EXPECT_NE(checked.findings[0].effect.Text().find(row.moved), std::string::npos)
        << checked.findings[0].effect;
  }
}

}  // namespace
}  // namespace velmora::check
