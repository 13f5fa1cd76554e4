#include "Base/PagesAhead.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace velmora {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// Memory that is filled while it is backed holds what was written, at every size around the least
// for which anything is done and at ends that are no whole pages.
TEST(PagesAhead, changesNothingInTheMemory) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, 64 * kMegabyte - 1, 64 * kMegabyte,
                                 69 * kMegabyte + 4711}) {
    std::vector<std::uint32_t> numbers;
    const std::size_t count = size / sizeof numbers[0];
    numbers.reserve(count);
    PagesAhead pages;
    pages.Start(numbers.data(), size);
    for (std::uint32_t i = 0; i < count; ++i) {
      numbers.push_back(i);
      pages.Filled(numbers.size() * sizeof numbers[0]);
    }
    pages.Stop();
    std::size_t wrong = 0;
    for (std::uint32_t i = 0; i < count; ++i) wrong += numbers[i] == i ? 0 : 1;
    EXPECT_EQ(wrong, 0U) << size << " bytes";
  }
}

TEST(PagesAhead, endsWhereverTheFillingDoes) {
  for (const std::size_t filled : {std::size_t{0}, kMegabyte, 5 * kMegabyte, 80 * kMegabyte}) {
    std::vector<char> bytes;
    bytes.reserve(80 * kMegabyte);
    PagesAhead pages;
    pages.Start(bytes.data(), bytes.capacity());
    while (bytes.size() < filled) {
      bytes.resize(bytes.size() + kMegabyte, 'x');
      pages.Filled(bytes.size());
    }
  }
}

TEST(PagesAhead, beginsAnewForOtherMemory) {
  PagesAhead pages;
  for (int i = 0; i < 3; ++i) {
    std::vector<char> bytes;
    bytes.reserve(70 * kMegabyte);
    pages.Start(bytes.data(), bytes.capacity());
    bytes.resize(bytes.capacity(), 'x');
    pages.Filled(bytes.size());
    pages.Stop();
  }
  pages.Filled(100 * kMegabyte);  // of nothing
  pages.Stop();
}

}  // namespace
}  // namespace velmora
