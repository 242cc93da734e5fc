// The quantisation tables of JPEG data and the quality that they stand for.
#pragma once

#include <cstdint>
#include <span>

#include "app/files/page_coding.h"

namespace vorlane::files {

// The tables in the headers of `bytes`, in the order of their numbers, with the quality that they
// come nearest to. No tables when the bytes hold none.
JpegCoding JpegCodingOf(std::span<const uint8_t> bytes);

// The quality, 1..100, whose table by the usual scaling of the standard's luminance table is
// nearest to `luminance`.
int32_t EstimateQuality(const JpegTable& luminance);

}  // namespace vorlane::files
