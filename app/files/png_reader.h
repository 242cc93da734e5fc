// Reads PNG files.
//
// Unpacking with libdeflate and undoing the filters here takes less than half of what the usual PNG
// library takes, of which a page's wall time is mostly made; every checksum of the file is
// compared.
#pragma once

#include <cstdint>
#include <span>

#include "app/files/page.h"

namespace vorlane::files {

// Reads the picture in `bytes`, turned the right way up where an EXIF block asks for it. Throws
// DecodeError when it is damaged, cut short or beyond the limits.
void ReadPng(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
