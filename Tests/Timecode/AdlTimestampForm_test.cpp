#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

constexpr std::string_view kGood = "01=02:03;04/0000";
constexpr std::string_view kRateMarks = "('=\")[~|^]<-/+>`?@$!{&*#}";
constexpr std::string_view kFrameMarks = "?|:!./=#-";

/// What each of the sixteen positions accepts; an empty text accepts anything.
constexpr auto kAccepted = std::to_array<std::string_view>(
    {"012", "0123456789", kFrameMarks, "012345", "0123456789", "", "012345", "0123456789", ";,",
     "012", "0123456789", kRateMarks, "0123456789", "0123456789", "0123456789", "0123456789"});
static_assert(kAccepted.size() == kGood.size());

TEST(AdlIsTimestamp, everyPositionAcceptsItsCharactersAndNoOther) {
  for (std::size_t position = 0; position < kAccepted.size(); ++position) {
    for (int code = 1; code < 256; ++code) {
      std::string text(kGood);
      text[position] = static_cast<char>(code);
      const bool accepted = kAccepted[position].empty() ||
                            kAccepted[position].find(text[position]) != std::string_view::npos;
      EXPECT_EQ(AdlIsTimestamp(text.c_str()), accepted)
          << "code " << code << " at position " << position;
    }
  }
}

struct Case {
  std::string_view rule;
  const char* text;
  bool accepted;
};

TEST(AdlIsTimestamp, formOfAFadeLength) {
  constexpr auto kCases = std::to_array<Case>({
      {"semicolonBeforeTheFrames", "01=02:03;04/0000", true},
      {"commaBeforeTheFrames", "01=02:03,04/0000", true},
      {"colonBeforeTheFramesIsRefused", "01=02:03:04/0000", false},
      {"thirtyHours", "30=00:00;00/0000", false},
      {"twentyNineHoursPass", "29=00:00;00/0000", true},
      {"sixtyMinutes", "00=60:00;00/0000", false},
      {"sixtySeconds", "00=00:60;00/0000", false},
      {"twentyNineFramesPassAtAnyRate", "00=00:00;29/0000", true},
      {"thirtyFrames", "00=00:00;30/0000", false},
      {"anyByteAtPosition5",
       "01=02\x80"
       "03;04/0000",
       true},
      {"unknownFrameMark", "01_02:03;04/0000", false},
      {"unknownRateMark", "01=02:03;04_0000", false},
      {"letterInTheRemainder", "01=02:03;04/000x", false},
      {"anythingMayFollow", "01=02:03;04/0000 and more", true},
      {"underscore", "_", false},
      {"empty", "", false},
  });
  for (const Case& row : kCases) EXPECT_EQ(AdlIsTimestamp(row.text), row.accepted) << row.rule;
  EXPECT_FALSE(AdlIsTimestamp(nullptr));
}

TEST(AdlIsTimestamp, everyTextThatEndsEarlyFails) {
  for (std::size_t length = 0; length < kGood.size(); ++length) {
    const auto exact = std::make_unique<char[]>(length + 1);
    kGood.copy(exact.get(), length);
    exact[length] = '\0';
    EXPECT_FALSE(AdlIsTimestamp(exact.get())) << "length " << length;
  }
}

}  // namespace
}  // namespace velmora
