// How the fitted lines of two edges relate: angles, directions, crossings.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"

namespace vorlanepic::analysis {

// Angles in degrees, above -90 up to 90. Steep angles of different sign stand close to each other:
// -88 and 89 are 3 degrees apart and have the mean -88.5.
double AngleDifference(double a, double b);
double MeanAngle(double a, double b);

// How far two angles are from standing at a right angle, in degrees.
double OffPerpendicular(double a, double b);

// The clockwise turn, 0.0 up to 360.0 degrees, that makes an edge at `degrees`, -90.0..90.0,
// upright or level, whichever is nearer.
double TurnOfEdge(double degrees);

// Gives `line` the direction of `from`; where it lies stays.
void TakeDirection(BorderLine* line, const BorderLine& from);

// Gives `line` the direction at a right angle to `to`, of kind 1, 2 or 3; where it lies stays.
void MakePerpendicular(BorderLine* line, const BorderLine& to);

// Gives `line` an angle in degrees.
void SetAngle(BorderLine* line, double angle);

// Moves `line` so that it passes through (x, y).
void Anchor(BorderLine* line, int32_t x, int32_t y);

// The point in which two lines cross, each coordinate rounded, in *point. Returns STATUS_OK, or
// BAD_ARGUMENT for a line that was not fitted and for lines of one direction.
int32_t Intersect(const BorderLine& a, const BorderLine& b, frame::PixelPoint* point);

}  // namespace vorlanepic::analysis
