// The differences that TIFF's Deflate pages are stored as.
#pragma once

#include <cstdint>
#include <span>

namespace vorlane::files {

// Adds to each sample of the rows the one of the same channel to its left, in place. `bits` is 8 or
// 16; 16-bit samples stand in this machine's byte order. `rowBytes` divides the number of bytes.
void UndoDifferences(std::span<uint8_t> rows, size_t rowBytes, size_t channels, int32_t bits);

}  // namespace vorlane::files
