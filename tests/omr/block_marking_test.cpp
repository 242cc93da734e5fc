#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "omr/block_pictures.h"
#include "omr/plain_blocks.h"
#include "support/failing_heap.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Pair;

int32_t MarkDark(const BlockPicture& picture, const BlockMarkParam& param, const BlockRect& rect,
                 TestSet* set) {
  return ImageBlockMarkHorEx(picture.pixels.data(), picture.height, picture.width, &param, &rect,
                             set->get());
}

// What a picture's blocks look like, as "left,top,width x height,area" each.
std::vector<std::string> Outlines(TestSet& set) {
  std::vector<std::string> outlines;
  for (int32_t i = 0; i < set->count; ++i) {
    const BlockRec& b = set[i];
    outlines.push_back(std::to_string(b.left) + "," + std::to_string(b.top) + " " +
                       std::to_string(b.width) + "x" + std::to_string(b.height) + " " +
                       std::to_string(b.area));
  }
  return outlines;
}

constexpr BlockRect kAll{0, 0, 100, 100};

TEST(BlockMarkingTest, FindsTheBlocksOfPictures) {
  struct Case {
    std::vector<std::string> picture;
    BlockMarkParam param;
    BlockRect rect;
    std::vector<std::string> blocks;
  };
  const std::vector<std::string> dark = {"####", "####", "####"};
  const Case cases[] = {
      {{"#....", ".#...", "..#.."}, kPlainRuns, kAll, {"0,0 3x3 3"}},
      // The arms stand from right to left; the last one, opened third, absorbs the others.
      {{"......#..", "...#..#..", "#..#..#..", "#######.."}, kPlainRuns, kAll, {"0,0 7x4 13"}},
      // Lengths: both limits belong to what is kept, and one alone drops nothing.
      {{"##..........", "###.........", "............", "##########..", "............",
        "###########."},
       {3, 10, 0, 100},
       kAll,
       {"0,1 3x1 3", "0,3 10x1 10"}},
      {{"##.###...."}, {3, 0, 0, 100}, kAll, {"0,0 2x1 2", "3,0 3x1 3"}},
      {{"##.###...."}, {-1, -5, 0, 100}, kAll, {}},
      // Joined runs count their gap; one that so gets too long is removed. Gaps of one never join.
      {{"###..###.........."}, {1, 10, 3, 100}, kAll, {"0,0 8x1 8"}},
      {{"###..###.####....."}, {1, 10, 3, 100}, kAll, {}},
      {{"#.#...", "......"}, {0, 0, 2, 100}, kAll, {"0,0 3x1 3"}},
      {{"#.#...", "......"}, {0, 0, 1, 100}, kAll, {"0,0 1x1 1", "2,0 1x1 1"}},
      // A run takes the last column unseen, and may begin there.
      {{"..##.", "....#"}, kPlainRuns, kAll, {"2,0 3x2 4"}},
      {{"#...#"}, kPlainRuns, kAll, {"0,0 1x1 1", "4,0 1x1 1"}},
      // Rectangles reach one further, left and up with negative extents.
      {dark, kPlainRuns, {1, 1, 2, 1}, {"1,1 3x2 6"}},
      {dark, kPlainRuns, {3, 2, -2, -1}, {"1,1 3x2 6"}},
      {dark, kPlainRuns, {-3, -9, 1, 1}, {"0,0 2x2 4"}},
      {dark, kPlainRuns, {2, 1, 0, 0}, {"2,1 1x1 1"}},
      {dark, kPlainRuns, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MIN}, {"0,0 4x3 12"}},
  };
  for (const Case& c : cases) {
    TestSet set;
    ASSERT_EQ(MarkDark(BlockPicture(c.picture), c.param, c.rect, &set), STATUS_OK);
    EXPECT_THAT(Outlines(set), ElementsAreArray(c.blocks)) << c.picture[0];
  }
}

