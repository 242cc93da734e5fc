#include "app/files/png_chunks.h"

#include <algorithm>
#include <libdeflate.h>

#include "app/files/errors.h"

namespace vorlane::files {

uint32_t PngNumber(std::span<const uint8_t> bytes, size_t at) {
  return static_cast<uint32_t>(bytes[at]) << 24 | static_cast<uint32_t>(bytes[at + 1]) << 16 |
         static_cast<uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

PngChunks::PngChunks(std::span<const uint8_t> bytes) : rest_(bytes) {
  if (bytes.size() < kPngSignature.size() ||
      !std::equal(kPngSignature.begin(), kPngSignature.end(), bytes.begin())) {
    throw DecodeError("it does not begin as a PNG file does");
  }
  rest_ = bytes.subspan(kPngSignature.size());
}

PngChunkView PngChunks::Next() {
  constexpr size_t kAround = 12;  // length and type in front, checksum behind
  if (rest_.size() < kAround) throw DecodeError("it was cut short: its last chunk is missing");
  const size_t length = PngNumber(rest_, 0);
  const std::string_view type(reinterpret_cast<const char*>(rest_.data()) + 4, 4);
  if (length > rest_.size() - kAround) {
    throw DecodeError("it was cut short, or a chunk's length is damaged");
  }
  const std::span<const uint8_t> checked = rest_.subspan(4, length + 4);
  if (libdeflate_crc32(0, checked.data(), checked.size()) != PngNumber(rest_, 8 + length)) {
    const bool isWord = std::all_of(type.begin(), type.end(), [](char c) {
      return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
    throw DecodeError("the checksum of its chunk " + std::string(isWord ? type : "?") +
                      " is wrong");
  }
  rest_ = rest_.subspan(length + kAround);
  return {type, checked.subspan(4)};
}

}  // namespace vorlane::files
