// The mark sheet's bar angle on any sheet with any limits.
#include <cmath>

#include "fuzz_pages.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

struct BarLimits {
  explicit BarLimits(FuzzInput& input)
      : threshold(input.MostlyIn(0, 256)),
        minLength(input.MostlyIn(10, 120)),
        minThickness(input.MostlyIn(0, 10)),
        maxThickness(input.MostlyIn(0, 40)) {}

  int32_t threshold;
  int32_t minLength;
  int32_t minThickness;
  int32_t maxThickness;
};

void RequireSoundAngle(int32_t status, double angle) {
  constexpr double kUntouched = 9;
  Require(status == STATUS_OK || (status == -1 && angle == kUntouched),
          "a call gives an angle or leaves it alone");
  if (status == STATUS_OK) Require(std::abs(angle) < 1.5708, "a bar leans by a quarter turn");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  const bool asDib = input.Flag();
  const BarLimits limits(input);
  const testing::TestImage form = DrawFuzzForm(input);
  double angle = 9;
  if (asDib) {
    const FuzzDib dib(*form.rec(), input);
    const int32_t status = GetAngleOMR(&dib.rec(), limits.threshold, limits.minLength,
                                       limits.minThickness, limits.maxThickness, &angle);
    RequireSoundAngle(status, angle);
    return 0;
  }
  // The grey buffer has no padding between its rows: the bytes of the form's, whatever its depth.
  const ImageRec& rec = *form.rec();
  const int32_t status =
      get_angle_omr(rec.pixels, rec.height, rec.lineBytes, limits.threshold, limits.minLength,
                    limits.minThickness, limits.maxThickness, &angle);
  RequireSoundAngle(status, angle);
  return 0;
}
