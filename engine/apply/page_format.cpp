#include "engine/apply/page_format.h"

#include <algorithm>
#include <iterator>

namespace vorlane::apply {
namespace {

// In the order of the codes, from 0.
constexpr PageFormat kFormats[] = {{0, false, false},  {1, false, false},  {1, true, false},
                                   {8, false, false},  {24, false, false}, {24, false, true},
                                   {32, false, false}, {32, false, true}};
static_assert(std::size(kFormats) == VORLANE_RGBX32 + 1);

// The distance between two rows, which is no number for the least stride that there is.
size_t Distance(ptrdiff_t stride) {
  return stride < 0 ? size_t{0} - static_cast<size_t>(stride) : static_cast<size_t>(stride);
}

}  // namespace

PageFormat FormatOf(int32_t code) {
  const bool isKnown = code > 0 && code < static_cast<int32_t>(std::size(kFormats));
  return kFormats[isKnown ? code : 0];
}

size_t RowBytes(int32_t bitsPerPixel, int32_t width) {
  const auto pixels = static_cast<size_t>(width);
  return bitsPerPixel == 1 ? (pixels + 7) / 8 : pixels * static_cast<size_t>(bitsPerPixel / 8);
}

std::array<uint8_t, 3> FillBytes(const PageFormat& format, const uint8_t* colour) {
  const uint8_t red = colour[0];
  const uint8_t green = colour[1];
  const uint8_t blue = colour[2];
  if (format.bitsPerPixel >= 24) {
    return format.isRedFirst ? std::array{red, green, blue} : std::array{blue, green, red};
  }
  // Luminance by the weights of ITU-R BT.601.
  auto grey = static_cast<uint8_t>((red * 299 + green * 587 + blue * 114 + 500) / 1000);
  if (format.bitsPerPixel == 1) grey = (grey >= 128) != format.isDarkSet ? 0xFF : 0x00;
  return {grey, grey, grey};
}

bool IsStrideUsable(ptrdiff_t stride, int32_t bitsPerPixel, int32_t width, int32_t height) {
  return height == 1 || Distance(stride) >= RowBytes(bitsPerPixel, width);
}

vorlane_status CheckImage(const vorlane_image& page) {
  const PageFormat format = FormatOf(page.format);
  if (format.bitsPerPixel == 0 || page.width < 1 || page.height < 1) return VORLANE_BAD_IMAGE;
  if (std::max(page.width, page.height) > VORLANE_MAX_EDGE) return VORLANE_TOO_LARGE;
  if (!IsStrideUsable(page.stride, format.bitsPerPixel, page.width, page.height)) {
    return VORLANE_BAD_IMAGE;
  }
  // The stages count a page's bytes in 32 bits.
  const size_t rowBytes = RowBytes(format.bitsPerPixel, page.width);
  const size_t distance = page.height == 1 ? rowBytes : std::max(rowBytes, Distance(page.stride));
  const size_t most = INT32_MAX / static_cast<size_t>(page.height);
  return distance <= most ? VORLANE_OK : VORLANE_TOO_LARGE;
}

}  // namespace vorlane::apply
