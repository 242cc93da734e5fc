// Block marking step by step, on lists that grow as documented: slow, and simple enough to check by
// eye. The fast marker is compared with it, field for field and point for point.
#pragma once

#include <cstdint>
#include <vector>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

struct PlainBlock {
  BlockRec rec{};  // without its arrays
  std::vector<int32_t> children;
  std::vector<BlockPoint> points;
};

struct PlainSet {
  std::vector<PlainBlock> blocks;
  int32_t capacity = 0;
};

// Marks the pixels of `image` for which `isMarked` holds.
int32_t MarkPlainly(const uint8_t* image, int32_t height, int32_t width,
                    const BlockMarkParam& param, const BlockRect& rect,
                    bool (*isMarked)(uint8_t value, uint8_t threshold), PlainSet* set);

bool IsDark(uint8_t value, uint8_t threshold);
bool IsNonZero(uint8_t value, uint8_t threshold);

}  // namespace vorlanepic::testing
