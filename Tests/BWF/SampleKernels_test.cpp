// The loops over samples, each set that this machine runs against the plain reference.

#include "BWF/SampleKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numeric>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "BWF/SampleConversion.h"
#include "Support/ReferenceKernels.h"

namespace velmora::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Gain = std::optional<double>;

/// Samples `first`, `first` + 1, ... of so many bits, as a file holds them.
Bytes Counting(std::uint32_t bits, std::uint32_t first, std::size_t count) {
  Bytes bytes(count * (bits / 8));
  std::uint8_t* at = bytes.data();
  for (std::size_t i = 0; i < count; ++i) {
    for (std::uint32_t b = 0; b < bits; b += 8) {
      *at++ = static_cast<std::uint8_t>((first + i) >> b);
    }
  }
  return bytes;
}

std::string Name(std::uint32_t from, std::uint32_t to, const Gain& gain) {
  return std::to_string(from) + " to " + std::to_string(to) + " bits" +
         (gain ? " times " + std::to_string(*gain) : "");
}

/// Converts with each set of loops and compares every byte.
void ExpectReference(const Bytes& source, std::uint32_t from, std::uint32_t to, const Gain& gain) {
  const std::size_t count = source.size() / (from / 8);
  Bytes expected(count * (to / 8));
  ReferenceConvert(source.data(), from, expected.data(), to, count, gain);
  for (const SampleKernels* const kernels : KernelsOfThisMachine()) {
    Bytes made(expected.size());
    const SampleConversion conversion(from, to, gain ? &*gain : nullptr, *kernels);
    conversion.Convert(source.data(), made.data(), count);
    if (std::memcmp(made.data(), expected.data(), made.size()) == 0) continue;
    const auto wrong = std::mismatch(made.begin(), made.end(), expected.begin()).first;
    ADD_FAILURE() << kernels->name << ", " << Name(from, to, gain) << ": sample "
                  << static_cast<std::size_t>(wrong - made.begin()) / (to / 8);
  }
}

// In this order: ordinary ones, one that changes nothing but the rounding, ones under which samples
// wrap around once and many times, ones whose products leave 32 bits and floats, and none at all.
const double kGains[] = {std::pow(10.0, -6.0 / 20.0),
                         std::pow(10.0, 3.7 / 20.0),
                         1.0,
                         -0.999,
                         2.0,
                         300.7,
                         -70000.0,
                         1e30,
                         1e300,
                         std::numeric_limits<double>::infinity(),
                         std::nan(""),
                         1e-45,
                         0.0};

/// The gains that every sample goes through: all, or as many of the first as the environment says.
std::span<const double> Gains() {
  const char* const most = std::getenv("VELMORA_KERNEL_GAINS");
  const std::span<const double> all = kGains;
  return most != nullptr ? all.first(std::stoul(most)) : all;
}

TEST(SampleKernels, setsOfThisMachine) {
  ASSERT_FALSE(KernelsOfThisMachine().empty());
  EXPECT_EQ(KernelsOfThisMachine().back(), &PortableKernels());
  EXPECT_EQ(&FastestKernels(), KernelsOfThisMachine().front());
#if defined(__aarch64__)
  EXPECT_STREQ(FastestKernels().name, "NEON");
#elif defined(__x86_64__) || defined(__i386__)
  EXPECT_STREQ(FastestKernels().name, __builtin_cpu_supports("avx2") ? "AVX2" : "portable");
#endif
}

TEST(SampleKernels, everySixteenBitSample) {
  const Bytes all = Counting(16, 0, 1 << 16);
  for (const std::uint32_t to : {16U, 24U}) {
    ExpectReference(all, 16, to, {});
    for (const double gain : kGains) ExpectReference(all, 16, to, gain);
  }
}

/// In two tests, since it takes long where an emulator runs it.
void ExpectReferenceForEveryTwentyFourBitSample(std::uint32_t to) {
  const Bytes all = Counting(24, 0, 1 << 24);
  ExpectReference(all, 24, to, {});
  for (const double gain : Gains()) ExpectReference(all, 24, to, gain);
}

TEST(SampleKernels, everyTwentyFourBitSampleToSixteenBits) {
  ExpectReferenceForEveryTwentyFourBitSample(16);
}

TEST(SampleKernels, everyTwentyFourBitSampleToTwentyFourBits) {
  ExpectReferenceForEveryTwentyFourBitSample(24);
}

TEST(SampleKernels, everyPairOfDepths) {
  std::mt19937 random(23);
  Bytes noise(5 * 3001);
  for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
  for (const std::uint32_t from : {8U, 16U, 24U, 32U, 40U}) {
    const Bytes source(noise.begin(), noise.begin() + from / 8 * 3001);
    for (const std::uint32_t to : {8U, 16U, 20U, 24U, 32U}) {
      ExpectReference(source, from, to, {});
      for (const double gain : kGains) ExpectReference(source, from, to, gain);
    }
  }
}

/// Every count of samples up to several times what is done at once, from every place in memory and
/// to every place: nothing before or after them is written.
TEST(SampleKernels, everyAlignmentAndTail) {
  constexpr std::size_t kMost = 35;
  constexpr std::size_t kPlaces = 17;
  constexpr std::uint8_t kUntouched = 0xA5;
  const double gain = 1.7;
  for (const SampleKernels* const kernels : KernelsOfThisMachine()) {
    for (const std::uint32_t from : {16U, 24U}) {
      for (const std::uint32_t to : {16U, 24U}) {
        SCOPED_TRACE(std::string(kernels->name) + ", " + Name(from, to, gain));
        const SampleConversion conversion(from, to, &gain, *kernels);
        for (std::size_t count = 0; count <= kMost; ++count) {
          for (std::size_t place = 0; place < kPlaces; ++place) {
            // The source ends with its memory, so that a sanitizer sees a read past it.
            Bytes source(place + count * (from / 8));
            std::iota(source.begin(), source.end(), static_cast<std::uint8_t>(count * 37));
            const std::size_t to_place = kPlaces - 1 - place;
            Bytes expected(to_place + count * (to / 8) + kPlaces, kUntouched);
            Bytes made = expected;
            ReferenceConvert(source.data() + place, from, expected.data() + to_place, to, count,
                             gain);
            conversion.Convert(source.data() + place, made.data() + to_place, count);
            ASSERT_EQ(made, expected) << count << " samples from place " << place;
          }
        }
      }
    }
  }
}

TEST(SampleKernels, stretchesLeaveNoSeam) {
  for (const std::size_t count : {1023U, 1024U, 1025U, 2047U, 2048U, 2049U, 70001U}) {
    ExpectReference(Counting(24, 0x7FF000, count), 24, 16, {});
    ExpectReference(Counting(16, 0x7000, count), 16, 24, 1.3);
  }
}

}  // namespace
}  // namespace velmora::test
