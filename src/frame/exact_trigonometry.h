// The angle functions in plain double arithmetic: the same results on every machine.
#pragma once

namespace vorlanepic::frame {

// Arguments and results in radians. The results are the doubles nearest to the true values, but for
// arguments (about one in 10^14) whose value lies within 2^-46 of a rounding step's middle.
//
//   radians  |radians| <= 2^20. Larger ones, infinities and NaN take the C library's function
//   slope    any value; NaN gives NaN
double ExactSine(double radians);
double ExactCosine(double radians);
double ExactTangent(double radians);
double ExactArcTangent(double slope);

}  // namespace vorlanepic::frame
