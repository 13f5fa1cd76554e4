#include "Model/RowMap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace velmora {
namespace {

std::vector<std::int32_t> RowsOf(const RowMap& map) {
  std::vector<std::int32_t> events;
  for (std::int32_t row = 0; row < map.Rows(); ++row) events.push_back(map.EventAt(row));
  return events;
}

EventSet SetOf(std::int32_t events, const std::vector<std::int32_t>& members) {
  EventSet set(events);
  for (const std::int32_t event : members) set.Put(event, true);
  return set;
}

TEST(RowMap, beginsWithoutRows) {
  EXPECT_EQ(RowMap().Rows(), 0);
  EXPECT_EQ(RowMap(EventSet(100)).Rows(), 0);
}

TEST(RowMap, allEventsAreTheirOwnRows) {
  for (const std::int32_t events : {1, 63, 64, 65, 1000}) {
    const RowMap map(EventSet(events, true));
    ASSERT_EQ(map.Rows(), events);
    for (std::int32_t row = 0; row < events; ++row) EXPECT_EQ(map.EventAt(row), row);
  }
}

TEST(RowMap, membersStandOneAfterTheOther) {
  const std::vector<std::int32_t> members = {0, 2, 31, 32, 63, 64, 127, 129, 400, 401, 639};
  EXPECT_EQ(RowsOf(RowMap(SetOf(640, members))), members);
}

TEST(RowMap, membersFarApartAreFound) {
  const std::vector<std::int32_t> members = {70000, 300000, 999999};
  EXPECT_EQ(RowsOf(RowMap(SetOf(1000000, members))), members);
}

TEST(RowMap, anySetIsListedInOrder) {
  std::mt19937 random(7);
  for (const std::int32_t events : {64, 513, 5000, 40000}) {
    for (const unsigned oneIn : {2U, 7U, 300U}) {
      for (const bool isDense : {false, true}) {
        std::vector<std::int32_t> members;
        for (std::int32_t event = 0; event < events; ++event) {
          if ((random() % oneIn == 0) != isDense) members.push_back(event);
        }
        EXPECT_EQ(RowsOf(RowMap(SetOf(events, members))), members) << events << ' ' << oneIn;
      }
    }
  }
}

TEST(EventSet, membersComeAndGo) {
  EventSet set(70, true);
  set.Put(69, false);
  set.Put(3, false);
  set.Put(3, true);
  EXPECT_TRUE(set.Has(3));
  EXPECT_FALSE(set.Has(69));
  EXPECT_TRUE(IsWithin(set, EventSet(70, true)));
  EXPECT_FALSE(IsWithin(EventSet(70, true), set));
}

TEST(EventSet, commonMembers) {
  const EventSet both = SetOf(100, {1, 64, 99}) & SetOf(100, {1, 65, 99});
  EXPECT_EQ(RowsOf(RowMap(both)), (std::vector<std::int32_t>{1, 99}));
}

}  // namespace
}  // namespace velmora
