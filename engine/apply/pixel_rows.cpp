#include "engine/apply/pixel_rows.h"

#include <cstring>

#include "engine/apply/page_format.h"

namespace vorlane::apply {

void DropFourthBytes(const uint8_t* from, int32_t width, uint8_t* to) {
  for (int32_t x = 0; x < width; ++x) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
    from += 4;
    to += 3;
  }
}

void AddFourthBytes(const uint8_t* from, int32_t width, uint8_t* to) {
  for (int32_t x = 0; x < width; ++x) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
    to[3] = 255;
    from += 3;
    to += 4;
  }
}

bool InvertBits(const vorlane_image& page, Workspace& space, vorlane_image* light) {
  const size_t rowBytes = RowBytes(1, page.width);
  const auto rows = static_cast<size_t>(page.height);
  if (!space.pixels.Reserve(rowBytes * rows)) return false;
  const auto lastBits = static_cast<uint8_t>(0xFF << ((8 - page.width % 8) % 8));
  for (int32_t y = 0; y < page.height; ++y) {
    const uint8_t* from = page.pixels + y * page.stride;
    uint8_t* to = &space.pixels[static_cast<size_t>(y) * rowBytes];
    for (size_t i = 0; i < rowBytes; ++i) to[i] = static_cast<uint8_t>(~from[i]);
    to[rowBytes - 1] &= lastBits;
  }
  *light = {space.pixels.data(), static_cast<ptrdiff_t>(rowBytes), page.width, page.height,
            VORLANE_BIT_LIGHT};
  return true;
}

}  // namespace vorlane::apply
