#include "omr/block_points.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorlanepic::omr {
namespace {

using Points = std::vector<std::pair<int32_t, int32_t>>;

// Two runs of a row behind each other, in a list of the exact size.
Points Written(BlockPoint* (*write)(BlockPoint*, const PixelRun&, int32_t), const PixelRun& first,
               const PixelRun& second, int32_t y) {
  const int32_t count = Length(first) + Length(second);
  std::vector<BlockPoint> list(static_cast<size_t>(count) + kSparePoints);
  BlockPoint* end = write(write(list.data(), first, y), second, y);
  EXPECT_EQ(end - list.data(), count);
  Points points;
  for (const BlockPoint* at = list.data(); at < end; ++at) points.emplace_back(at->x, at->y);
  return points;
}

TEST(BlockPointsTest, CoordinatesAreCutTo16Bits) {
  EXPECT_THAT(Written(WriteRun, {65534, 65537, 0, -1}, {70000, 70001, 0, -1}, 65536 + 9),
              testing::ElementsAre(std::pair(65534, 9), std::pair(65535, 9), std::pair(0, 9),
                                   std::pair(4464, 9)));
}

TEST(BlockPointsTest, RunsOfAnyLengthAreWrittenAsPointByPoint) {
  for (int32_t length = 1; length <= 13; ++length) {
    for (const int32_t start : {0, 3, 65530}) {
      const PixelRun first{start, start + length, 0, -1};
      const PixelRun second{start + 20, start + 34 - length, 0, -1};
      EXPECT_EQ(Written(WriteRun, first, second, 40000),
                Written(WriteRunPlain, first, second, 40000));
    }
  }
}

}  // namespace
}  // namespace vorlanepic::omr
