#include "rotate/step_tables.h"

#include "frame/arithmetic.h"
#include "frame/trigonometry.h"

namespace vorlanepic::rotate {

bool StepTables::Build(double angle, size_t size) {
  if (!cos_.Allocate(2 * size - 1) || !sin_.Allocate(2 * size - 1)) return false;
  most_ = static_cast<int32_t>(size - 1);

  const double cosine = frame::Cosine(angle);
  const double sine = frame::Sine(angle);
  // Running sums, not products: their roundings are part of the result.
  double cosineSum = 0.0;
  double sineSum = 0.0;
  for (size_t k = 0; k < size; ++k) {
    const int32_t cosineStep = frame::TruncToInt32(cosineSum * 100.0);
    const int32_t sineStep = frame::TruncToInt32(sineSum * 100.0);
    cos_[size - 1 + k] = cosineStep;
    sin_[size - 1 + k] = sineStep;
    cos_[size - 1 - k] = frame::WrapSub(0, cosineStep);
    sin_[size - 1 - k] = frame::WrapSub(0, sineStep);
    cosineSum += cosine;
    sineSum += sine;
  }
  return true;
}

}  // namespace vorlanepic::rotate
