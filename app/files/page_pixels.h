// The image of a page, in memory that serves one page after the other: what is fresh is cleared by
// the system first, and on virtual machines got from their host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

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

  // Memory of so many bytes for pixels, which outlives the image; null: none.
  using Place = std::function<uint8_t*(size_t bytes)>;

  // Lets an image of 8 or 24 bits that is large enough to be kept be made in such memory.
  void MakeIn(Place place) { place_ = std::move(place); }

  // Makes an image where there is none, with the status of Imgbuf_New. Pixels of 8 and 24 bits are
  // undefined, what pads their rows is 0; those of 1 bit are 0.
  int32_t Make(int32_t width, int32_t height, int32_t bitsPerPixel);

  ImageRec* rec() { return &rec_; }
  const ImageRec* rec() const { return &rec_; }

 private:
  bool LayInPlace(const ImageRec& shape);
  int32_t LayInKept(const ImageRec& shape);

  ImageRec rec_{};
  ImageRec whole_{};  // the image as the image library made it; empty where rec_ is that
  Place place_;
  std::vector<uint8_t*> placedRows_;  // of an image that stands in a place, which has its owner
};

}  // namespace vorlane::files
