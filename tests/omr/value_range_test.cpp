#include "omr/value_range.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "omr/foreground.h"
#include "support/guarded_memory.h"

namespace vorlanepic::omr {
namespace {

using testing::GuardedBytes;

std::pair<int, int> Limits(const ValueRange& range) { return {range.lowest, range.highest}; }

TEST(ValueRangeTest, NothingMarkedHasLowestAboveHighest) {
  const GuardedBytes light(40, 200);
  EXPECT_EQ(Limits(RangeOfMarked(DarkPixels{199}, light.data(), light.size())), std::pair(255, 0));
  EXPECT_EQ(Limits(RangeOfMarked(DarkPixels{200}, light.data(), light.size())),
            std::pair(200, 200));
}

TEST(ValueRangeTest, ValuesOfAnyNumberAreTakenAsOneByOne) {
  std::mt19937 random(11);
  const uint8_t extremes[] = {0, 1, 127, 128, 254, 255};
  for (size_t count = 1; count < 70; ++count) {
    GuardedBytes values(count);
    for (uint8_t& value : values) {
      value = count % 2 == 0 ? extremes[random() % 6] : static_cast<uint8_t>(80 + random() % 90);
    }
    for (size_t first = 0; first < count; ++first) {
      const uint8_t* from = values.data() + first;
      const size_t seen = 1 + random() % (count - first);
      EXPECT_EQ(Limits(RangeOf(from, seen, count - first)), Limits(RangeOfPlain(from, seen)));
      EXPECT_EQ(Limits(RangeOfMarked(NonZeroPixels{}, from, seen)),
                Limits(RangeOfMarkedPlain(NonZeroPixels{}, from, seen)));
      for (const uint8_t threshold : extremes) {
        EXPECT_EQ(Limits(RangeOfMarked(DarkPixels{threshold}, from, seen)),
                  Limits(RangeOfMarkedPlain(DarkPixels{threshold}, from, seen)));
      }
    }
  }
}

}  // namespace
}  // namespace vorlanepic::omr
