#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "omr/block_pictures.h"
#include "omr/selection_order.h"
#include "support/failing_heap.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

using namespace omr;
namespace {

using ::testing::ElementsAre;

std::vector<int32_t> FieldOf(TestSet& set, int32_t BlockRec::*field) {
  std::vector<int32_t> values;
  values.reserve(static_cast<size_t>(set->count));
  for (int32_t i = 0; i < set->count; ++i) values.push_back(set[i].*field);
  return values;
}

// Three marks, met from the top: centred at 40, at 10, at 25. The last is the widest.
BlockPicture ThreeMarks() {
  BlockPicture picture(60, 9, 0);
  picture.At(40, 1) = 1;
  picture.At(10, 3) = 1;
  for (int32_t x = 5; x <= 45; ++x) picture.At(x, 6) = 1;
  return picture;
}

TEST(LabellingTest, OrdersByCentreOrByLeftEdgeAndKeepsTheFormerPlaces) {
  const BlockPicture picture = ThreeMarks();
  TestSet byCentre;
  ASSERT_EQ(bw_label_center(picture.pixels.data(), 9, 60, byCentre.get()), 1);
  EXPECT_THAT(FieldOf(byCentre, &BlockRec::centerX), ElementsAre(10, 25, 40));
  EXPECT_THAT(FieldOf(byCentre, &BlockRec::root), ElementsAre(1, 2, 0));
  TestSet byLeft;
  ASSERT_EQ(bw_label_left(picture.pixels.data(), 9, 60, byLeft.get()), 1);
  EXPECT_THAT(FieldOf(byLeft, &BlockRec::left), ElementsAre(5, 10, 40));
  EXPECT_THAT(FieldOf(byLeft, &BlockRec::root), ElementsAre(2, 1, 0));
}

TEST(LabellingTest, AnAreaReachesOneRowAndColumnFurther) {
  const BlockPicture picture = ThreeMarks();
  const auto labelled = [&](const LabelArea& area, auto label) {
    TestSet set;
    EXPECT_EQ(label(picture.pixels.data(), 9, 60, &area, set.get()), 1);
    return FieldOf(set, &BlockRec::left);
  };
  EXPECT_THAT(labelled({2, 5, 0, 59}, bw_label_left_area), ElementsAre(5, 10));
  EXPECT_THAT(labelled({2, 4, 0, 59}, bw_label_center_area), ElementsAre(10));
  EXPECT_THAT(labelled({1, 1, 39, 39}, bw_label_center_area), ElementsAre(40));
  EXPECT_THAT(labelled({1, 1, 38, 38}, bw_label_center_area), ElementsAre());
  TestSet untouched;
  const LabelArea below{9, 12, 0, 5};
  EXPECT_EQ(bw_label_center_area(picture.pixels.data(), 9, 60, &below, untouched.get()), 0);
  // The sums of the largest areas don't wrap.
  EXPECT_THAT(labelled({INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX}, bw_label_center_area),
              ElementsAre(10, 5, 40));
}

TEST(LabellingTest, AHeapFailureInTheSortingCostsTimeOnly) {
  const BlockPicture picture = ThreeMarks();
  TestSet set;
  int32_t labelled = 0;
  ForEachHeapFailure(
      [&] {
        DestoryBlockSetRec(set.get());
        labelled = bw_label_center(picture.pixels.data(), 9, 60, set.get());
      },
      [&](int32_t) {
        if (labelled == 0) return;
        EXPECT_THAT(FieldOf(set, &BlockRec::centerX), ElementsAre(10, 25, 40));
      });
  EXPECT_EQ(labelled, 1);
}

// Records that tell their former place and have equal keys; selection sort exchanges some of those.
std::vector<BlockRec> Records(const std::vector<int32_t>& keys) {
  std::vector<BlockRec> records(keys.size());
  for (size_t i = 0; i < keys.size(); ++i) {
    records[i].left = keys[i];
    records[i].root = static_cast<int32_t>(i);
  }
  return records;
}

std::vector<int32_t> Places(const std::vector<BlockRec>& records) {
  std::vector<int32_t> places;
  places.reserve(records.size());
  for (const BlockRec& record : records) places.push_back(record.root);
  return places;
}

TEST(SelectionOrderTest, GivesThePlainOrderForAnyKeys) {
  // The 1 is exchanged with the first 2, which so comes behind the second one.
  std::vector<BlockRec> records = Records({2, 2, 1});
  SelectionSort(records.data(), 3, &BlockRec::left);
  EXPECT_THAT(Places(records), ElementsAre(2, 1, 0));
  std::mt19937 random(17);
  for (int32_t count = 0; count < 300; ++count) {
    std::vector<int32_t> keys(static_cast<size_t>(count));
    const auto distinct = static_cast<uint32_t>(1 + random() % 40);
    for (int32_t& key : keys) key = static_cast<int32_t>(random() % distinct) - 5;
    if (count > 2) keys[1] = INT32_MIN, keys[2] = INT32_MAX;
    std::vector<BlockRec> fast = Records(keys);
    std::vector<BlockRec> plain = Records(keys);
    SelectionSort(fast.data(), count, &BlockRec::left);
    SelectionSortPlain(plain.data(), count, &BlockRec::left);
    ASSERT_EQ(Places(fast), Places(plain)) << count;
  }
}

}  // namespace
}  // namespace vorlanepic::testing
