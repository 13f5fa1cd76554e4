#include "Prepare/Stamps.h"

#include <gtest/gtest.h>

#include <random>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::prepare {
namespace {

struct FormRow {
  const char* name;
  field::TimeRates rates;
  std::optional<std::int32_t> code;
  const char* second;  ///< one second, which shows all marks
};

/// One second of each; of a pulled rate it is the nominal second, one part in a thousand longer.
const FormRow kForms[] = {
    {"24", {48000, 24, false, false}, std::nullopt, "00=00:01:00/0000"},
    {"25", {48000, 25, false, false}, std::nullopt, "00.00:01:00/0000"},
    {"29.97", {48000, 30, true, false}, std::nullopt, "00:00:01:00/0000"},
    {"29.97 drop", {48000, 30, true, true}, std::nullopt, "00:00:01;00/0000"},
    {"30", {48000, 30, false, false}, std::nullopt, "00|00:01:00/0000"},
    {"30 drop", {48000, 30, false, true}, std::nullopt, "00|00:01;00/0000"},
    {"23.976", {48000, 24, true, false}, std::nullopt, "00-00:01:00/0000"},
    // No code stands for these: the nearest one's marks.
    {"25 drop", {48000, 25, false, true}, std::nullopt, "00.00:01:00/0000"},
    {"24 drop", {48000, 24, false, true}, std::nullopt, "00=00:01:00/0000"},
    {"23.976 drop", {48000, 24, true, true}, std::nullopt, "00-00:01:00/0000"},
    // Another session than the project's.
    {"session of 25", {48000, 30, true, true}, 2, "00.00:01:00/0000"},
    {"undeclared session", {48000, 25, false, false}, 0, "00?00:01:00/0000"},
    {"44.1 kHz", {44100, 25, false, false}, std::nullopt, "00.00:01:00|0000"},
};

TEST(FormFor, takesMarksOfTheFrameRateCodes) {
  for (const FormRow& row : kForms) {
    SCOPED_TRACE(row.name);
    const std::optional<StampForm> form = FormFor(row.rates, row.code);
    ASSERT_TRUE(form);
    EXPECT_EQ(WriteStamp(AdlToSamples(row.second), *form), row.second);
  }
}

TEST(FormFor, readsAFrameRateWithoutACodeAtThatPlaceInSamples) {
  const std::optional<StampForm> form = FormFor({48000, 25, true, false}, std::nullopt);
  ASSERT_TRUE(form);
  EXPECT_EQ(form->frameRateMark, '.');  // 24.975 is nearest to 25
}

TEST(FormFor, hasNoneForASampleRateWithoutAMark) {
  EXPECT_FALSE(FormFor({192000, 25, false, false}, std::nullopt));
}

struct StampRow {
  const char* name;
  std::int64_t samples;
  StampForm form;
  const char* stamp;
};

constexpr StampForm kThirty = {48000, '/', '|', ':'};
constexpr StampForm kDrop = {48000, '/', ':', ';'};

/// Worked out by hand: 1600 samples to the frame at 30 and 48000, 1601.6 at 29.97.
const StampRow kStamps[] = {
    {"zero", 0, kThirty, "00|00:00:00/0000"},
    {"last sample of a frame", 1599, kThirty, "00|00:00:00/1599"},
    {"a frame", 1600, kThirty, "00|00:00:01/0000"},
    {"an hour", 172800000, kThirty, "01|00:00:00/0000"},
    {"the last place of two digits", 100 * 172800000LL - 1, kThirty, "99|59:59:29/1599"},
    {"a frame that ends between samples", 1602, kDrop, "00:00:00;01/0000"},
    {"a sample before it", 1601, kDrop, "00:00:00;00/1601"},
    {"the last frame before the dropped ones", 2881279, kDrop, "00:00:59;29/0000"},
    {"frames 0 and 1 of the minute are dropped", 2882880, kDrop, "00:01:00;02/0000"},
    {"but not of the tenth", 28799972, kDrop, "00:10:00;00/0000"},
};

TEST(WriteStamp, writesTheFrameAndWhatIsLeft) {
  for (const StampRow& row : kStamps) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(WriteStamp(row.samples, row.form), row.stamp);
  }
}

TEST(WriteStamp, hasNoneForWhatItCannotHold) {
  EXPECT_FALSE(WriteStamp(-1, kThirty));
  EXPECT_FALSE(WriteStamp(100 * 172800000LL + 10000, kThirty));
  EXPECT_FALSE(WriteStamp(std::numeric_limits<std::int64_t>::max(), kThirty));
}

TEST(WriteFadeLength, countsAsDropFrame) {
  // Two minutes are 3600 frames at 30; drop-frame counts them on to 04.
  EXPECT_EQ(WriteFadeLength(120 * 48000, kThirty), "00|02:00;04/0000");
  EXPECT_EQ(WriteFadeLength(59 * 48000, kThirty), "00|00:59;00/0000");
  EXPECT_FALSE(WriteFadeLength(-1, kThirty));
  EXPECT_FALSE(WriteFadeLength(31LL * 172800000, kThirty));
}

/// The system's own reader is the witness, at every rate that a mark can name.
TEST(WriteStamp, isReadBackTheSameAtEveryRate) {
  std::mt19937_64 random(5);
  for (const SampleRateMark& sampleRate : kSampleRateMarks) {
    for (const FrameRateMark& frameRate : kFrameRateMarks) {
      for (const char separator : {':', ';'}) {
        const StampForm form = {sampleRate.hz, sampleRate.mark, frameRate.mark, separator};
        const auto day = static_cast<std::int64_t>(86400 * sampleRate.hz);
        for (int i = 0; i < 300; ++i) {
          // Small ones as often as large ones, and the neighbours of frames.
          std::int64_t samples = static_cast<std::int64_t>(random() >> (random() % 60)) % day;
          if (samples < 0) samples = -samples;
          for (std::int64_t near = std::max<std::int64_t>(0, samples - 1); near <= samples + 1;
               ++near) {
            const std::optional<std::string> stamp = WriteStamp(near, form);
            ASSERT_TRUE(stamp) << near;
            ASSERT_EQ(stamp->size(), kTimestampLength);
            ASSERT_EQ(AdlToSamples(stamp->c_str()), near) << *stamp;
            const std::optional<std::string> fade = WriteFadeLength(near, form);
            ASSERT_TRUE(fade) << near;
            ASSERT_TRUE(AdlIsTimestamp(fade->c_str())) << *fade;
            ASSERT_EQ(AdlToSamples(fade->c_str()), near) << *fade;
            // What has been read is written the same again.
            ASSERT_EQ(WriteStamp(AdlToSamples(stamp->c_str()), form), stamp);
          }
        }
      }
    }
  }
}

/// A place on a frame of the session is written without a remainder, which the session's reading
/// of the digits would lose.
TEST(WriteStamp, givesFramesNoRemainder) {
  for (std::int32_t code = 0; code < 8; ++code) {
    const std::optional<StampForm> form = FormFor({48000, 25, false, false}, code);
    ASSERT_TRUE(form);
    for (const char* const digits : {"01:00:00:00", "00:59:59:10", "10:02:03:04"}) {
      const std::int64_t samples = TimecodeToSamples(digits, code, 48000);
      const std::optional<std::string> stamp = WriteStamp(samples, *form);
      ASSERT_TRUE(stamp);
      EXPECT_EQ(stamp->substr(12), "0000") << digits << " at code " << code;
      EXPECT_EQ(TimecodeToSamples(stamp->c_str(), code, 48000), samples) << *stamp;
    }
  }
}

}  // namespace
}  // namespace velmora::prepare
