// One page of a file, ready for the services.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/files/errors.h"
#include "app/files/metadata.h"
#include "app/files/page_coding.h"
#include "app/files/page_pixels.h"

namespace vorlane::files {

struct Page {
  std::string file;
  int32_t number = 1;     // 1 for the file's first page
  int32_t count = 1;      // pages in the file
  PagePixels image;       // 1, 8 or 24 bits per pixel, the right way up
  std::string noPicture;  // why the page is no picture and has no pixels; else empty
  Metadata metadata;
  PageCoding coding;
  std::vector<std::string> notes;     // what reading it changed, in words
  std::vector<std::string> messages;  // what the decoder remarked on without harm

  // Whole dots per inch across, as the services take them; 0: the file does not say.
  int32_t Dpi() const {
    const double dpi = metadata.resolution.x + 0.5;
    return dpi >= 0 && dpi < INT32_MAX ? static_cast<int32_t>(dpi) : 0;
  }
};

// Called with a page's size before anything of it is decoded, at least once; may wait until there
// is memory for it.
using SizeGate = std::function<void(uint64_t width, uint64_t height)>;

class Decoders;

// What a file may ask of us; a page beyond is refused before anything of it is decoded.
struct ReadLimits {
  int64_t mostPixels = int64_t{1} << 31;  // in a page
  int32_t mostPages = 1'000'000;          // in a file
  SizeGate gate = nullptr;                // null: a page of any size may be decoded at once
  const Decoders* decoders = nullptr;     // who decodes; null: this process itself
};

}  // namespace vorlane::files
