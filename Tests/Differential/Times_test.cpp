#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "Description.h"
#include "RandomAdl.h"
#include "SlowTimes.h"
#include "Timecode/AdlTime.h"

// Timestamps, held against the rule taken one character at a time.

namespace velmora::test::differential {
namespace {

/// Sixteen characters that are right at most places, or a text of any length and kind.
std::string RandomTime(RandomAdl& random) {
  static const std::string kMarks = "('=\")[~|^]<-/+>`?@$!{&*#}|:;,.=#-?!/\377\200\001a0 9";
  const auto mark = [&random] {
    return kMarks[random.Below(static_cast<std::uint32_t>(kMarks.size()))];
  };
  std::string text;
  if (random.OneIn(5)) {
    for (std::uint32_t size = random.Below(20); size > 0; --size)
      text += random.OneIn(3) ? static_cast<char>(1 + random.Below(255)) : mark();
    return text;
  }
  for (int position = 0; position < 16; ++position) {
    const bool isMark = position == 2 || position == 5 || position == 8 || position == 11;
    const bool isOdd = random.OneIn(60);
    text += isMark != isOdd ? mark() : static_cast<char>('0' + random.Below(10));
  }
  if (random.OneIn(10)) text += "more";
  if (random.OneIn(20)) text.resize(random.Below(16));
  return text;
}

TEST(TimesDifferential, RandomTexts) {
  RandomAdl random(1);
  std::string before = "01:00:00:00/0000";
  for (std::uint32_t round = Rounds(60000); round > 0; --round) {
    const std::string time = RandomTime(random);
    const char* const text = time.c_str();
    SCOPED_TRACE(Quoted(time) + " after " + Quoted(before));
    ASSERT_EQ(AdlToSamples(text), SlowSamples(text));
    ASSERT_EQ(AdlDifference(before.c_str(), text), SlowDifference(before.c_str(), text));
    ASSERT_EQ(AdlIsTimestamp(text), IsSlowTimestamp(text));
    ASSERT_EQ(TimestampTimecode(text), SlowTimecode(text));
    before = time;
  }
}

}  // namespace
}  // namespace velmora::test::differential
