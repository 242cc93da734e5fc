// The pages that the benchmarks work on: drawn, so that their truth is known and every run has the
// same ones.
#pragma once

#include <cstdint>
#include <vector>

#include "support/page_drawing.h"

namespace vorlanepic::bench {

// A page of print on a dark background that all but fills the frame, width to height as 2 to 3.
//
//   megapixels  of the frame, 0.1 and more
//   degrees     how far the page is turned clockwise, -45..45; the page shrinks until all of it
//               lies in the frame
testing::DrawnPage ScannedPage(double megapixels, double degrees, int32_t bitsPerPixel);

// A 2000 x 3000 frame with a page of 1800 x 2800 turned by 2 degrees, the one that peers are
// measured on.
testing::DrawnPage ContestPage(int32_t bitsPerPixel);

// ScannedPage with a printed bar in its upper part instead of text: 0.4 of the frame's width long
// and a sixtieth of that thick.
testing::DrawnBarSheet ScannedForm(double megapixels, double degrees, int32_t bitsPerPixel);

// One byte per pixel, top row first, width bytes a row.
struct ByteImage {
  int32_t width;
  int32_t height;
  std::vector<uint8_t> pixels;
};

// Close print, 2550 x 3300 at 300 dots per inch: some 10,000 letters, 255 on 0, each one block.
ByteImage DenseText();

// 2550 x 3300 pixels of which every tenth, at random, is 255.
ByteImage Noise();

// The same page at another depth, drawn once and converted: 24 bits get three equal bytes, 1 bit
// the levels above 127.
testing::TestImage AtDepth(const testing::TestImage& grey, int32_t bitsPerPixel);

}  // namespace vorlanepic::bench
