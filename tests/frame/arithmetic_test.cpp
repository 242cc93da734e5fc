#include "frame/arithmetic.h"

#include <cmath>

#include <gtest/gtest.h>

namespace vorlanepic::testing {

using namespace frame;
namespace {

TEST(WrapArithmetic, WrapsAtTheEndsOfTheRange) {
  EXPECT_EQ(WrapAdd(INT32_MAX, 1), INT32_MIN);
  EXPECT_EQ(WrapSub(INT32_MIN, 1), INT32_MAX);
  EXPECT_EQ(WrapMul(INT32_MIN, -1), INT32_MIN);
  EXPECT_EQ(WrapAbs(INT32_MIN), INT32_MIN);
}

TEST(TruncToInt32, CutsTowardZeroAndMarksWhatDoesNotFit) {
  EXPECT_EQ(TruncToInt32(-1.9), -1);
  EXPECT_EQ(TruncToInt32(2147483647.9), INT32_MAX);
  EXPECT_EQ(TruncToInt32(2147483648.0), INT32_MIN);
  EXPECT_EQ(TruncToInt32(-2147483648.9), INT32_MIN);
  EXPECT_EQ(TruncToInt32(std::nan("")), INT32_MIN);
  EXPECT_EQ(RoundToInt32(-0.7), 0);
  EXPECT_EQ(RoundToInt32(-1.6), -1);
}

}  // namespace
}  // namespace vorlanepic::testing
