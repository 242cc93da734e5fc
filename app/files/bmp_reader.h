// Reads BMP files: 1, 4, 8, 16, 24 and 32 bits a pixel, without compression.
#pragma once

#include <cstdint>
#include <span>

#include "app/files/page.h"

namespace vorlane::files {

// Throws DecodeError when the file is cut short, of another kind or beyond the limits.
void ReadBmp(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
