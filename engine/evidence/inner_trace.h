// The trace of a side as seen from the page: for a side that cannot be seen from the frame because
// something else lies before it.
#pragma once

#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "engine/evidence/half_plane.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"

namespace vorlane::evidence {

// Walks outwards from the line of `region` on `side`, on every second row or column between the
// neighbouring sides, to where the picture first falls below `threshold`.
//
//   region  half planes in the order of Side, of normals of length 1, in pixels
//   trace   empty; on success the points, as the core's border scan would give them
//
// False when there is no memory.
bool TraceFromInside(const PageLevels& page, uint8_t threshold,
                     std::span<const HalfPlane, kSides> region, Side side,
                     vorlanepic::analysis::SideTrace* trace);

}  // namespace vorlane::evidence
