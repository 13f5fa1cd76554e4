#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "Timecode/AdlTime.h"

// A second computation of the times, written from the format alone: it shares no table and no line
// with the first, and the two are held against each other on texts at random.

namespace velmora::test {
namespace {

/// A rate as a fraction: what a mark names before any rounding.
struct Fraction {
  std::int64_t over, under;
};

Fraction FramesPerSecond(char mark) {
  switch (mark) {
    case '?':
    case '|':
      return {30, 1};
    case ':':
      return {30000, 1001};
    case '!':
    case '.':
      return {25, 1};
    case '/':
      return {25000, 1001};
    case '=':
    case '#':
      return {24, 1};
    case '-':
      return {24000, 1001};
    default:
      return {0, 1};
  }
}

Fraction SamplesPerSecond(char mark) {
  switch (mark) {
    case '(':
      return {30720, 1};
    case '\'':
      return {32000000, 1001};
    case '=':
      return {32000, 1};
    case '"':
      return {32032, 1};
    case ')':
      return {100000, 3};
    case '[':
      return {42336, 1};
    case '~':
      return {44100000, 1001};
    case '|':
      return {44100, 1};
    case '^':
      return {441441, 10};
    case ']':
      return {459375, 10};
    case '<':
      return {46080, 1};
    case '-':
      return {48000000, 1001};
    case '/':
      return {48000, 1};
    case '+':
      return {48048, 1};
    case '>':
      return {50000, 1};
    case '`':
      return {84672, 1};
    case '?':
      return {88200000, 1001};
    case '@':
      return {88200, 1};
    case '$':
      return {882882, 10};
    case '!':
      return {91875, 1};
    case '{':
      return {92160, 1};
    case '&':
      return {96000000, 1001};
    case '*':
      return {96000, 1};
    case '#':
      return {96096, 1};
    case '}':
      return {100000, 1};
    default:
      return {0, 1};
  }
}

/// The double next to the fraction, which one division gives.
double Rounded(Fraction fraction) {
  return static_cast<double>(fraction.over) / static_cast<double>(fraction.under);
}

/// Digit by position; a text that ends early goes on with NUL.
std::int32_t Digit(std::string_view text, std::size_t at) {
  return (at < text.size() ? text[at] : '\0') - '0';
}

char Mark(std::string_view text, std::size_t at) {
  return at < text.size() ? text[at] : '\0';
}

struct Counted {
  std::int64_t frames;
  bool drop;
};

/// Frames by counting: whole minutes first, then what drop-frame leaves out of them, two frames for
/// each minute that is no multiple of ten.
Counted CountFrames(std::string_view text) {
  const auto two = [&](std::size_t at) { return 10 * Digit(text, at) + Digit(text, at + 1); };
  const std::int64_t hours = two(0), minutes = two(3), seconds = two(6), frames = two(9);
  const Fraction rate = FramesPerSecond(Mark(text, 2));
  const std::int64_t nominal = rate.under == 1 ? rate.over : rate.over / 1000;
  const bool drop = Mark(text, 8) == ';' || Mark(text, 8) == ',';
  std::int64_t count = ((60 * hours + minutes) * 60 + seconds) * nominal + frames;
  // minutes / 10 rounds toward zero, also for the negative minutes that odd characters make
  if (drop) count -= 2 * (60 * hours + minutes - (6 * hours + minutes / 10));
  return {count, drop};
}

std::int64_t Remainder(std::string_view text) {
  return 1000 * Digit(text, 12) + 100 * Digit(text, 13) + 10 * Digit(text, 14) + Digit(text, 15);
}

std::int64_t Wrap(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

std::int64_t Samples(std::string_view text) {
  const Fraction frameRate = FramesPerSecond(Mark(text, 2));
  if (frameRate.over == 0) return Wrap(std::numeric_limits<std::int64_t>::min(), Remainder(text));
  const double rate = Rounded(SamplesPerSecond(Mark(text, 11)));
  const double count = static_cast<double>(CountFrames(text).frames);
  return static_cast<std::int64_t>(std::ceil(rate * count / Rounded(frameRate))) + Remainder(text);
}

#ifdef __SIZEOF_INT128__

/// The same without any rounding before the last, for what the doubles cannot have spoiled.
std::int64_t ExactSamples(std::string_view text) {
  const Fraction samples = SamplesPerSecond(Mark(text, 11));
  const Fraction frames = FramesPerSecond(Mark(text, 2));
  const __int128 over =
      static_cast<__int128>(samples.over) * CountFrames(text).frames * frames.under;
  const __int128 under = static_cast<__int128>(samples.under) * frames.over;
  const __int128 whole = over / under;  // toward zero, which is up for a negative number
  return static_cast<std::int64_t>(over > 0 && over % under != 0 ? whole + 1 : whole) +
         Remainder(text);
}

#endif

bool HasForm(std::string_view text) {
  const auto in = [&](std::size_t at, std::string_view set) {
    return at < text.size() && set.find(text[at]) != std::string_view::npos;
  };
  for (const std::size_t at : {1U, 4U, 7U, 10U, 12U, 13U, 14U, 15U}) {
    if (!in(at, "0123456789")) return false;
  }
  return in(0, "012") && in(3, "012345") && in(6, "012345") && in(9, "012") && in(8, ";,") &&
         in(2, "?|:!./=#-") && in(11, "('=\")[~|^]<-/+>`?@$!{&*#}");
}

/// Typed timecode, read by hand: a cursor over the text.
std::int64_t TypedSamples(std::string_view text, std::int32_t code, std::int32_t sampleRate) {
  std::size_t at = 0;
  const auto blanks = [&] {
    while (at < text.size() && text[at] == ' ') ++at;
  };
  const auto number = [&](std::int64_t modulus) {
    std::int64_t value = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
      value = 10 * value + (text[at++] - '0');
    }
    return static_cast<int>(value % modulus);
  };
  blanks();
  std::int64_t sign = 1;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) sign = text[at++] == '-' ? -1 : 1;
  blanks();
  const auto next = [&](std::int64_t modulus) {
    blanks();
    if (at < text.size()) ++at;  // the separator, whatever it is
    return number(modulus);
  };
  const auto row = static_cast<std::size_t>(code);
  const int hours = number(100), minutes = next(60), seconds = next(60);
  const int frames = next(std::array{30, 24, 25, 30, 30, 30, 30, 24}[row]);
  std::array<char, 32> stamp{};
  std::snprintf(stamp.data(), stamp.size(), "%02d%c%02d:%02d%c%02d%c0000", hours, "?=.::||-"[row],
                minutes, seconds, "::::;:;:"[row], frames, sampleRate == 44100 ? '|' : '/');
  return sign * Samples(stamp.data());
}

std::size_t LongestNumber(std::string_view text) {
  std::size_t longest = 0, digits = 0;
  for (const char character : text) {
    digits = character >= '0' && character <= '9' ? digits + 1 : 0;
    longest = std::max(longest, digits);
  }
  return longest;
}

/// A text in a block of exactly its size, so that AddressSanitizer sees a byte read beyond it.
class Tight {
 public:
  explicit Tight(const std::string& text) : bytes_(new char[text.size() + 1]) {
    std::memcpy(bytes_.get(), text.c_str(), text.size() + 1);
  }
  operator const char*() const { return bytes_.get(); }

