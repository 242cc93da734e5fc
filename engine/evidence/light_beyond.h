// Light that goes on where the page should end.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "engine/evidence/half_plane.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"

namespace vorlane::evidence {

// How far beyond `side` of `region` the first dark gap begins that runs along the whole side, in
// pixels; INFINITY where none does before the picture ends.
double FirstGapBeyond(const PageLevels& page, uint8_t threshold,
                      std::span<const HalfPlane, kSides> region, Side side);

// How far beyond each side of `region` the picture stays at or above `threshold` without a dark
// gap, in pixels; 0 where it does not, or only for less than a hundredth of the picture's longer
// side, as a scanner's streaks, hairs and dust do.
//
//   region  the page's sides in the order of Side, of normals of length 1, in pixels
//
// False when there is no memory.
bool MeasureLightBeyond(const PageLevels& page, uint8_t threshold,
                        std::span<const HalfPlane, kSides> region,
                        std::array<double, kSides>* depths);

}  // namespace vorlane::evidence
