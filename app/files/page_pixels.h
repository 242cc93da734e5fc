// The image of a page, in memory that serves one page after the other: what is fresh is cleared by
// the system first, and on virtual machines got from their host.
#pragma once

#include <cstdint>

#include "frame/scratch.h"

namespace vorlane::files {

// An image that it owns. What it held goes to the next one of about its size; up to 128 MB are so
// kept in the process.
class PagePixels {
 public:
  PagePixels() = default;
  PagePixels(vorlanepic::frame::ScratchImage image) : rec_(image.Take()) {}  // NOLINT: on purpose
  PagePixels(PagePixels&& other) noexcept { *this = std::move(other); }
  PagePixels& operator=(PagePixels&& other) noexcept;
  ~PagePixels();

  // Makes an image where there is none, with the status of Imgbuf_New. Pixels of 8 and 24 bits are
  // undefined, what pads their rows is 0; those of 1 bit are 0.
  int32_t Make(int32_t width, int32_t height, int32_t bitsPerPixel);

  ImageRec* rec() { return &rec_; }
  const ImageRec* rec() const { return &rec_; }

 private:
  ImageRec rec_{};
  ImageRec whole_{};  // the image as the image library made it; empty where rec_ is that
};

}  // namespace vorlane::files
