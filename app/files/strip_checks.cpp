#include "app/files/strip_checks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <tiff.h>

namespace vorlane::files {
namespace {

constexpr uint32_t kClear = 256;
constexpr uint32_t kEnd = 257;
constexpr uint32_t kFirstString = 258;
constexpr uint32_t kFirstWidth = 9;
constexpr uint32_t kLastWidth = 12;

// Codes of 9 to 12 bits, highest bit first.
class CodeReader {
 public:
  explicit CodeReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  // The end code where the bytes run out.
  uint32_t Next(uint32_t width) {
    while (held_ < width) {
      if (at_ >= bytes_.size()) return kEnd;
      bits_ = bits_ << 8 | bytes_[at_++];
      held_ += 8;
    }
    held_ -= width;
    return bits_ >> held_ & ((1U << width) - 1);
  }

 private:
  std::span<const uint8_t> bytes_;
  size_t at_ = 0;
  uint32_t bits_ = 0;
  uint32_t held_ = 0;
};

bool IsExpected(uint64_t total, uint64_t expected, uint64_t whole) {
  return total == expected || total == whole;
}

}  // namespace

// Walks the codes and keeps the length of each string instead of the string.
bool LzwStripEndsRight(std::span<const uint8_t> strip, uint64_t expected, uint64_t whole) {
  if (strip.size() >= 2 && strip[0] == 0 && (strip[1] & 1) != 0) return true;
  std::array<uint32_t, 1U << kLastWidth> lengths{};
  std::fill_n(lengths.begin(), kClear, 1U);
  CodeReader reader(strip);
  uint64_t total = 0;
  uint32_t width = kFirstWidth;
  uint32_t next = kFirstString;
  uint32_t last = kClear;
  for (uint32_t code = reader.Next(width); code != kEnd; code = reader.Next(width)) {
    if (code == kClear) {
      width = kFirstWidth;
      next = kFirstString;
      last = kClear;
      continue;
    }
    if (last == kClear) {
      if (code > kClear) return false;
      total += 1;
    } else {
      if (code > next || next >= lengths.size()) return false;
      lengths[next] = lengths[last] + 1;
      total += lengths[code];
      ++next;
      // Codes widen one string early.
      if (next + 1 >= 1U << width && width < kLastWidth) ++width;
    }
    if (total > whole) return false;
    last = code;
  }
  return IsExpected(total, expected, whole);
}

bool PackBitsStripEndsRight(std::span<const uint8_t> strip, uint64_t expected, uint64_t whole) {
  constexpr uint8_t kNothing = 128;
  uint64_t total = 0;
  size_t at = 0;
  // One byte may be left over: some writers bring strips to an even length.
  while (at + 1 < strip.size()) {
    const uint8_t head = strip[at];
    if (head < kNothing) {
      total += head + 1U;
      at += head + 2U;
    } else if (head > kNothing) {
      total += 257U - head;
      at += 2;
    } else {
      at += 1;
    }
  }
  return at <= strip.size() && IsExpected(total, expected, whole);
}

uint64_t MostBytesFrom(uint16_t compression, uint64_t stored) {
  uint64_t factor = 0;
  switch (compression) {
    case COMPRESSION_NONE:
      factor = 1;
      break;
    case COMPRESSION_PACKBITS:  // two bytes for 128
      factor = 64;
      break;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:  // 258 bytes for two bits
      factor = 1032;
      break;
    case COMPRESSION_LZW:  // the longest string of 4096 codes for 12 bits
      factor = 2731;
      break;
    default:
      return UINT64_MAX;
  }
  return stored > UINT64_MAX / factor ? UINT64_MAX : stored * factor;
}

}  // namespace vorlane::files
