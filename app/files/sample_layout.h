// How a file's decoder hands over its pixels.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace vorlane::files {

enum class ColourModel {
  kGrey,          // 0 is black
  kInvertedGrey,  // 0 is white
  kRgb,           // red, green, blue
  kBgr,           // blue, green, red
  kPalette,       // indexes
  kCmyk,          // cyan, magenta, yellow, black; 0 is no ink
};

enum class AlphaKind {
  kNone,
  kStraight,       // colours are those of the pixel
  kPremultiplied,  // colours are already multiplied with alpha
};

using PaletteEntry = std::array<uint8_t, 3>;  // red, green, blue

// Rows of pixels without gaps: channels of a pixel beside each other, several pixels below 8 bits
// in a byte with the leftmost in its high bits, 16-bit samples in this machine's byte order.
struct SampleLayout {
  ColourModel model = ColourModel::kGrey;
  AlphaKind alpha = AlphaKind::kNone;  // of the channel behind the colours
  int32_t bits = 8;                    // of one sample: 1, 2, 4, 8 or 16
  int32_t channels = 1;                // all of them: colours, alpha, others that are not looked at
  std::vector<PaletteEntry> palette;
};

// Bytes of a row of `width` pixels.
inline size_t RowBytesOf(const SampleLayout& layout, int32_t width) {
  return (static_cast<size_t>(width) * static_cast<size_t>(layout.channels) *
              static_cast<size_t>(layout.bits) +
          7) /
         8;
}

}  // namespace vorlane::files
