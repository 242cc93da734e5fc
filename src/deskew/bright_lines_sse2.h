// Which rows and columns of an image are bright, many pixels at a time. Results are those of
// PlainLines.
#pragma once

#include <algorithm>
#include <cstdint>

#include "deskew/bright_lines.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::deskew {

// Columns are counted in strips of this many: as many bytes as a cache line at 8 bits.
inline constexpr int32_t kStripColumns = 64;

// Where columns are counted: rows top..end - 1; counting may stop when all columns of a strip have
// more than `pixelCount` bright pixels.
struct StripRows {
  int32_t top;
  int32_t end;
  uint32_t pixelCount;
};

// The kernels. LastStrip gives the first column of the strip that ends with the row, below 0 when
// no strip fits; CountColumns counts the bright pixels of a strip's columns; IsBrightRow tells what
// PlainLines would.
struct BitKernel {
  using Pixel = BrightBit;
  static int32_t LastStrip(const ImageRec& image);
  static void CountColumns(const ImageRec& image, uint8_t threshold, int32_t strip,
                           const StripRows& rows, uint32_t (&counts)[kStripColumns]);
  static bool IsBrightRow(const ImageRec& image, uint8_t threshold, int32_t y, uint32_t pixelCount);
};

struct GreyKernel {
  using Pixel = BrightGrey;
  static int32_t LastStrip(const ImageRec& image);
  static void CountColumns(const ImageRec& image, uint8_t threshold, int32_t strip,
                           const StripRows& rows, uint32_t (&counts)[kStripColumns]);
  static bool IsBrightRow(const ImageRec& image, uint8_t threshold, int32_t y, uint32_t pixelCount);
};

struct ColourKernel {
  using Pixel = BrightColour;
  static int32_t LastStrip(const ImageRec& image);
  static void CountColumns(const ImageRec& image, uint8_t threshold, int32_t strip,
                           const StripRows& rows, uint32_t (&counts)[kStripColumns]);
  static bool IsBrightRow(const ImageRec& image, uint8_t threshold, int32_t y, uint32_t pixelCount);
};

// The lines of an image. Columns are counted a strip at a time, row after row, when one of them is
// asked for; the last two strips are kept.
template <typename Kernel>
class FastLines {
 public:
  FastLines(const ImageRec& image, uint8_t threshold)
      : image_(image),
        threshold_(threshold),
        lastStrip_(Kernel::LastStrip(image)),
        plain_(image, threshold) {}

  bool IsBrightRow(int32_t y, uint32_t pixelCount) const {
    return Kernel::IsBrightRow(image_, threshold_, y, pixelCount);
  }

  void SelectRows(int32_t top, int32_t bottom) {
    plain_.SelectRows(top, bottom);
    rows_ = {top, bottom + 1 - Kernel::Pixel::kRowsLeftOut, 0};
    for (Strip& strip : strips_) strip.first = kNoStrip;
  }

  // The pixel count stays the same from one SelectRows to the next.
  bool IsBrightColumn(int32_t x, uint32_t pixelCount) {
    if (lastStrip_ < 0) return plain_.IsBrightColumn(x, pixelCount);
    const int32_t first = std::min(x / kStripColumns * kStripColumns, lastStrip_);
    Strip& strip = strips_[(x / kStripColumns) % 2];
    if (strip.first != first) {
      strip.first = first;
      rows_.pixelCount = pixelCount;
      Kernel::CountColumns(image_, threshold_, first, rows_, strip.counts);
    }
    return strip.counts[x - first] > pixelCount;
  }

 private:
  static constexpr int32_t kNoStrip = -1;

  struct Strip {
    int32_t first = kNoStrip;
    uint32_t counts[kStripColumns];
  };

  const ImageRec& image_;
  uint8_t threshold_;
  int32_t lastStrip_;
  PlainLines<typename Kernel::Pixel> plain_;
  StripRows rows_{};
  Strip strips_[2];
};

}  // namespace vorlanepic::deskew
