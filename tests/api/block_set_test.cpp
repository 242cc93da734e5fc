#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "omr/block_pictures.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

namespace {

TEST(BlockSetTest, OverlapCountsSharedIntegers) {
  EXPECT_EQ(overlap_len(0, 9, 5, 20), 5);
  EXPECT_EQ(overlap_len(0, 4, 5, 9), 0);
  EXPECT_EQ(overlap_len(0, 5, 5, 9), 1);
  EXPECT_EQ(overlap_len(3, 1, 0, 9), 0);
  EXPECT_EQ(overlap_len(INT32_MIN, -2, INT32_MIN, INT32_MAX), INT32_MAX);
  EXPECT_EQ(overlap_len(INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX), 0);  // 2^32 wraps
}

BlockRec Box(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  BlockRec block{};
  block.left = left;
  block.top = top;
  block.right = right;
  block.bottom = bottom;
  return block;
}

TEST(BlockSetTest, DistanceIsTheDiagonalOfTheSharedColumnsAndRows) {
  const BlockRec block = Box(10, 20, 12, 23);
  EXPECT_EQ(block_distance(&block, &block), 5.0);  // 3 columns, 4 rows
  const BlockRec beside = Box(40, 20, 41, 30);
  EXPECT_EQ(block_distance(&block, &beside), 4.0);
  EXPECT_EQ(block_distance(&block, nullptr), 0.0);
  const BlockRec large = Box(0, 0, 46340, 0);  // 46341 squared passes 2^31
  EXPECT_TRUE(std::isnan(block_distance(&large, &large)));
}

TEST(BlockSetTest, ReleasedSetsAreEmptyAndMayBeReleasedAgain) {
  const BlockPicture picture({"#.#...", "......"});
  BlockSetRec set{};
  const BlockRect all = picture.All();
  ASSERT_EQ(ImageBlockMarkHorEx(picture.pixels.data(), 2, 6, &kPlainRuns, &all, &set), 0);
  set.reserved = 5;
  EXPECT_EQ(DestoryBlockSetRec(&set), 0);
  EXPECT_EQ(set.blocks, nullptr);
  EXPECT_EQ(set.count, 0);
  EXPECT_EQ(set.reserved, 0);
  set.count = 3;  // without blocks the rest is left alone
  EXPECT_EQ(DestoryBlockSetRec(&set), 0);
  EXPECT_EQ(set.count, 3);
}

}  // namespace
}  // namespace vorlanepic::testing
