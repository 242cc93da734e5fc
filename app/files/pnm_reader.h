// Reads PNM files: P1 to P6, up to 16 bits a sample.
#pragma once

#include <cstdint>
#include <span>

#include "app/files/page.h"

namespace vorlane::files {

// Reads the first picture. Throws DecodeError when the file is cut short, of another kind or beyond
// the limits.
void ReadPnm(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
