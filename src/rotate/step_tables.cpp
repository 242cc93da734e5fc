#include "rotate/step_tables.h"

#include <utility>

#include "frame/arithmetic.h"
#include "frame/trigonometry.h"

namespace vorlanepic::rotate {

bool StepTables::Build(double angle, size_t size, int32_t quarterTurns) {
  if (!cos_.Allocate(2 * size - 1) || !sin_.Allocate(2 * size - 1)) return false;
  most_ = static_cast<int32_t>(size - 1);

  // Cosine and sine change places, and signs, at a quarter turn, and with them the tables as they
  // are: steps and their roundings are the same to either side of 0.
  double cosine = frame::Cosine(angle);
  double sine = frame::Sine(angle);
  for (int32_t quarter = 0; quarter < quarterTurns; ++quarter) {
    cosine = -std::exchange(sine, cosine);
  }
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
