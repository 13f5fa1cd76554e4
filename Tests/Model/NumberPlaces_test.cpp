#include "Model/NumberPlaces.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace velmora {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(NumberPlaces, numbersGetPlacesAsTheyComeUp) {
  NumberPlaces places;
  const std::vector<std::int32_t> numbers = {5, -1, 1023, 1024, kHighest, 0, kLowest};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    EXPECT_EQ(places.Find(numbers[i]), NumberPlaces::kNone) << numbers[i];
    EXPECT_EQ(places.PlaceOf(numbers[i]), static_cast<std::int32_t>(i)) << numbers[i];
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    EXPECT_EQ(places.PlaceOf(numbers[i]), static_cast<std::int32_t>(i)) << "a second time";
    EXPECT_EQ(places.Find(numbers[i]), static_cast<std::int32_t>(i));
  }
  EXPECT_EQ(places.Numbers(), numbers);
}

}  // namespace
}  // namespace velmora
