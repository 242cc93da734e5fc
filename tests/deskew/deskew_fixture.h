// What the tests of the deskew services share.
#pragma once

#include <cstdint>

#include <gtest/gtest.h>

#include "frame/settings.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

using namespace deskew;

// Settings within their ranges; method 2.
constexpr DeskewCropParam kParam{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 50, 2.0};
constexpr uint8_t kBlack[3] = {0, 0, 0};

inline DeskewCropParam ForMethod(int32_t method) {
  DeskewCropParam param = kParam;
  param.DeskewMethod = method;
  return param;
}

class DeskewTest : public ::testing::Test {
 protected:
  FailingImgbuf imgbuf_;
  frame::Settings settings_{};
  double angle_ = -1.0;
};

}  // namespace vorlanepic::testing
