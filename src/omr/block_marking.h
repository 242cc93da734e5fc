// Marking of connected blocks, as the exported markers and their callers inside the library use it.
#pragma once

#include <cstdint>

#include "omr/block_hand_back.h"
#include "omr/foreground.h"
#include "omr/grey_view.h"
#include "omr/scan_area.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// The status of a block set whose numbers contradict each other.
inline constexpr int32_t kInconsistentSet = 10;

// Adds the blocks of marked pixels in `rect` to `set`; the manual is at BWBlockMarkHorEx.
//
//   foreground        tells marked pixels from others: DarkPixels or NonZeroPixels
//   param             its run lengths and join gap are read
//   shortestDiagonal  blocks whose BoxDiagonal is shorter are left out; 0 keeps all
//
// Returns STATUS_OK; BAD_ARGUMENT when the origin of `rect` lies right of or below the image;
// kInconsistentSet; or OUT_OF_MEMORY. On failure `set` holds the blocks that it held before.
template <typename Foreground>
int32_t MarkBlocks(const Foreground& foreground, const GreyView& image, const BlockMarkParam& param,
                   const SearchRect& rect, int32_t shortestDiagonal, BlockSetRec* set);

extern template int32_t MarkBlocks(const DarkPixels&, const GreyView&, const BlockMarkParam&,
                                   const SearchRect&, int32_t, BlockSetRec*);
extern template int32_t MarkBlocks(const NonZeroPixels&, const GreyView&, const BlockMarkParam&,
                                   const SearchRect&, int32_t, BlockSetRec*);

}  // namespace vorlanepic::omr
