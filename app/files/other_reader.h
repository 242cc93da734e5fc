// Reads the formats that only the image library knows: GIF, WebP, JPEG 2000.
#pragma once

#include <cstdint>
#include <span>

#include "app/files/page.h"

namespace vorlane::files {

// Whether the first 16 bytes of a file are those of such a format.
bool IsOtherFormat(std::span<const uint8_t> head);

// Throws DecodeError when the picture cannot be decoded or is beyond the limits.
void ReadOther(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
