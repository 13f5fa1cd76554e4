#include "Model/SparseColumn.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace velmora {
namespace {

using Column = SparseColumn<std::string>;

TEST(SparseColumn, beginsWithoutRows) {
  const Column column;
  EXPECT_EQ(column.Rows(), 0);
  EXPECT_EQ(column.At(0), nullptr);
}

TEST(SparseColumn, everyRowHoldsTheCommonValue) {
  Column column;
  column.Fill(3, "common");
  EXPECT_EQ(column.Rows(), 3);
  for (const std::int32_t row : {0, 1, 2}) EXPECT_EQ(*column.At(row), "common");
}

TEST(SparseColumn, hasNoRowOutsideItsCount) {
  Column column;
  column.Fill(3, "common");
  EXPECT_EQ(column.At(3), nullptr);
  EXPECT_EQ(column.At(-1), nullptr);
  EXPECT_FALSE(column.Has(3));
  EXPECT_FALSE(column.Has(-1));
  EXPECT_TRUE(column.Has(2));
}

TEST(SparseColumn, rowCanHoldAValueOfItsOwn) {
  Column column;
  column.Fill(3, "common");
  EXPECT_TRUE(column.Set(1, "own"));
  EXPECT_TRUE(column.Set(1, "later"));
  EXPECT_EQ(*column.At(0), "common");
  EXPECT_EQ(*column.At(1), "later");
  EXPECT_EQ(*column.At(2), "common");
}

TEST(SparseColumn, valueForARowNotThereIsDropped) {
  Column column;
  column.Fill(3, "common");
  EXPECT_FALSE(column.Set(3, "own"));
  EXPECT_FALSE(column.Set(-1, "own"));
  column.Fill(4, "common");
  EXPECT_EQ(*column.At(3), "common");
}

TEST(SparseColumn, fillForgetsTheValuesBefore) {
  Column column;
  column.Fill(3, "common");
  column.Set(1, "own");
  column.Fill(2, "new");
  EXPECT_EQ(column.Rows(), 2);
  EXPECT_EQ(*column.At(1), "new");
}

TEST(SparseColumn, clearTakesTheRowsAway) {
  Column column;
  column.Fill(3, "common");
  column.Set(1, "own");
  column.Clear();
  EXPECT_EQ(column.Rows(), 0);
  EXPECT_EQ(column.At(1), nullptr);
}

TEST(SparseColumn, negativeCountMakesNoRows) {
  Column column;
  column.Fill(std::numeric_limits<std::int32_t>::min(), "common");
  EXPECT_EQ(column.Rows(), 0);
  EXPECT_EQ(column.At(0), nullptr);
}

TEST(SparseColumn, highestCountCostsNoMemory) {
  constexpr std::int32_t kRows = std::numeric_limits<std::int32_t>::max();
  Column column;
  column.Fill(kRows, "common");
  EXPECT_TRUE(column.Set(kRows - 1, "own"));
  EXPECT_FALSE(column.Set(kRows, "own"));
  EXPECT_EQ(*column.At(kRows - 1), "own");
  EXPECT_EQ(*column.At(kRows - 2), "common");
}

}  // namespace
}  // namespace velmora