 private:
  std::unique_ptr<char[]> bytes_;
};

class Texts {
 public:
  template <std::size_t N>
  char One(const char (&set)[N]) {
    return set[below(N - 1)];
  }
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }
  std::string Stamp() {
    const auto pair = [&](unsigned bound) {
      const auto value = below(bound);
      return std::string{static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
    };
    std::string text = pair(24) + One("?|:!./=#-") + pair(60) + One(":;,.") + pair(60) +
                       One(":;,.!") + pair(30) + One("('=\")[~|^]<-/+>`?@$!{&*#}");
    for (int i = 0; i < 4; ++i) text += One("0123456789");
    return text;
  }
  /// A stamp with some of its characters changed for any of ASCII, perhaps cut short.
  std::string Odd() {
    std::string text = Stamp();
    for (std::size_t changes = below(4); changes > 0; --changes) {
      text[below(16)] = static_cast<char>(1 + below(126));
    }
    if (below(4) == 0) text.resize(below(17));
    if (below(8) == 0) text += "/;:9";
    return text;
  }
  std::string Typed() {
    std::string text;
    for (std::size_t length = below(24); text.size() < length;) {
      text += below(2) ? One("0123456789") : One("0123456789:;. +-/|xA\t");
    }
    return text;
  }

 private:
  std::mt19937 random_{20261122};
};

constexpr int kTrials = 60000;

TEST(IndependentTimes, StampsAgree) {
  Texts texts;
  for (int trial = 0; trial < kTrials; ++trial) {
    const std::string text = trial % 2 ? texts.Odd() : texts.Stamp();
    const Tight tight(text);
    ASSERT_EQ(AdlToSamples(tight), Samples(text)) << text;
    ASSERT_EQ(AdlSampleRate(tight), Rounded(SamplesPerSecond(Mark(text, 11)))) << text;
    ASSERT_EQ(AdlIsTimestamp(tight), HasForm(text)) << text;
  }
}

#ifdef __SIZEOF_INT128__

// At whole rates the doubles hold every count below 2^53 without loss, and the result is that of
// the fractions.
TEST(IndependentTimes, WholeRatesAreExact) {
  Texts texts;
  int compared = 0;
  for (int trial = 0; trial < kTrials; ++trial) {
    const std::string text = texts.Stamp();
    if (FramesPerSecond(text[2]).under != 1 || SamplesPerSecond(text[11]).under != 1) continue;
    ASSERT_EQ(AdlToSamples(Tight(text)), ExactSamples(text)) << text;
    ++compared;
  }
  EXPECT_GT(compared, kTrials / 4);
}

#endif

TEST(IndependentTimes, TypedTextsAgree) {
  Texts texts;
  constexpr std::int32_t kRates[] = {44100, 48000, 96000, 44099, 0, -1, 2147483647};
  for (int trial = 0; trial < kTrials; ++trial) {
    const std::string text = trial % 4 ? texts.Typed() : texts.Odd();
    if (LongestNumber(text) > 9) continue;  // what does not fit 32 bits has no value that is told
    const auto code = static_cast<std::int32_t>(texts.below(8));
    const std::int32_t rate = kRates[texts.below(std::size(kRates))];
    ASSERT_EQ(TimecodeToSamples(Tight(text), code, rate), TypedSamples(text, code, rate))
        << '"' << text << "\" code " << code << " rate " << rate;
  }
}

TEST(IndependentTimes, DifferencesRunFromFirstToSecond) {
  Texts texts;
  for (int trial = 0; trial < 5000; ++trial) {
    const std::string first = texts.Odd(), second = texts.Odd();
    const auto difference = static_cast<std::int64_t>(static_cast<std::uint64_t>(Samples(second)) -
                                                      static_cast<std::uint64_t>(Samples(first)));
    ASSERT_EQ(AdlDifference(Tight(first), Tight(second)), difference) << first << " " << second;
  }
}

}  // namespace
}  // namespace velmora::test
