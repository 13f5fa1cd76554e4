#include "Bounce/BroadcastHeader.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "BounceFixture.h"
#include "Support/WaveBytes.h"

namespace velmora::bounce {
namespace {

using test::LittleEndian;

/// 2026-11-22 05:06:07 UTC
class FixedDate {
 public:
  FixedDate() { setenv("SOURCE_DATE_EPOCH", "1795323967", 1); }
  ~FixedDate() { unsetenv("SOURCE_DATE_EPOCH"); }
  FixedDate(const FixedDate&) = delete;
  FixedDate& operator=(const FixedDate&) = delete;
};

std::string Header(const BroadcastFacts& facts) {
  const BroadcastSize size = SizeOf(facts);
  EXPECT_EQ(size.complaint, "");
  return BroadcastHeader(facts, size);
}

std::string ExpectedBext(const std::string& description, std::uint64_t timeReference) {
  return LittleEndian()
      .Padded(description, 256)
      .Padded("Velmora", 32)
      .Zeros(32)  // originator's reference
      .Text("2026-11-22")
      .Text("05:06:07")
      .Number(timeReference, 8)
      .U16(1)      // version
      .Zeros(64)   // UMID
      .Zeros(190)  // reserved
      .bytes;
}

TEST(BroadcastHeader, integersHaveTag1) {
  const FixedDate date;
  const std::string expected = LittleEndian()
                                   .Text("RIFF")
                                   .U32(4 + 8 + 602 + 8 + 16 + 8 + 10 * 6)
                                   .Text("WAVE")
                                   .Text("bext")
                                   .U32(602)
                                   .Text(ExpectedBext("Storm", 0x123456789A))
                                   .Text("fmt ")
                                   .U32(16)
                                   .U16(1)          // PCM
                                   .U16(2)          // channels
                                   .U32(96000)      // frames a second
                                   .U32(96000 * 6)  // bytes a second
                                   .U16(6)          // bytes a frame
                                   .U16(24)         // bits
                                   .Text("data")
                                   .U32(60)
                                   .bytes;
  EXPECT_TRUE(Header({BounceDepth::Bits24, 96000, 2, 10, 0x123456789A, "Storm"}) == expected);
}

TEST(BroadcastHeader, floatsHaveTag3AndAFact) {
  const FixedDate date;
  const std::string expected = LittleEndian()
                                   .Text("RIFF")
                                   .U32(4 + 8 + 602 + 8 + 18 + 8 + 4 + 8 + 40)
                                   .Text("WAVE")
                                   .Text("bext")
                                   .U32(602)
                                   .Text(ExpectedBext("", 0))
                                   .Text("fmt ")
                                   .U32(18)
                                   .U16(3)  // IEEE float
                                   .U16(1)
                                   .U32(48000)
                                   .U32(192000)
                                   .U16(4)
                                   .U16(32)
                                   .U16(0)  // bytes of an extension
                                   .Text("fact")
                                   .U32(4)
                                   .U32(10)  // frames
                                   .Text("data")
                                   .U32(40)
                                   .bytes;
  EXPECT_TRUE(Header({BounceDepth::Float32, 48000, 1, 10, 0, ""}) == expected);
}

TEST(BroadcastHeader, oddAudioIsFollowedByAPadByteThatOnlyTheFormCounts) {
  const BroadcastFacts facts = {BounceDepth::Bits24, 48000, 1, 3, 0, ""};
  EXPECT_EQ(SizeOf(facts).padBytes, 1);
  const WaveFile wave = ParseWave(Header(facts));
  EXPECT_EQ(wave.dataBytes, 9u);
  EXPECT_EQ(wave.riffBytes, 4u + 8 + 602 + 8 + 16 + 8 + 10);
}

// The largest form that 32 bits can tell has 0xFFFFFFFE bytes, all sizes being even.
TEST(BroadcastHeader, beyond32BitsTheFormIsRf64) {
  constexpr std::int64_t kBeforeAudio = 4 + 8 + 602 + 8 + 16 + 8;
  constexpr std::int64_t kLast = (0xFFFFFFFE - kBeforeAudio) / 2;  // frames of 16 bits
  const WaveFile last = ParseWave(Header({BounceDepth::Bits16, 48000, 1, kLast, 0, ""}));
  EXPECT_EQ(last.form, "RIFF");
  EXPECT_EQ(last.riffBytes, 0xFFFFFFFEu);

  const std::string header = Header({BounceDepth::Bits16, 48000, 1, kLast + 1, 0, ""});
  const WaveFile beyond = ParseWave(header);
  EXPECT_EQ(beyond.form, "RF64");
  EXPECT_EQ(beyond.order, (std::vector<std::string>{"ds64", "bext", "fmt ", "data"}));
  EXPECT_EQ(beyond.riffBytes, static_cast<std::uint64_t>(kBeforeAudio + 36 + 2 * (kLast + 1)));
  EXPECT_EQ(beyond.riffBytes, header.size() - 8 + 2 * static_cast<std::uint64_t>(kLast + 1));
  EXPECT_EQ(beyond.body.at("ds64"), LittleEndian()
                                        .Number(beyond.riffBytes, 8)
                                        .Number(2 * (kLast + 1), 8)
                                        .Number(kLast + 1, 8)
                                        .U32(0)
                                        .bytes);
}

TEST(BroadcastHeader, factOfAnRf64PointsToDs64) {
  const WaveFile wave =
      ParseWave(Header({BounceDepth::Float32, 48000, 2, std::int64_t{1} << 33, 0, ""}));
  EXPECT_EQ(wave.body.at("fact"), LittleEndian().U32(0xFFFFFFFF).bytes);
  EXPECT_EQ(NumberAt(wave.body.at("ds64"), 16, 8), std::uint64_t{1} << 33);
}

TEST(BroadcastHeader, descriptionEndsAtAWholeCharacter) {
  const std::pair<std::string, std::string> rows[] = {
      {std::string(300, 'a'), std::string(256, 'a')},
      {std::string(255, 'a') + "\u00e9", std::string(255, 'a')},
      {std::string(254, 'a') + "\u00e9x", std::string(254, 'a') + "\u00e9"},
      {"a\xFFz", "a\uFFFDz"},
  };
  for (const auto& [text, expected] : rows) {
    const WaveFile wave = ParseWave(Header({BounceDepth::Bits16, 48000, 1, 1, 0, text}));
    EXPECT_EQ(wave.body.at("bext").substr(0, 256),
              expected + std::string(256 - expected.size(), '\0'));
  }
}

TEST(BroadcastHeader, withoutAFixedMomentTheClockGivesTheDate) {
  for (const char* const fixed : {"", "no number"}) {
    setenv("SOURCE_DATE_EPOCH", fixed, 1);
    const std::string bext =
        ParseWave(Header({BounceDepth::Bits16, 48000, 1, 1, 0, ""})).body.at("bext");
    unsetenv("SOURCE_DATE_EPOCH");
    for (const std::size_t at : {320u, 326u, 328u, 330u, 334u, 336u}) {
      EXPECT_NE(std::string("0123456789").find(bext[at]), std::string::npos) << at;
    }
    EXPECT_EQ(bext[324], '-');
    EXPECT_EQ(bext[332], ':');
  }
}

TEST(BroadcastHeader, whatNoWaveFileHoldsIsTold) {
  struct Row {
    BroadcastFacts facts;
    const char* complaint;
  };
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  const Row rows[] = {
      {{BounceDepth::Bits24, 48000, 21845, 1, 0, ""}, ""},
      {{BounceDepth::Bits24, 48000, 21846, 1, 0, ""},
       "a wave file cannot hold 21846 channels of 48000 Hz"},
      {{BounceDepth::Float32, 384000, 2796, 1, 0, ""}, ""},
      {{BounceDepth::Float32, 384000, 2797, 1, 0, ""},
       "a wave file cannot hold 2797 channels of 384000 Hz"},
      {{BounceDepth::Bits24, 48000, 1, kMost / 3 - 2000, 0, ""}, ""},
      {{BounceDepth::Bits24, 48000, 1, kMost / 3, 0, ""},
       "a wave file cannot hold 3074457345618258602 samples of every channel"},
  };
  for (const Row& row : rows) EXPECT_EQ(SizeOf(row.facts).complaint, row.complaint);
}

}  // namespace
}  // namespace velmora::bounce
