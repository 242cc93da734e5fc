// Owner of a picture of the image-file library.
#pragma once

#include <memory>

#include <leptonica/allheaders.h>

namespace vorlane::files {

struct PixRelease {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<Pix, PixRelease>;

}  // namespace vorlane::files
