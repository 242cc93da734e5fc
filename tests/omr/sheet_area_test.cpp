#include "omr/sheet_area.h"

#include <cstdint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "omr/block_pictures.h"

namespace vorlanepic::testing {

using namespace omr;
namespace {

using ::testing::FieldsAre;

// 200 x 300 pixels, dark but for columns left..right of rows top..bottom.
BlockPicture LightField(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  BlockPicture picture(200, 300, 10);
  for (int32_t y = top; y <= bottom; ++y) {
    for (int32_t x = left; x <= right; ++x) picture.At(x, y) = 200;
  }
  return picture;
}

frame::PixelRect Find(const BlockPicture& picture, int32_t threshold, int32_t count, bool found) {
  frame::PixelRect area{};
  const GreyView view{picture.pixels.data(), picture.height, picture.width};
  EXPECT_EQ(FindSheetArea(view, threshold, count, &area), found);
  return area;
}

// Fields: left, right, top, bottom.
TEST(SheetAreaTest, EverySecondLineIsLookedAtFromEachSide) {
  const BlockPicture even = LightField(20, 40, 180, 260);
  EXPECT_THAT(Find(even, 100, 100, true), FieldsAre(20, 179, 40, 260));
  const BlockPicture odd = LightField(21, 41, 181, 261);
  EXPECT_THAT(Find(odd, 100, 100, true), FieldsAre(22, 181, 42, 260));
  // The last row is never looked at, the last column is.
  EXPECT_THAT(Find(LightField(0, 0, 199, 299), 100, 100, true), FieldsAre(0, 199, 0, 298));
}

TEST(SheetAreaTest, ALineNeedsAsManyLightPixelsAsAsked) {
  const BlockPicture picture = LightField(20, 40, 179, 261);  // 160 in a row, 222 in a column
  EXPECT_THAT(Find(picture, 100, 160, true), FieldsAre(20, 179, 40, 260));
  EXPECT_THAT(Find(picture, 100, 161, false), FieldsAre(20, 179, 0, 0));
  EXPECT_THAT(Find(picture, 100, 223, false), FieldsAre(0, 0, 0, 0));
  EXPECT_THAT(Find(picture, 199, 160, true), FieldsAre(20, 179, 40, 260));
  EXPECT_THAT(Find(picture, 200, 160, false), FieldsAre(0, 0, 0, 0));
  // Extreme thresholds are not cut to 8 bits.
  EXPECT_THAT(Find(picture, 256, 1, false), FieldsAre(0, 0, 0, 0));
  EXPECT_THAT(Find(picture, INT32_MIN, 200, true), FieldsAre(0, 199, 0, 298));
  EXPECT_THAT(Find(picture, INT32_MAX, 0, true), FieldsAre(0, 199, 0, 298));
  EXPECT_THAT(Find(BlockPicture(1, 1, 255), 100, 1, false), FieldsAre(0, 0, 0, 0));
}

}  // namespace
}  // namespace vorlanepic::testing
