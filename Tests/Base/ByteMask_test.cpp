#include "Base/ByteMask.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>

namespace velmora {
namespace {

/// Byte by byte.
template <class Question>
std::uint64_t Bits(const char* text, std::size_t size, const Question& question) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < size; ++i) {
    if (question(static_cast<signed char>(text[i]))) bits |= std::uint64_t{1} << i;
  }
  return bits;
}

template <std::size_t Bytes, class Part>
void ExpectBits(const char* text) {
  const ByteMask<Bytes, Part> mask(text);
  for (const char c : {'\0', '\n', '\r', ' ', '!', '"', '<', '\x7F', '\x80', '\xFF'}) {
    const auto wanted = static_cast<signed char>(c);
    EXPECT_EQ(mask.Equal(c), Bits(text, Bytes, [&](signed char b) { return b == wanted; }));
    if (wanted < 0) continue;
    EXPECT_EQ(mask.Below(c), Bits(text, Bytes, [&](signed char b) { return b < wanted; }));
  }
}

template <class Part>
void ExpectBitsOfAllSizes(const char* text) {
  ExpectBits<16, Part>(text);
  ExpectBits<32, Part>(text);
  ExpectBits<64, Part>(text);
}

void ExpectBitsOfAllForms(const char* text) {
  ExpectBitsOfAllSizes<EightByteMask>(text);
  ExpectBitsOfAllSizes<BestByteMask>(text);
}

/// One past the last that any of them reads.
constexpr std::size_t kRoom = 64;

TEST(ByteMask, everyValueOfAByteBesideEveryOther) {
  std::array<char, kRoom> text{};
  for (unsigned first = 0; first < 256; ++first) {
    for (unsigned second = 0; second < 256; second += 5) {
      for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char>(i % 2 == 0 ? first : second);
      }
      ExpectBitsOfAllForms(text.data());
    }
  }
}

TEST(ByteMask, everyPlaceHasItsBit) {
  for (std::size_t at = 0; at < kRoom; ++at) {
    std::array<char, kRoom> text{};
    text.fill('x');
    text[at] = '\n';
    const std::uint64_t bit = std::uint64_t{1} << at;
    EXPECT_EQ((ByteMask<64, EightByteMask>(text.data()).Equal('\n')), bit);
    EXPECT_EQ((ByteMask<64>(text.data()).Equal('\n')), bit);
  }
}

TEST(ByteMask, randomBytesAtAnyAddress) {
  std::mt19937 random(1);
  std::array<char, kRoom + 16> text{};
  for (int i = 0; i < 2000; ++i) {
    for (char& c : text) c = static_cast<char>(random());
    ExpectBitsOfAllForms(text.data() + random() % 16);
  }
}

}  // namespace
}  // namespace velmora
