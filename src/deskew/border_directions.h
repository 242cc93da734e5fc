// The directions along a border and the largest run of directions that agree.
#pragma once

#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "frame/scratch.h"

namespace vorlanepic::deskew {

// Measures the direction of the border at each chunk of `length` successive segments, in degrees,
// -90..90, in the order along the border. Direction j leads from the centre of chunk j + 1 to that
// of chunk j + 2; the last two chunks with a successor of that kind are left out. Empty when fewer
// than two directions are left. False when there is no memory.
[[nodiscard]] bool MeasureDirections(std::span<const analysis::BorderSegment> segments,
                                     int32_t length, frame::ScratchArray<double>* degrees);

// Picks the largest group of directions that agree: next to each other in ascending order, less
// than groupAngle apart from neighbour to neighbour, all within 10 degrees of the first, and of
// halves whose mean steepness differs by 6 degrees at most.
//
//   chunks  receives the indices of the group's directions in ascending order, less the last of
//           them; empty when no three directions agree
//
// False when there is no memory.
[[nodiscard]] bool PickLargestGroup(std::span<const double> degrees, double groupAngle,
                                    frame::ScratchArray<int32_t>* chunks);

}  // namespace vorlanepic::deskew