TEST(BlockMarkingTest, AbsorbedBlocksStandBehindTheSurvivorsPoints) {
  // Opened in this order: at the right, in the middle, at the left, which meets the right one.
  const BlockPicture picture({"......2..", "...7..2..", "3.....4..", "355555556", "........."});
  TestSet set;
  ASSERT_EQ(MarkDark(picture, kPlainRuns, picture.All(), &set), STATUS_OK);
  ASSERT_EQ(set->count, 2);
  EXPECT_THAT(PointsOf(set[0]), ElementsAre(Pair(3, 1)));
  EXPECT_THAT(PointsOf(set[1]),
              ElementsAre(Pair(0, 2), Pair(0, 3), Pair(1, 3), Pair(2, 3), Pair(3, 3), Pair(4, 3),
                          Pair(5, 3), Pair(6, 3), Pair(7, 3), Pair(8, 3), Pair(6, 0), Pair(6, 1),
                          Pair(6, 2)));
  const BlockRec& b = set[1];
  EXPECT_EQ(b.area, 13);
  EXPECT_EQ(b.centerX, 54 / 13);  // 0 + 36 + 18
  EXPECT_EQ(b.centerY, 32 / 13);  // 2 + 27 + 3
  EXPECT_EQ(b.root, 1);
  EXPECT_EQ(b.minValue, 20U);
  EXPECT_EQ(b.maxValue, 50U);  // the 60 stands in the last column, where it is not looked at
  EXPECT_EQ(set->capacity, 100);
}

TEST(BlockMarkingTest, CoordinatesBeyond16BitsAreCutAndSumsWrap) {
  BlockPicture picture(70000, 1, 0);
  TestSet set;
  ASSERT_EQ(MarkDark(picture, kPlainRuns, picture.All(), &set), STATUS_OK);
  ASSERT_EQ(set->count, 1);
  // 0 + 1 + ... + 69999 = 2449965000, which is -1845002296 in 32 bits; a seventy-thousandth of that
  // is -26357, and rounding by adding a half takes one off a negative number.
  EXPECT_EQ(set[0].centerX, -26356);
  EXPECT_EQ(set[0].right, 69999);
  EXPECT_EQ(set[0].points[65535].x, 65535);
  EXPECT_EQ(set[0].points[65536].x, 0);
  EXPECT_EQ(set[0].points[65536].y, 0);
}

void ExpectSame(TestSet& set, const PlainSet& plain) {
  ASSERT_EQ(set->count, static_cast<int32_t>(plain.blocks.size()));
  EXPECT_EQ(set->capacity, plain.capacity);
  for (int32_t i = 0; i < set->count; ++i) {
    const BlockRec& a = set[i];
    const PlainBlock& b = plain.blocks[static_cast<size_t>(i)];
    const auto fields = [](const BlockRec& r) {
      return std::vector<int64_t>{r.area,      r.centerX,   r.centerY,    r.width,         r.left,
                                  r.right,     r.height,    r.bottom,     r.top,           r.state,
                                  r.reserved1, r.reserved2, r.childCount, r.childCapacity, r.root,
                                  r.minValue,  r.maxValue,  r.pointCount, r.pointCapacity};
    };
    ASSERT_EQ(fields(a), fields(b.rec)) << "block " << i;
    const bool samePoints =
        std::equal(b.points.begin(), b.points.end(), a.points, a.points + a.pointCount,
                   [](BlockPoint p, BlockPoint q) { return p.x == q.x && p.y == q.y; });
    ASSERT_TRUE(samePoints) << "block " << i;
  }
}

