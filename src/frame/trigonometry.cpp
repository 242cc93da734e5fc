#include "frame/trigonometry.h"

#include <cmath>

#include "frame/exact_trigonometry.h"

namespace vorlanepic::frame {

// glibc's functions agree with the exact ones but for about one argument in 700, where they are one
// unit in the last place off. Others, above all those on x87 arithmetic, are not that near.
#if defined(__GLIBC__)
double Sine(double radians) { return std::sin(radians); }
double Cosine(double radians) { return std::cos(radians); }
double Tangent(double radians) { return std::tan(radians); }
double ArcTangent(double slope) { return std::atan(slope); }
#else
double Sine(double radians) { return ExactSine(radians); }
double Cosine(double radians) { return ExactCosine(radians); }
double Tangent(double radians) { return ExactTangent(radians); }
double ArcTangent(double slope) { return ExactArcTangent(slope); }
#endif

}  // namespace vorlanepic::frame
