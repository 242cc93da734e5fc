#include "omr/block_points.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace vorlanepic {
namespace {

TEST(BlockPointsTest, RunsOfAnyLengthFillTheirPieceAndNothingElse) {
  for (int32_t length = 1; length < 40; ++length) {
    for (const int32_t start : {0, 5, 65520}) {
      for (size_t room = 0; room < 20; ++room) {
        const auto size = static_cast<size_t>(length);
        std::vector<BlockPoint> points(size + room + 1, BlockPoint{9, 9});
        PointCursor cursor{points.data(), points.data() + size + room};
        WriteRun(&cursor, {start, start + length}, 65536 + 3);
        ASSERT_EQ(cursor.next, points.data() + size);
        for (int32_t k = 0; k < length; ++k) {
          const BlockPoint& point = points[static_cast<size_t>(k)];
          ASSERT_EQ(point.x, (start + k) % 65536);
          ASSERT_EQ(point.y, 3);
        }
        ASSERT_EQ(points.back().x, 9);
      }
    }
  }
}

}  // namespace
}  // namespace vorlanepic
