#include "rotate/step_tables.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace vorlanepic::testing {
namespace {

TEST(StepTables, HoldRunningSumsInHundredthsCutTowardZero) {
  StepTables steps;
  ASSERT_TRUE(steps.Build(0.1, 12));
  const int32_t cosines[] = {0, 99, 199, 298};
  const int32_t sines[] = {0, 9, 19, 29};
  for (int32_t k = 0; k < 4; ++k) {
    EXPECT_EQ(steps.Cos(k), cosines[k]);
    EXPECT_EQ(steps.Cos(-k), -cosines[k]);
    EXPECT_EQ(steps.Sin(k), sines[k]);
    EXPECT_EQ(steps.Sin(-k), -sines[k]);
  }
  ASSERT_TRUE(steps.Build(std::acos(0.0), 1000));
  EXPECT_EQ(steps.Cos(999), 0);
  EXPECT_EQ(steps.Sin(999), 99900);
}

TEST(StepTables, StepsThatAreNoInt32AreMarked) {
  StepTables steps;
  ASSERT_TRUE(steps.Build(0.0, 21474838));
  EXPECT_EQ(steps.Cos(21474836), 2147483600);
  EXPECT_EQ(steps.Cos(21474837), INT32_MIN);
  EXPECT_EQ(steps.Cos(-21474837), INT32_MIN);
  ASSERT_TRUE(steps.Build(std::numeric_limits<double>::quiet_NaN(), 2));
  EXPECT_EQ(steps.Sin(0), 0);
  EXPECT_EQ(steps.Sin(1), INT32_MIN);
}

}  // namespace
}  // namespace vorlanepic::testing
