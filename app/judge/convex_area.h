// Areas of convex outlines, corners clockwise as seen.
#pragma once

#include <vector>

#include "app/judge/place.h"

namespace vorlane::judging {

// Of an outline of fewer than three corners: 0.
double Area(const std::vector<Place>& outline);

// What lies in both; empty where they are apart.
std::vector<Place> Common(std::vector<Place> a, const std::vector<Place>& b);

// A rectangle whose sides are moved out by so many pixels; negative moves in, at most to its
// middle.
std::vector<Place> MovedOut(const std::vector<Place>& rectangle, double pixels);

}  // namespace vorlane::judging
