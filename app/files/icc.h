// Colour profiles and the pictures that they fit.
#pragma once

#include <cstdint>
#include <span>

namespace vorlane::files {

// Whether a profile is one of greys, for pictures of 1 and 8 bits, or of red, green and blue, for
// those of 24.
bool IccFits(std::span<const uint8_t> icc, int32_t bitsPerPixel);

}  // namespace vorlane::files
