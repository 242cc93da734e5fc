// How each depth stores a pixel, and what of it the border analysis asks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "analysis/border_records.h"
#include "frame/pixel_format.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Whether a grey level lies in a band.
constexpr bool IsInBand(uint8_t level, GreyBand band) {
  return band.low <= level && level <= band.high;
}

// Level() is the grey level of pixel x of a row, 0..255; IsDocument() tells whether the pixel
// belongs to the page. At 1 bit every set pixel does, whatever the band.
struct Bit1 {
  static uint8_t Level(const uint8_t* row, int32_t x) { return frame::IsBitSet(row, x) ? 255 : 0; }
  static bool IsDocument(const uint8_t* row, int32_t x, GreyBand) { return Level(row, x) != 0; }
};

struct Grey8 {
  static uint8_t Level(const uint8_t* row, int32_t x) { return row[x]; }
  static bool IsDocument(const uint8_t* row, int32_t x, GreyBand band) {
    return IsInBand(row[x], band);
  }
};

struct Colour24 {
  static uint8_t Level(const uint8_t* row, int32_t x) {
    const uint8_t* pixel = row + ptrdiff_t{3} * x;
    return std::max({pixel[0], pixel[1], pixel[2]});
  }
  static bool IsDocument(const uint8_t* row, int32_t x, GreyBand band) {
    return IsInBand(Level(row, x), band);
  }
};

// Calls `operation` with the type of `bitsPerPixel` and returns its status, or BAD_ARGUMENT for
// another depth than 1, 8 and 24.
template <typename Operation>
int32_t WithDepth(int32_t bitsPerPixel, Operation operation) {
  switch (bitsPerPixel) {
    case 1:
      return operation(Bit1{});
    case 8:
      return operation(Grey8{});
    case 24:
      return operation(Colour24{});
    default:
      return BAD_ARGUMENT;
  }
}

}  // namespace vorlanepic::analysis
