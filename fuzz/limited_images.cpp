// The image library with an end to its memory: linked in front of it, refuses larger images as it
// does where memory has run out. Edges that cross far away make results of gigabytes, whose
// clearing would take most of a run's time.
#include <cstdint>

#include "vorlanepic/imgbuf.h"

// The linker's names for a function that is wrapped.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int32_t IMGBUF_CALL __real_Imgbuf_New(ImageRec*, int32_t, int32_t, int32_t, int32_t) noexcept;
int32_t IMGBUF_CALL __wrap_Imgbuf_New(ImageRec*, int32_t, int32_t, int32_t, int32_t) noexcept;
int32_t IMGBUF_CALL __real_ImgbufNew(DibRec*, int32_t, int32_t, int32_t) noexcept;
int32_t IMGBUF_CALL __wrap_ImgbufNew(DibRec*, int32_t, int32_t, int32_t) noexcept;
}

namespace {

constexpr int32_t kNoMemory = 2;

// Whether an image that can be had takes more than some megabytes, rows of a pixel each included.
bool IsLarge(int32_t width, int32_t height, int32_t bitsPerPixel) {
  constexpr double kMost = 1 << 22;
  if (width <= 0 || height <= 0 || bitsPerPixel <= 0) return false;
  const double rowBytes = width * (bitsPerPixel / 8.0) + sizeof(uint8_t*);
  return rowBytes * height > kMost;
}

}  // namespace

int32_t IMGBUF_CALL __wrap_Imgbuf_New(ImageRec* image, int32_t width, int32_t height,
                                      int32_t bitsPerPixel, int32_t flag) noexcept {
  if (IsLarge(width, height, bitsPerPixel)) return kNoMemory;
  return __real_Imgbuf_New(image, width, height, bitsPerPixel, flag);
}

int32_t IMGBUF_CALL __wrap_ImgbufNew(DibRec* image, int32_t width, int32_t height,
                                     int32_t bitsPerPixel) noexcept {
  if (IsLarge(width, height, bitsPerPixel)) return kNoMemory;
  return __real_ImgbufNew(image, width, height, bitsPerPixel);
}
// NOLINTEND(bugprone-reserved-identifier)
