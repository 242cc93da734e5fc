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
// and a 120th of that thick.
testing::DrawnBarSheet ScannedForm(double megapixels, double degrees, int32_t bitsPerPixel);

// One byte per pixel, top row first, width bytes a row.
struct ByteImage {
  int32_t width;
  int32_t height;
  std::vector<uint8_t> pixels;
};

// Close print on a letter sheet: letters of 255 on 0, each one block. At 8.415 megapixels the sheet
// is 2550 x 3300, 300 dots per inch, and holds some 10,000 letters; the print keeps its size.
ByteImage DenseText(double megapixels);

// A letter sheet of which every tenth pixel, at random, is 255. The last two columns are empty:
// ours counts the pixel behind a run that comes to the last column.
ByteImage Noise(double megapixels);

// The sheet on which ours and the peers' block functions are compared.
inline constexpr double kLetterSheet = 8.415;

// Looks at an image as a device-independent one whose rows happen to stand upside down.
class DibView {
 public:
  // `image` outlives the view; its rows are padded to 4 bytes and no further.
  DibView(const ImageRec& image, int32_t dotsPerInch);
  DibView(const DibView&) = delete;
  DibView& operator=(const DibView&) = delete;

  const DibRec* rec() const { return &rec_; }

 private:
  uint8_t fileHeader_[14] = {'B', 'M'};
  uint8_t infoHeader_[40] = {};
  DibRec rec_{};
};

// The same page at another depth, drawn once and converted: 24 bits get three equal bytes, 1 bit
// the levels above 127.
testing::TestImage AtDepth(const testing::TestImage& grey, int32_t bitsPerPixel);

}  // namespace vorlanepic::bench
