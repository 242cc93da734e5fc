// Connected blocks of non-zero pixels: ours, and what OpenCV and Leptonica offer.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sample_pages.h"

namespace vorlanepic::bench {

// What a labeller found, for checking that all found the same.
struct BlockTotals {
  int64_t blocks;
  int64_t pixels;      // of all blocks
  int64_t listed;      // pixels in the blocks' pixel lists; 0 for a labeller that makes none
  double centerSum;    // of the blocks' centres, x and y
  int64_t perimeters;  // of the blocks' boxes: the sum of widths and heights
};

// Labels the whole image, diagonal neighbours touching, with box, area and centre of each block,
// and gives back all it took. With `totals` it also counts what it found.
struct Labeller {
  std::string name;
  std::function<bool(BlockTotals* totals)> run;
};

// `image` outlives what is returned; copies of it in a peer's own layout are made beforehand.
std::vector<Labeller> OurLabellers(const ByteImage& image);
std::vector<Labeller> OpenCvLabellers(const ByteImage& image);
std::vector<Labeller> LeptonicaLabellers(const ByteImage& image);

}  // namespace vorlanepic::bench
