// What the tests of the exported image services share.
#pragma once

#include "api/service_call.h"
#include "deskew/deskew_fixture.h"

namespace vorlanepic::testing {

// Begins with blank settings and leaves none to other tests.
class ServiceTest : public ::testing::Test {
 protected:
  ServiceTest() { api::settings = {}; }
  ~ServiceTest() override { api::settings = {}; }

  FailingImgbuf imgbuf_;
  double angle_ = -1.0;
};

}  // namespace vorlanepic::testing
