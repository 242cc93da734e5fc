// Lists the connected blocks of a page without keeping their points.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "omr/scan_area.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::services {

// A block as the block markers find it. Its centre is the mean of its points, cut to whole pixels;
// bounds are inclusive.
struct Block {
  int32_t left = INT32_MAX;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
  int64_t area = 0;
  int32_t centerX = 0;
  int32_t centerY = 0;
  uint8_t minLevel = 255;  // of its marked pixels
  uint8_t maxLevel = 0;
};

// What is marked, and where; run lengths and join gap as BWBlockMarkHorEx takes them.
struct BlockSearch {
  int32_t threshold = 0;   // pixels at or below are marked
  bool isNonZero = false;  // those that are not 0 are, instead
  BlockMarkParam runs{};
  vorlanepic::omr::SearchRect rect{};
};

// Returns false when it wants no more.
using BlockSink = std::function<bool(const Block& block)>;

// Gives every block of a width x height picture of grey bytes to `sink`, in the order of the
// markers. A block waits for those that were opened before it; beside these only the blocks that
// still grow are kept. False when the rectangle begins outside the picture.
bool ListBlocks(const std::vector<uint8_t>& grey, int32_t width, int32_t height,
                const BlockSearch& search, const BlockSink& sink);

}  // namespace vorlane::services
