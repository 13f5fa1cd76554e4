#include "Peaks/SamplePeaks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "PeaksMaterial.h"

namespace velmora::peaks {
namespace {

Peak PeakIn(SampleForm form, std::string bytes, std::size_t samples) {
  bytes += '\x7F';  // what follows must not count
  return PeakOfBytes(form, reinterpret_cast<const std::uint8_t*>(bytes.data()), samples);
}

Peak PeakOfFloats(const std::vector<float>& floats) {
  std::string bytes(floats.size() * sizeof(float), '\0');
  std::memcpy(bytes.data(), floats.data(), bytes.size());
  return PeakIn(SampleForm::Floats32, bytes, floats.size());
}

TEST(SamplePeaks, upperHalvesOfLittleEndianSamples) {
  EXPECT_EQ(PeakIn(SampleForm::Integers16, std::string("\x34\x12\xFF\xFF", 4), 2),
            (Peak{-1, 0x1234}));
  EXPECT_EQ(PeakIn(SampleForm::Integers24, std::string("\xFF\x34\x12\x00\x00\x80", 6), 2),
            (Peak{-32768, 0x1234}));
  EXPECT_EQ(PeakIn(SampleForm::Integers32, std::string("\xFF\xFF\x34\x12\x00\x00\xFF\x7F", 8), 2),
            (Peak{0x1234, 0x7FFF}));
}

TEST(SamplePeaks, integersOfEachLengthAndEachPlace) {
  std::mt19937 random(7);
  for (const SampleForm form :
       {SampleForm::Integers16, SampleForm::Integers24, SampleForm::Integers32}) {
    const std::size_t width = BytesOf(form);
    for (std::size_t samples = 1; samples <= 130; ++samples) {
      std::string bytes;
      Peak expected;
      for (std::size_t i = 0; i < samples; ++i) {
        const auto upper = static_cast<std::int16_t>(random());
        expected.Add({upper, upper});
        bytes += test::LittleEndian()
                     .Number(random(), width - 2)
                     .U16(static_cast<std::uint16_t>(upper))
                     .bytes;
      }
      EXPECT_EQ(PeakIn(form, bytes, samples), expected) << width << " bytes, " << samples;
    }
  }
}

// One loud sample among silence is found wherever it stands.
TEST(SamplePeaks, aLoneSampleIsNeverPassedOver) {
  for (const SampleForm form :
       {SampleForm::Integers16, SampleForm::Integers24, SampleForm::Integers32}) {
    const std::size_t width = BytesOf(form);
    for (std::size_t place = 0; place < 100; ++place) {
      std::string bytes(100 * width, '\0');
      bytes[(place + 1) * width - 1] = '\x40';
      EXPECT_EQ(PeakIn(form, bytes, 100), (Peak{0, 0x4000})) << width << " at " << place;
      bytes[(place + 1) * width - 1] = '\xC0';
      EXPECT_EQ(PeakIn(form, bytes, 100), (Peak{-0x4000, 0})) << width << " at " << place;
    }
  }
}

TEST(SamplePeaks, floatsAreRoundedDownAndClipped) {
  EXPECT_EQ(PeakOfFloats({0.5F, -0.25F}), (Peak{-8192, 16384}));
  EXPECT_EQ(PeakOfFloats({1.5F, -7}), (Peak{-32768, 32767}));
  EXPECT_EQ(PeakOfFloats({-0.00001F}), (Peak{-1, -1}));
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(PeakOfFloats({kInfinity}), (Peak{32767, 32767}));
  EXPECT_EQ(PeakOfFloats(std::vector<float>(48, -kInfinity)), (Peak{-32768, -32768}));
}

TEST(SamplePeaks, whatIsNoNumberIsPassedOver) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  for (const std::size_t length : {1U, 24U, 25U, 49U}) {
    std::vector<float> floats(length, kNone);
    EXPECT_EQ(PeakOfFloats(floats), (Peak{0, 0})) << length;
    floats[length / 2] = 0.5F;
    EXPECT_EQ(PeakOfFloats(floats), (Peak{16384, 16384})) << length;
  }
}

TEST(SamplePeaks, noSampleHasNoPeak) {
  EXPECT_TRUE(PeakIn(SampleForm::Integers24, "", 0).IsEmpty());
  EXPECT_TRUE(PeakIn(SampleForm::Floats32, "", 0).IsEmpty());
}

}  // namespace
}  // namespace velmora::peaks
