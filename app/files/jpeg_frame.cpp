#include "app/files/jpeg_frame.h"

#include <algorithm>
#include <cstddef>

namespace vorlane::files {
namespace {

constexpr uint8_t kMark = 0xFF;
constexpr uint8_t kScan = 0xDA;
constexpr int32_t kBlock = 8;

// SOF0 to SOF15 without the tables and extensions among them.
bool IsFrame(uint8_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

std::optional<JpegFrame> FrameAt(std::span<const uint8_t> bytes, size_t at, uint8_t marker) {
  constexpr size_t kHead = 8;  // length, precision, height, width, channels
  if (bytes.size() - at < kHead + 3 * size_t{4}) return std::nullopt;
  JpegFrame frame;
  frame.heightAt = at + 3;
  frame.isSequential = marker == 0xC0 || marker == 0xC1;
  frame.channels = bytes[at + 7];
  for (int32_t c = 0; c < std::min(frame.channels, 4); ++c) {
    const uint8_t sampling = bytes[at + kHead + 3 * static_cast<size_t>(c) + 1];
    frame.blockWidth = std::max(frame.blockWidth, kBlock * (sampling >> 4));
    frame.blockHeight = std::max(frame.blockHeight, kBlock * (sampling & 15));
  }
  return frame;
}

}  // namespace

std::optional<JpegFrame> FindFrame(std::span<const uint8_t> bytes) {
  size_t at = 2;
  while (at + 4 <= bytes.size()) {
    if (bytes[at] != kMark) return std::nullopt;
    const uint8_t marker = bytes[at + 1];
    if (marker == kMark) {  // filling
      ++at;
      continue;
    }
    if (marker == kScan) return std::nullopt;
    if (IsFrame(marker)) return FrameAt(bytes, at + 2, marker);
    at += 2 + (static_cast<size_t>(bytes[at + 2]) << 8 | bytes[at + 3]);
  }
  return std::nullopt;
}

}  // namespace vorlane::files
