#include "TextReference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>

#include "Timecode/AdlTime.h"

namespace velmora::test {
namespace {

constexpr int kTexts = 200'000;
constexpr std::string_view kFrameMarks = "?|:!./=#-";
constexpr std::string_view kRateMarks = "('=\")[~|^]<-/+>`?@$!{&*#}";

class TextReference : public testing::Test {
 protected:
  char OneOf(std::string_view characters) { return characters[random_() % characters.size()]; }
  char Digit() { return OneOf("0123456789"); }
  char AnyByteButNul() { return static_cast<char>(1 + random_() % 255); }

  /// A timestamp, now and then with any other byte at any of its places.
  std::string Timestamp() {
    std::string text(16, '0');
    for (char& c : text) c = Digit();
    text[2] = OneOf(kFrameMarks);
    text[5] = ':';
    text[8] = OneOf(":;,.");
    text[11] = OneOf(kRateMarks);
    for (char& c : text) {
      if (random_() % 32 == 0) c = AnyByteButNul();
    }
    return text;
  }
  /// What might be typed, and a little more.
  std::string Typed() {
    std::string text;
    const std::size_t length = random_() % 20;
    while (text.size() < length)
      text += OneOf("0123456789012345678901234567890123456789::::;;..  +-x\t\xE3");
    return text;
  }
  std::int32_t Code() { return static_cast<std::int32_t>(random_() % kFrameRateCodes.size()); }

  std::mt19937 random_{20};
};

TEST_F(TextReference, timestampsCountAlike) {
  for (int i = 0; i < kTexts; ++i) {
    const std::string text = Timestamp();
    ASSERT_EQ(AdlToSamples(text.c_str()), ReferenceSamples(text.data()))
        << testing::PrintToString(text);
  }
}

TEST_F(TextReference, timestampsThatEndEarlyCountAlike) {
  for (int i = 0; i < kTexts / 10; ++i) {
    std::string text = Timestamp();
    const std::size_t length = random_() % text.size();
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(length), text.end(), '\0');
    const std::string cut(text.c_str());  // up to its first NUL
    std::string continued = cut;
    continued.resize(16);
    ASSERT_EQ(AdlToSamples(cut.c_str()), ReferenceSamples(continued.data()))
        << testing::PrintToString(cut);
  }
}

TEST_F(TextReference, typedTextsCountAlike) {
  constexpr auto kSampleRates = std::to_array<std::int32_t>({44100, 48000, 96000, 0, -1});
  for (int i = 0; i < kTexts; ++i) {
    const std::string text = Typed();
    const std::int32_t code = Code();
    const std::int32_t rate = kSampleRates[random_() % kSampleRates.size()];
    ASSERT_EQ(TimecodeToSamples(text.c_str(), code, rate),
              ReferenceTimecode(text.c_str(), code, rate))
        << testing::PrintToString(text) << ", code " << code << ", rate " << rate;
  }
}

TEST_F(TextReference, timestampsReadAsTimecodeCountAlike) {
  for (int i = 0; i < kTexts; ++i) {
    const std::string text = Timestamp();
    const std::int32_t code = Code();
    ASSERT_EQ(TimecodeToSamples(text.c_str(), code, 48000),
              ReferenceTimecode(text.c_str(), code, 48000))
        << testing::PrintToString(text) << ", code " << code;
  }
}

}  // namespace
}  // namespace velmora::test
