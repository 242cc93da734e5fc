// Streams of the zlib format, checksums included.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vorlane::files {

// Unpacks a stream of exactly out.size() bytes. Throws DecodeError when it is damaged or holds
// another number of bytes.
void Inflate(std::span<const uint8_t> packed, std::span<uint8_t> out);

// The same for a strip of rows, where a writer may have filled up its last strip to `whole` bytes:
// those behind the rows are left out.
void InflateStrip(std::span<const uint8_t> packed, std::span<uint8_t> out, size_t whole);

// Unpacks a stream of unknown length, up to `most` bytes; empty when it is damaged or longer.
std::vector<uint8_t> InflateText(std::span<const uint8_t> packed, size_t most);

// Packs `bytes`. `level` is 1, fastest, to 12, smallest.
std::vector<uint8_t> Deflate(std::span<const uint8_t> bytes, int level);

}  // namespace vorlane::files
