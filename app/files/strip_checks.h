// Checks of compressed strips that the TIFF library does not make: a damaged one can fill its rows
// with something and be left over, or end early, without a word from the decoder.
#pragma once

#include <cstdint>
#include <span>

namespace vorlane::files {

// Whether the codes of an LZW strip, or the runs of a PackBits strip, give exactly `expected` bytes
// and end there, or `whole` bytes where a writer filled up its last strip. Streams of the first LZW
// writers, which are stored the other way round, pass unseen.
bool LzwStripEndsRight(std::span<const uint8_t> strip, uint64_t expected, uint64_t whole);
bool PackBitsStripEndsRight(std::span<const uint8_t> strip, uint64_t expected, uint64_t whole);

// The most bytes that `stored` bytes of a TIFF compression scheme can stand for; UINT64_MAX where
// there is no useful bound.
uint64_t MostBytesFrom(uint16_t compression, uint64_t stored);

}  // namespace vorlane::files
