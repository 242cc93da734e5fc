// Small pictures drawn in letters, and block sets that release themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/guarded_memory.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

// One byte per pixel, without row padding and between guards.
struct BlockPicture {
  int32_t width = 0;
  int32_t height = 0;
  GuardedBytes pixels;

  BlockPicture(int32_t w, int32_t h, uint8_t value)
      : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), value) {}
  // '.' is 255, '#' is 10, a digit d is 10 * d: all dark at a threshold of 100, and all but 0 are
  // not zero.
  explicit BlockPicture(const std::vector<std::string>& rows)
      : BlockPicture(static_cast<int32_t>(rows.at(0).size()), static_cast<int32_t>(rows.size()),
                     0) {
    size_t i = 0;
    for (const std::string& row : rows) {
      for (const char c : row) {
        pixels[i++] = c == '.' ? 255 : static_cast<uint8_t>(c == '#' ? 10 : 10 * (c - '0'));
      }
    }
  }

  uint8_t& At(int32_t x, int32_t y) {
    return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  BlockRect All() const { return {0, 0, width, height}; }
};

// Pixels that are dark (1 .. 100) with a chance of `percent`, else 255.
inline BlockPicture RandomPicture(int32_t width, int32_t height, uint32_t percent,
                                  std::mt19937* random) {
  BlockPicture picture(width, height, 255);
  for (uint8_t& pixel : picture.pixels) {
    if ((*random)() % 100 < percent) pixel = static_cast<uint8_t>(1 + (*random)() % 100);
  }
  return picture;
}

class TestSet {
 public:
  TestSet() = default;
  TestSet(const TestSet&) = delete;
  TestSet& operator=(const TestSet&) = delete;
  ~TestSet() { DestoryBlockSetRec(&set_); }

  BlockSetRec* get() { return &set_; }
  BlockSetRec* operator->() { return &set_; }
  const BlockRec& operator[](int32_t i) const { return set_.blocks[i]; }

 private:
  BlockSetRec set_{};
};

using Points = std::vector<std::pair<int32_t, int32_t>>;

inline Points PointsOf(const BlockRec& block) {
  Points points;
  for (int32_t i = 0; i < block.pointCount; ++i) {
    points.emplace_back(block.points[i].x, block.points[i].y);
  }
  return points;
}

inline constexpr BlockMarkParam kPlainRuns{0, 0, 0, 100};

}  // namespace vorlanepic::testing
