// Blocks that are listed without their points, beside those of the marker that keeps them.
#include "app/services/block_listing.h"

#include <random>
#include <span>

#include <gtest/gtest.h>

namespace vorlane::services {
namespace {

struct ListingCase {
  const char* name;
  uint32_t dark;  // of 256 pixels
  BlockMarkParam param;
};

class BlockListingTest : public ::testing::TestWithParam<ListingCase> {};

// Sparse specks, and a tangle whose blocks merge in every row.
TEST_P(BlockListingTest, AgreesWithTheMarker) {
  constexpr int32_t kWidth = 201;
  constexpr int32_t kHeight = 90;
  std::mt19937 random(3);
  std::vector<uint8_t> grey(size_t{kWidth} * kHeight);
  for (uint8_t& level : grey) {
    level = static_cast<uint8_t>(random() % 256 < GetParam().dark ? random() % 100 : 200);
  }
  BlockMarkParam param = GetParam().param;
  param.threshold = 99;
  const BlockRect rect{3, 2, 190, 80};
  BlockSetRec set{};
  ASSERT_EQ(ImageBlockMarkHorEx(grey.data(), kHeight, kWidth, &param, &rect, &set), STATUS_OK);
  const std::span<const BlockRec> marked(set.blocks, static_cast<size_t>(set.count));

  size_t at = 0;
  const BlockSearch search{99, false, param, {3, 2, 190, 80}};
  ASSERT_TRUE(ListBlocks(grey, kWidth, kHeight, search, [&](const Block& block) {
    if (at == marked.size()) return false;
    const BlockRec& other = marked[at++];
    EXPECT_EQ(block.left, other.left);
    EXPECT_EQ(block.top, other.top);
    EXPECT_EQ(block.right, other.right);
    EXPECT_EQ(block.bottom, other.bottom);
    EXPECT_EQ(block.area, other.area);
    EXPECT_EQ(block.centerX, other.centerX);
    EXPECT_EQ(block.centerY, other.centerY);
    return true;
  }));
  EXPECT_EQ(at, marked.size());
  EXPECT_GT(at, 20U);
  (void)DestoryBlockSetRec(&set);
}

INSTANTIATE_TEST_SUITE_P(Pictures, BlockListingTest,
                         ::testing::Values(ListingCase{"Specks", 30, {}},
                                           ListingCase{"Tangle", 100, {}},
                                           ListingCase{"LimitedRuns", 120, {2, 9, 0, 0}},
                                           ListingCase{"JoinedRuns", 40, {0, 0, 3, 0}}),
                         [](const auto& listing) { return listing.param.name; });

// Sums of so many coordinates pass 32 bits.
TEST(BlockListingTest, FindsTheCentreOfALargeBlock) {
  constexpr int32_t kSide = 3000;
  const std::vector<uint8_t> grey(size_t{kSide} * kSide);
  std::vector<Block> blocks;
  ASSERT_TRUE(
      ListBlocks(grey, kSide, kSide, {0, false, {}, {0, 0, kSide, kSide}}, [&](const Block& block) {
        blocks.push_back(block);
        return true;
      }));
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].area, int64_t{kSide} * kSide);
  EXPECT_EQ(blocks[0].centerX, (kSide - 1) / 2);
  EXPECT_EQ(blocks[0].centerY, (kSide - 1) / 2);
}

}  // namespace
}  // namespace vorlane::services
