// The frame header of JPEG data, found without decoding.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace vorlane::files {

struct JpegFrame {
  size_t heightAt = 0;  // where its two bytes stand, highest first
  bool isSequential = false;
  int32_t blockHeight = 0;  // pixels of a row of blocks
  int32_t blockWidth = 0;
  int32_t channels = 0;
};

// Nothing when the headers hold no frame.
std::optional<JpegFrame> FindFrame(std::span<const uint8_t> bytes);

}  // namespace vorlane::files
