#include "omr/scan_area.h"

#include <algorithm>

namespace vorlanepic::omr {
namespace {

bool ClipAxis(int64_t origin, int64_t extent, int32_t size, int32_t* first, int32_t* last) {
  if (extent < 0) origin += extent;
  if (origin >= size) return false;
  origin = std::max<int64_t>(origin, 0);
  const int64_t length = extent < 0 ? -extent : extent;
  *first = static_cast<int32_t>(origin);
  // A size below 1 puts the end before the start.
  const int64_t end = std::min<int64_t>(origin + length, static_cast<int64_t>(size) - 1);
  *last = static_cast<int32_t>(std::max<int64_t>(end, -1));
  return true;
}

}  // namespace

bool ClipToImage(const SearchRect& rect, int32_t width, int32_t height, frame::PixelRect* area) {
  return ClipAxis(rect.x, rect.w, width, &area->left, &area->right) &&
         ClipAxis(rect.y, rect.h, height, &area->top, &area->bottom);
}

}  // namespace vorlanepic::omr
