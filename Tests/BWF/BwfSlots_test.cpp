#include <gtest/gtest.h>

#include "BWF/AES31BWF.h"
#include "Support/VirtualSlot.h"

#ifdef VELMORA_KNOWS_VIRTUAL_SLOTS

namespace velmora::test {
namespace {

// The two destructors hold slots 0 and 1.
TEST(BwfSlots, OperationsStandInTheOrderOfTheTable) {
  EXPECT_EQ(VirtualSlot(&AES31BWF::CloseFile), 2);
  EXPECT_EQ(VirtualSlot(&AES31BWF::OpenAtData), 3);
  EXPECT_EQ(VirtualSlot(&AES31BWF::WriteSample), 4);
  EXPECT_EQ(VirtualSlot(&AES31BWF::DisableCache), 5);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetSampleAt), 6);
  EXPECT_EQ(VirtualSlot(&AES31BWF::ReadSample), 7);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetChannels), 8);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetFrames), 9);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetSampleRate), 10);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetBitsPerSample), 11);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetPath), 12);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetChunk), 13);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetChunkCount), 14);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetFormat), 15);
  EXPECT_EQ(VirtualSlot(&AES31BWF::GetBext), 16);
  EXPECT_EQ(VirtualSlot(&AES31BWF::IsValid), 17);
  EXPECT_EQ(VirtualSlot(&AES31BWF::CopyTo), 18);
  EXPECT_EQ(VirtualSlot(&AES31BWF::CopyFrames), 19);
  EXPECT_EQ(VirtualSlot(&AES31BWF::ConvertInto), 20);
}

}  // namespace
}  // namespace velmora::test

#endif
