// Drawn pages that know their truth: a light sheet on a dark scanner background.
#pragma once

#include <cstdint>
#include <vector>

#include "support/guarded_memory.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::testing {

// An image with storage of its own between guards and exact row padding, so that no byte too many
// goes unseen.
class TestImage {
 public:
  TestImage(int32_t width, int32_t height, int32_t bitsPerPixel, int32_t extraLineBytes = 0);
  TestImage(const TestImage& other);
  TestImage(TestImage&&) noexcept = default;
  TestImage& operator=(const TestImage&) = delete;

  ImageRec* rec() { return &rec_; }
  const ImageRec* rec() const { return &rec_; }
  uint8_t* row(int32_t y) { return rec_.rows[y]; }
  const uint8_t* row(int32_t y) const { return rec_.rows[y]; }

  // Grey level of a pixel, 0..255; writing at 24 bits sets all three bytes, at 1 bit sets the bit
  // for levels above 127.
  uint8_t Get(int32_t x, int32_t y) const;
  void Set(int32_t x, int32_t y, uint8_t grey);
  void Fill(uint8_t grey);

 private:
  GuardedBytes pixels_;
  std::vector<uint8_t*> rows_;
  ImageRec rec_{};
};

// Columns left..right of rows top..bottom.
void FillRectangle(TestImage* image, int32_t left, int32_t top, int32_t right, int32_t bottom,
                   uint8_t grey);

// An image of which every byte is chance, also those of the padding.
TestImage DrawNoise(int32_t width, int32_t height, int32_t bitsPerPixel, uint32_t seed);

// Whether two images agree in size, depth and every pixel; row padding is not looked at.
bool SamePixels(const ImageRec& a, const ImageRec& b);

enum class EdgeShape { kStraight, kTorn, kCurved };

// A page to draw. Lengths in pixels.
struct DrawnPage {
  int32_t imageWidth = 400;
  int32_t imageHeight = 500;
  int32_t bitsPerPixel = 8;
  double pageWidth = 280;
  double pageHeight = 360;
  double centerX = 200;
  double centerY = 250;
  double degrees = 0;  // how far the page is turned clockwise as seen
  uint8_t background = 20;
  uint8_t paper = 230;
  int32_t noise = 0;  // levels up to which background and paper vary, up and down
  EdgeShape edges = EdgeShape::kStraight;
  double edgeDepth = 0;  // how far torn or curved edges cut into the page
  bool text = false;     // lines of dark print inside the page
  uint32_t seed = 1;
};

TestImage DrawPage(const DrawnPage& page);

// A dark bar on light paper, on a dark background; the bar is the one that mark sheets carry.
struct DrawnBarSheet {
  DrawnPage page;
  double barLength = 200;  // along the page's x axis; along y when `tall`
  double barThickness = 8;
  double barX = 0;  // the bar's centre, from the page's centre, in the page's own axes
  double barY = -120;
  bool tall = false;
};

TestImage DrawBarSheet(const DrawnBarSheet& sheet);

}  // namespace vorlanepic::testing
