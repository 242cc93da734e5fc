// The fast ways against the plain one, byte for byte, with every instruction set of this machine.
#include "rotate/tiled_rotation.h"

#include <cmath>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "rotate/plain_rotation.h"
#include "rotate/rotate_fixture.h"
#include "support/page_drawing.h"

namespace vorlanepic::testing {

using namespace rotate;
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr uint8_t kFillBytes[3] = {0xA5, 0x3C, 0x81};

using Random = std::mt19937;

int32_t Between(Random& random, int32_t least, int32_t greatest) {
  return std::uniform_int_distribution(least, greatest)(random);
}

// Noise over the whole range and of extreme levels.
void Scribble(Random& random, TestImage& image) {
  constexpr uint8_t kExtremes[] = {0, 127, 128, 254, 255};
  const int32_t extremes = Between(random, 0, 2);  // none, half or all of the bytes
  for (int32_t i = 0; i < image.rec()->imageBytes; ++i) {
    image.rec()->pixels[i] = Between(random, 0, 1) < extremes
                                 ? kExtremes[Between(random, 0, 4)]
                                 : static_cast<uint8_t>(Between(random, 0, 255));
  }
}

// The whole image; or a rectangle, an ellipse or a ragged region of rows by chance.
enum class Shape { kWhole, kRectangle, kConvex, kRagged };

RowSpans RegionOf(Random& random, Shape shape, int32_t width, int32_t height) {
  if (shape == Shape::kWhole) return RectangleRegion(0, width - 1, 0, height - 1);
  const int32_t top = Between(random, 0, height - 2);
  const int32_t bottom = Between(random, top + 1, height - 1);
  const int32_t left = Between(random, 0, width - 1);
  RowSpans region = RectangleRegion(left, Between(random, left, width - 1), top, bottom);
  for (int32_t y = top; y <= bottom && shape != Shape::kRectangle; ++y) {
    RowSpan& span = region.spans[static_cast<size_t>(y)];
    if (shape == Shape::kRagged) {  // may be empty
      span = {Between(random, 0, width / 2), Between(random, 0, width - 1)};
      continue;
    }
    const double middle = 0.5 * (top + bottom);
    const double across = (y - middle) / (bottom - middle + 1);
    const double half = 0.5 * (width - 1) * std::sqrt(1 - across * across);
    span.left = static_cast<int32_t>(0.5 * (width - 1) - half);
    span.right = static_cast<int32_t>(0.5 * (width - 1) + half);
  }
  return region;
}

double AngleOf(Random& random) {
  const double known[] = {0,       1e-9,     -1e-4,   0.0087, -0.035,   0.1746,      0.7,
                          kPi / 4, -kPi / 4, kPi / 2, kPi,    -kPi / 2, 3 * kPi / 4, 6.24};
  if (Between(random, 0, 2) == 0) return std::uniform_real_distribution(-7.0, 7.0)(random);
  return known[static_cast<size_t>(Between(random, 0, static_cast<int32_t>(std::size(known)) - 1))];
}

class TiledRotationTest : public InstructionSetTest {
 protected:
  // Turns `source` both ways, in two parts of rows, and compares all bytes.
  static void Compare(const TestImage& source, const RowSpans& region, const Turn& turn) {
    const int32_t depth = source.rec()->bitsPerPixel;
    TestImage expected(turn.outWidth, turn.outHeight, depth);
    TestImage actual(turn.outWidth, turn.outHeight, depth);
    const auto steps =
        static_cast<size_t>(std::max(turn.outWidth, turn.outHeight)) + kMostNeighbours;
    RotateJob plain{*source.rec(), *expected.rec(), region, turn, kFillBytes, {}};
    RotateJob fast{*source.rec(), *actual.rec(), region, turn, kFillBytes, {}};
    ASSERT_TRUE(plain.steps.Build(turn.angle, steps) && fast.steps.Build(turn.angle, steps));
    RotateRowsPlain(plain, 0, turn.outHeight - 1);

    ASSERT_TRUE(TiledRotation::Suits(fast));
    TiledRotation rotation(fast);
    ASSERT_TRUE(rotation.Build());
    const int32_t cut = fast.halfHeight();
    rotation.RotateRows(cut + 1, turn.outHeight - 1);
    rotation.RotateRows(0, cut);
    const auto bytes = static_cast<size_t>(expected.rec()->imageBytes);
    ASSERT_EQ(std::memcmp(expected.rec()->pixels, actual.rec()->pixels, bytes), 0)
        << depth << " bits, interpolation " << turn.interpolation << ", angle " << turn.angle
        << ", source " << source.rec()->width << " x " << source.rec()->height << ", output "
        << turn.outWidth << " x " << turn.outHeight;
  }

