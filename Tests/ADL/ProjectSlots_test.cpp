#include <gtest/gtest.h>

#include "ADL/AES31Project.h"
#include "Support/SlotOf.h"

namespace velmora::test {
namespace {

// The two destructors hold slots 0 and 1.
TEST(ProjectSlots, OperationsStandInTheOrderOfTheTable) {
  EXPECT_EQ(SlotOf(&AES31Project::GetEventFile), 2);
  EXPECT_EQ(SlotOf(&AES31Project::GetConstant), 3);
  EXPECT_EQ(SlotOf(&AES31Project::GetConstantInt), 4);
  EXPECT_EQ(SlotOf(&AES31Project::GetConstantFloat), 5);
  EXPECT_EQ(SlotOf(&AES31Project::GetEvent), 6);
  EXPECT_EQ(SlotOf(&AES31Project::GetEventCount), 7);
  EXPECT_EQ(SlotOf(&AES31Project::LinkEvents), 8);
  EXPECT_EQ(SlotOf(&AES31Project::ResolveSources), 9);
  EXPECT_EQ(SlotOf(&AES31Project::ReadSourceIndex), 10);
  EXPECT_EQ(SlotOf(&AES31Project::ReadEventList), 11);
  EXPECT_EQ(SlotOf(&AES31Project::ReadSections), 12);
  EXPECT_EQ(SlotOf(&AES31Project::CheckSourceIndex), 13);
  EXPECT_EQ(SlotOf(&AES31Project::CheckEventList), 14);
  EXPECT_EQ(SlotOf(&AES31Project::CheckSections), 15);
  EXPECT_EQ(SlotOf(&AES31Project::IsTimestamp), 16);
  EXPECT_EQ(SlotOf(&AES31Project::DumpProject), 17);
}

}  // namespace
}  // namespace velmora::test
