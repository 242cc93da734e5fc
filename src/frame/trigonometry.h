// The angle functions that results depend on, in one place, so that every stage takes the same
// ones.
#pragma once

namespace vorlanepic::frame {

// Arguments and results in radians. The results are the doubles nearest to the true values, the
// same ones on every machine; only arguments (about one in 10^14) whose value lies within 2^-46 of
// a rounding step's middle may give the double on its other side.
//
//   radians  |radians| <= 2^20; others give NaN
//   slope    any value; NaN gives NaN
double Sine(double radians);
double Cosine(double radians);
double Tangent(double radians);
double ArcTangent(double slope);

// Degrees and radians are converted with pi taken as 3.1415926; the factors are 180 / 3.1415926 and
// its inverse as doubles.
inline constexpr double kDegreesPerRadian = 57.295780490442965;
inline constexpr double kRadiansPerDegree = 0.017453292222222222;

}  // namespace vorlanepic::frame
