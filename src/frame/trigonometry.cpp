#include "frame/trigonometry.h"

#include <cmath>

namespace vorlanepic {

double Sine(double radians) { return std::sin(radians); }
double Cosine(double radians) { return std::cos(radians); }
double Tangent(double radians) { return std::tan(radians); }
double ArcTangent(double slope) { return std::atan(slope); }

}  // namespace vorlanepic
