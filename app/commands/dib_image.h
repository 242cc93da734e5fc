// Page images as device-independent images, for the services that take those.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::commands {

// A device-independent image that is released with its scope.
class ScratchDib {
 public:
  ScratchDib() = default;
  ScratchDib(const ScratchDib&) = delete;
  ScratchDib& operator=(const ScratchDib&) = delete;
  ~ScratchDib() {
    if (rec_.bits != nullptr) ImgbufDestory(&rec_);
  }
  DibRec* rec() { return &rec_; }

 private:
  DibRec rec_{};
};

enum class RowOrder {
  kBottomFirst,  // as the format has it: angles measured on it are mirrored
  kTopFirst,     // the rows in the page's own order: angles are those of the page
};

// Copies `image` into a new device-independent image. The header tells `dpi`, 0: unknown, so that
// it is read back as exactly that many dots per inch. Returns the image library's status.
int32_t MakeDib(const ImageRec& image, int32_t dpi, RowOrder order, ScratchDib* dib);

// Copies a device-independent image into a new page image. Returns the image library's status.
int32_t FromDib(DibRec* dib, RowOrder order, vorlanepic::frame::ScratchImage* image);

}  // namespace vorlane::commands