TEST(BlockMarkingTest, AgreesWithThePlainMarkerOnRandomPictures) {
  std::mt19937 random(7);
  const auto upTo = [&](int32_t most) {
    return static_cast<int32_t>(random() % static_cast<uint32_t>(most + 1));
  };
  for (int round = 0; round < 600; ++round) {
    // Now and then long rows, for runs of many vectors and lists beyond the first reserve.
    const int32_t width = 1 + upTo(round % 10 == 0 ? 400 : 70);
    const int32_t height = 1 + upTo(40);
    BlockPicture picture = RandomPicture(width, height, static_cast<uint32_t>(upTo(100)), &random);
    // Some rows are empty, in some all marked pixels have one value.
    for (size_t row = 0; row < picture.pixels.size(); row += static_cast<size_t>(width)) {
      const int32_t kind = upTo(9);
      for (size_t x = row; kind < 3 && x < row + static_cast<size_t>(width); ++x) {
        uint8_t& pixel = picture.pixels[x];
        if (kind == 0) pixel = 255;
        if (kind > 0 && pixel != 255) pixel = 60;
      }
    }
    const BlockMarkParam param{static_cast<int16_t>(upTo(3)), static_cast<int16_t>(upTo(30)),
                               static_cast<int16_t>(round % 2 == 0 ? 0 : upTo(5)),
                               static_cast<uint8_t>(round % 3 == 0 ? upTo(255) : 100)};
    const BlockRect rect =
        round % 4 == 0 ? BlockRect{upTo(80) - 10, upTo(50) - 10, upTo(120) - 60, upTo(120) - 60}
                       : picture.All();
    TestSet set;
    PlainSet plain;
    ASSERT_EQ(MarkDark(picture, param, rect, &set),
              MarkPlainly(picture.pixels.data(), height, width, param, rect, IsDark, &plain));
    ASSERT_NO_FATAL_FAILURE(ExpectSame(set, plain)) << "round " << round;

    // A second call adds to the same set.
    BlockPicture inverted = picture;
    for (uint8_t& pixel : inverted.pixels) pixel = pixel == 255 ? 0 : pixel;
    ASSERT_EQ(BWBlockMarkHorEx(inverted.pixels.data(), height, width, &param, &rect, set.get()),
              MarkPlainly(inverted.pixels.data(), height, width, param, rect, IsNonZero, &plain));
    ASSERT_NO_FATAL_FAILURE(ExpectSame(set, plain)) << "round " << round << ", second call";
  }
}

TEST(BlockMarkingTest, RefusesWhatCannotBeSearched) {
  const BlockPicture picture({"##.", "##."});
  const uint8_t* pixels = picture.pixels.data();
  const BlockRect all = picture.All();
  TestSet set;
  for (const auto mark : {ImageBlockMarkHorEx, BWBlockMarkHorEx}) {
    for (const BlockRect& rect :
         {BlockRect{3, 0, 1, 1}, BlockRect{0, 2, 1, 1}, BlockRect{9, 0, -6, 1}}) {
      EXPECT_EQ(mark(pixels, 2, 3, &kPlainRuns, &rect, set.get()), BAD_ARGUMENT);
    }
    const BlockRect toOrigin{INT32_MAX, 0, INT32_MIN, 1};  // from -1, which moves to 0
    EXPECT_EQ(mark(pixels, 2, 3, &kPlainRuns, &toOrigin, set.get()), STATUS_OK);
    EXPECT_EQ(mark(pixels, 0, 3, &kPlainRuns, &all, set.get()), BAD_ARGUMENT);
    EXPECT_EQ(mark(pixels, 2, -3, &kPlainRuns, &all, set.get()), BAD_ARGUMENT);
    // Sizes below 1 that the origin still precedes hold no pixel.
    const BlockRect before{INT32_MIN, INT32_MIN, 0, 0};
    EXPECT_EQ(mark(pixels, -5, -5, &kPlainRuns, &before, set.get()), STATUS_OK);
  }
  DestoryBlockSetRec(set.get());
  set->count = 4;  // blocks without an array
  EXPECT_EQ(MarkDark(picture, kPlainRuns, all, &set), 10);
  *set.get() = {};
}

TEST(BlockMarkingTest, KeepsWhatIsFinishedWhenTheHeapFails) {
  const BlockPicture picture(
      {"#..#..#...", "#..#..#...", "#######...", "..........", "#........."});
  const std::vector<std::string> blocks = {"0,0 7x3 13", "0,4 1x1 1"};
  TestSet set;
  ASSERT_EQ(MarkDark(picture, kPlainRuns, picture.All(), &set), STATUS_OK);
  int32_t status = STATUS_OK;
  std::vector<int32_t> failures(2);  // those that kept no new block and those that kept the first
  ForEachHeapFailure([&] { status = MarkDark(picture, kPlainRuns, picture.All(), &set); },
                     [&](int32_t) {
                       EXPECT_EQ(status, OUT_OF_MEMORY);
                       const int32_t added = set->count - 2;
                       ++failures.at(static_cast<size_t>(added));
                       std::vector<std::string> expected = blocks;
                       expected.insert(expected.end(), blocks.begin(), blocks.begin() + added);
                       EXPECT_THAT(Outlines(set), ElementsAreArray(expected));
                       while (set->count > 2) std::free(set->blocks[--set->count].points);
                     });
  EXPECT_THAT(failures, ::testing::Each(::testing::Gt(0)));
  EXPECT_EQ(set->count, 4);
}