  static void CompareAllInterpolations(const TestImage& source, const RowSpans& region, Turn turn) {
    const bool isBits = source.rec()->bitsPerPixel == 1;
    for (const int32_t interpolation : {INTERP_BICUBIC, INTERP_BILINEAR, INTERP_NEAREST}) {
      if (isBits && interpolation != INTERP_NEAREST) continue;
      turn.interpolation = interpolation;
      ASSERT_NO_FATAL_FAILURE(Compare(source, region, turn));
    }
  }

  static void CompareRandomTurns(Random& random, int32_t times, int32_t mostSource,
                                 int32_t mostOutput) {
    constexpr Shape kShapes[] = {Shape::kWhole, Shape::kRectangle, Shape::kConvex, Shape::kRagged};
    for (int32_t i = 0; i < times; ++i) {
      const int32_t width = Between(random, 1, mostSource);
      const int32_t height = Between(random, 2, mostSource);
      for (const int32_t depth : {1, 8, 24}) {
        TestImage source(width, height, depth, 4 * Between(random, 0, 2));
        Scribble(random, source);
        const RowSpans region = RegionOf(random, kShapes[i % 4], width, height);
        Turn turn{};
        turn.angle = AngleOf(random);
        turn.outWidth = Between(random, 1, mostOutput);
        turn.outHeight = Between(random, 1, mostOutput);
        turn.centerX = Between(random, 0, width - 1);
        turn.centerY = Between(random, 0, height - 1);
        ASSERT_NO_FATAL_FAILURE(CompareAllInterpolations(source, region, turn));
      }
    }
  }
};

TEST_P(TiledRotationTest, GivesThePlainBytesForSmallImagesAndWideOutputs) {
  Random random(1);
  CompareRandomTurns(random, 400, 75, 75);
  CompareRandomTurns(random, 16, 300, 900);
}

// A page that fills its image, turned about its middle: all rows hold long runs, and the offsets
// change their signs inside them.
TEST_P(TiledRotationTest, GivesThePlainBytesForPagesAtAllAngles) {
  Random random(3);
  for (const int32_t depth : {1, 8, 24}) {
    TestImage source(330, 300, depth);
    Scribble(random, source);
    const RowSpans region = RegionOf(random, Shape::kWhole, 330, 300);
    std::vector<double> angles;
    for (int32_t degrees = 0; degrees < 360; degrees += 15) {
      angles.push_back(degrees * kPi / 180 + (degrees % 30 == 0 ? 0.0 : 0.004));
    }
    // Small turns either way, also upside down: by the source rows that neighbours lie in.
    for (const double degrees : {0.5, 1.5, 2.5, 4.0, 6.0, 8.0, 10.0, 12.0}) {
      for (const double way : {degrees, -degrees, 180 + degrees, 180 - degrees}) {
        angles.push_back(way * kPi / 180);
      }
    }
    for (const double angle : angles) {
      ASSERT_NO_FATAL_FAILURE(
          CompareAllInterpolations(source, region, {angle, 165, 150, 310, 290, 0}));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(InstructionSets, TiledRotationTest,
                         ::testing::ValuesIn(frame::kInstructionSets));

TEST(TiledRotation, LeavesOddJobsToThePlainWay) {
  TestImage source(40, 30, 8);
  const TestImage target(10, 10, 8);
  const RowSpans region = RectangleRegion(0, 39, 0, 29);
  const auto suits = [&](const Turn& turn) {
    return TiledRotation::Suits({*source.rec(), *target.rec(), region, turn, kFillBytes, {}});
  };
  EXPECT_TRUE(suits({0.1, 5, 5, 10, 10, INTERP_NEAREST}));
  EXPECT_FALSE(suits({std::nan(""), 5, 5, 10, 10, INTERP_NEAREST}));
  EXPECT_FALSE(suits({0.1, 5, 5, 30'000'000, 10, INTERP_NEAREST}));
  source.rec()->width = INT32_MAX;
  EXPECT_FALSE(suits({0.1, 5, 5, 10, 10, INTERP_NEAREST}));
  source.rec()->width = 40;
  std::swap(source.rec()->rows[3], source.rec()->rows[4]);
  EXPECT_FALSE(suits({0.1, 5, 5, 10, 10, INTERP_NEAREST}));
}

}  // namespace
}  // namespace vorlanepic::testing
