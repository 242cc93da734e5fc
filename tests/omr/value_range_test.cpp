#include "omr/value_range.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vorlanepic {
namespace {

TEST(ValueRangeTest, FindsTheExtremesOfAnyLengthWithoutReadingFurther) {
  std::mt19937 random(3);
  for (size_t readable = 1; readable < 70; ++readable) {
    std::vector<uint8_t> values(readable);  // of exactly this size, for the sanitizer
    for (uint8_t& value : values) value = static_cast<uint8_t>(random());
    for (size_t count = 1; count <= readable; ++count) {
      ValueRange range;
      Empty(&range);
      Widen(&range, values.data(), count, readable);
      const auto end = values.begin() + static_cast<ptrdiff_t>(count);
      ASSERT_EQ(Smallest(range), *std::min_element(values.begin(), end))
          << count << " " << readable;
      ASSERT_EQ(Largest(range), *std::max_element(values.begin(), end)) << count << " " << readable;
    }
  }
}

}  // namespace
}  // namespace vorlanepic
