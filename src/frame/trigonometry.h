// The angle functions that results depend on, in one place, so that every stage takes the same
// ones.
#pragma once

namespace vorlanepic::frame {

// Arguments and results in radians; accurate to less than one unit in the last place.
double Sine(double radians);
double Cosine(double radians);
double Tangent(double radians);
double ArcTangent(double slope);

// Degrees and radians are converted with pi taken as 3.1415926; the factors are 180 / 3.1415926 and
// its inverse as doubles.
inline constexpr double kDegreesPerRadian = 57.295780490442965;
inline constexpr double kRadiansPerDegree = 0.017453292222222222;

}  // namespace vorlanepic::frame
