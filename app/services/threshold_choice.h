// Thresholds that the picture itself suggests.
#pragma once

#include <cstdint>
#include <vector>

#include "vorlanepic/imgbuf.h"

namespace vorlane::services {

// The level that parts the picture's grey levels best into dark and light (least variance within
// both), 0..254: dark is at or below it. 127 for 1-bit pages and for pages of one level.
int32_t SplitLevel(const ImageRec& image);

// A threshold for the border vote, whose own estimate takes a uniform background for page: that of
// the pruned rotation, at least 80, on a dark margin; else where the levels part best. 1..255.
int32_t PageThreshold(const ImageRec& image);

// Thresholds worth trying on a page whose own estimate leads nowhere, best first, 1..255.
std::vector<int32_t> ThresholdsToTry(const ImageRec& image);

}  // namespace vorlane::services
