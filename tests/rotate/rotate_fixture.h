// What rotation tests share.
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

#include "rotate/kernels.h"
#include "rotate/row_spans.h"

namespace vorlanepic::testing {

using namespace rotate;

// Columns left..right of rows top..bottom.
inline RowSpans RectangleRegion(int32_t left, int32_t right, int32_t top, int32_t bottom) {
  RowSpans region;
  region.top = top;
  region.bottom = bottom;
  if (region.spans.Allocate(static_cast<size_t>(bottom) + 1)) {
    for (RowSpan& span : region.spans.span()) span = {left, right};
  }
  return region;
}

// Runs once with each instruction set that this machine has.
class InstructionSetTest : public ::testing::TestWithParam<frame::InstructionSet> {
 protected:
  void SetUp() override {
    if (!frame::HasInstructionSet(GetParam())) GTEST_SKIP() << "not on this machine";
    SelectRotateKernels(GetParam());
  }
  void TearDown() override { SelectRotateKernels(frame::BestInstructionSet()); }
};

}  // namespace vorlanepic::testing
