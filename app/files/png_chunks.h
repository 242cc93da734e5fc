// The chunks of a PNG file, one after the other.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorlane::files {

inline constexpr std::array<uint8_t, 8> kPngSignature = {0x89, 'P',  'N',  'G',
                                                         '\r', '\n', 0x1A, '\n'};

struct PngChunkView {
  std::string_view type;
  std::span<const uint8_t> data;
};

class PngChunks {
 public:
  // Throws DecodeError unless the bytes begin as a PNG file does.
  explicit PngChunks(std::span<const uint8_t> bytes);

  // The next chunk, its checksum compared. Throws DecodeError when it is damaged or cut short.
  PngChunkView Next();

 private:
  std::span<const uint8_t> rest_;
};

// A number of the format, highest byte first.
uint32_t PngNumber(std::span<const uint8_t> bytes, size_t at);

}  // namespace vorlane::files
