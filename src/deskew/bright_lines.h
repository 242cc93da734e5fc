// Which rows and columns of an image are bright, pixel by pixel: the reference for the fast ones.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/arithmetic.h"
#include "frame/pixel_format.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::deskew {

// 1024ths of a grey level that each value of a colour adds to the luminance.
using LuminanceTable = std::array<int32_t, 256>;

constexpr LuminanceTable MakeLuminanceTable(double share) {
  LuminanceTable table{};
  for (int32_t v = 0; v < 256; ++v) {
    table[static_cast<size_t>(v)] = frame::RoundToInt32(v * share * 1024);
  }
  return table;
}

inline constexpr LuminanceTable kBlueLuminance = MakeLuminanceTable(0.114);
inline constexpr LuminanceTable kGreenLuminance = MakeLuminanceTable(0.587);
inline constexpr LuminanceTable kRedLuminance = MakeLuminanceTable(0.299);

// What a depth takes for a bright pixel, and how far short of the last row its columns end.
struct BrightBit {
  static constexpr int32_t kRowsLeftOut = 1;
  static bool IsBright(const uint8_t* row, int32_t x, uint8_t /*threshold*/) {
    return frame::IsBitSet(row, x);
  }
};

struct BrightGrey {
  static constexpr int32_t kRowsLeftOut = 0;
  static bool IsBright(const uint8_t* row, int32_t x, uint8_t threshold) {
    return row[x] > threshold;
  }
};

struct BrightColour {
  static constexpr int32_t kRowsLeftOut = 0;
  static bool IsBright(const uint8_t* row, int32_t x, uint8_t threshold) {
    const uint8_t* pixel = row + int64_t{x} * 3;
    const int32_t luminance =
        (kRedLuminance[pixel[2]] + kGreenLuminance[pixel[1]] + kBlueLuminance[pixel[0]]) >> 10;
    return luminance > threshold;
  }
};

// The lines of an image, one pixel after the other.
template <typename Pixel>
class PlainLines {
 public:
  PlainLines(const ImageRec& image, uint8_t threshold) : image_(image), threshold_(threshold) {}

  bool IsBrightRow(int32_t y, uint32_t pixelCount) const {
    uint32_t bright = 0;
    for (int32_t x = 0; x < image_.width && bright <= pixelCount; ++x) {
      bright += Pixel::IsBright(image_.rows[y], x, threshold_) ? 1U : 0U;
    }
    return bright > pixelCount;
  }

  // Columns are looked at in rows top..bottom, less the ones that the depth leaves out.
  void SelectRows(int32_t top, int32_t bottom) {
    top_ = top;
    end_ = bottom + 1 - Pixel::kRowsLeftOut;
  }

  bool IsBrightColumn(int32_t x, uint32_t pixelCount) const {
    uint32_t bright = 0;
    for (int32_t y = top_; y < end_ && bright <= pixelCount; ++y) {
      bright += Pixel::IsBright(image_.rows[y], x, threshold_) ? 1U : 0U;
    }
    return bright > pixelCount;
  }

 private:
  const ImageRec& image_;
  uint8_t threshold_;
  int32_t top_ = 0;
  int32_t end_ = 0;
};

}  // namespace vorlanepic::deskew
