#include "rotate/step_tables.h"

#include "frame/trigonometry.h"

namespace vorlanepic {

bool StepTables::Build(double angle, size_t size) {
  if (!cos_.Allocate(size) || !sin_.Allocate(size)) return false;

  const double cosine = Cosine(angle);
  const double sine = Sine(angle);
  // Running sums, not products: their roundings are part of the result.
  double cosineSum = 0.0;
  double sineSum = 0.0;
  for (size_t k = 0; k < size; ++k) {
    cos_[k] = TruncToInt32(cosineSum * 100.0);
    sin_[k] = TruncToInt32(sineSum * 100.0);
    cosineSum += cosine;
    sineSum += sine;
  }
  return true;
}

}  // namespace vorlanepic