// So many runs that rows are let go while blocks still grow: dots and small blocks by the thousand,
// blocks that reach through all rows, and combs that meet again and again.
TEST(BlockMarkingTest, AgreesWithThePlainMarkerOnLargePictures) {
  std::mt19937 random(11);
  std::vector<BlockPicture> pictures;
  for (const uint32_t percent : {5U, 20U, 35U, 60U}) {
    pictures.push_back(RandomPicture(700, 600, percent, &random));
  }
  // Just before all is one block, where the plain marker takes longest.
  pictures.push_back(RandomPicture(480, 400, 42, &random));
  BlockPicture board(500, 500, 255);
  for (size_t i = 0; i < board.pixels.size(); ++i) board.pixels[i] = (i + i / 500) % 2 ? 3 : 255;
  pictures.push_back(board);
  BlockPicture combs(700, 600, 255);
  for (int32_t y = 0; y < combs.height; ++y) {
    for (int32_t x = 0; x < combs.width; ++x) {
      const bool isTooth = x % 2 == 0 && y >= x % 37;
      const bool isJoint = y % 150 == 149 && x / 2 % (y / 100 + 2) != 0;
      if (isTooth || isJoint) combs.At(x, y) = static_cast<uint8_t>(1 + (x + y) % 90);
    }
  }
  pictures.push_back(combs);
  // Two lines that meet behind more blocks than are moved together at once, the right one alone.
  BlockPicture framed = RandomPicture(900, 700, 12, &random);
  for (int32_t y = 0; y < framed.height; ++y) {
    framed.At(0, y) = framed.At(899, y) = 9;
    framed.At(897, y) = framed.At(898, y) = 255;
  }
  for (int32_t x = 0; x < framed.width; ++x) framed.At(x, 699) = 9;
  pictures.push_back(framed);
  for (const BlockPicture& picture : pictures) {
    SCOPED_TRACE(&picture - pictures.data());
    TestSet set;
    PlainSet plain;
    ASSERT_EQ(MarkDark(picture, kPlainRuns, picture.All(), &set), STATUS_OK);
    MarkPlainly(picture.pixels.data(), picture.height, picture.width, kPlainRuns, picture.All(),
                IsDark, &plain);
    ASSERT_NO_FATAL_FAILURE(ExpectSame(set, plain));
  }
}

TEST(BlockMarkingTest, BlocksLeftUnfinishedAreFinishedOrReleased) {
  const BlockPicture picture({"#.#.#...", "........"});
  TestSet set;
  ASSERT_EQ(MarkDark(picture, kPlainRuns, picture.All(), &set), STATUS_OK);
  ASSERT_EQ(set->count, 3);
  BlockRec& growing = set->blocks[0];
  growing.state = BLOCK_GROWING;
  growing.centerX = 7;  // sums while it grows
  growing.area = 2;
  growing.width = growing.height = 0;
  set->blocks[1].state = BLOCK_MERGED;
  ASSERT_EQ(MarkDark(picture, kPlainRuns, {0, 0, 1, 0}, &set), STATUS_OK);
  ASSERT_EQ(set->count, 3);
  EXPECT_EQ(set[0].state, BLOCK_FINISHED);
  EXPECT_EQ(set[0].centerX, 3);
  EXPECT_EQ(set[0].width, 1);
  EXPECT_EQ(set[1].left, 4);
  EXPECT_EQ(set[2].left, 0);
  for (int32_t i = 0; i < 3; ++i) EXPECT_EQ(set[i].root, i);
}

}  // namespace
}  // namespace vorlanepic::testing
