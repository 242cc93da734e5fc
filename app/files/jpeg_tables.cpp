#include "app/files/jpeg_tables.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace vorlane::files {
namespace {

constexpr uint8_t kMark = 0xFF;
constexpr uint8_t kStart = 0xD8;
constexpr uint8_t kEnd = 0xD9;
constexpr uint8_t kScan = 0xDA;
constexpr uint8_t kTables = 0xDB;

// Table K.1 of the standard (ITU-T T.81), row by row.
constexpr JpegTable kLuminance = {16,  11,  10,  16,  24, 40, 51,  61,  12,  12,  14,  19,  26,
                                  58,  60,  55,  14,  13, 16, 24,  40,  57,  69,  56,  14,  17,
                                  22,  29,  51,  87,  80, 62, 18,  22,  37,  56,  68,  109, 103,
                                  77,  24,  35,  55,  64, 81, 104, 113, 92,  49,  64,  78,  87,
                                  103, 121, 120, 101, 72, 92, 95,  98,  112, 100, 103, 99};

// Tables are stored in zigzag order: the place in a row-by-row table of each stored value.
constexpr std::array<uint8_t, 64> MakeZigzag() {
  std::array<uint8_t, 64> order{};
  int x = 0;
  int y = 0;
  for (size_t i = 0; i < order.size(); ++i) {
    order[i] = static_cast<uint8_t>(8 * y + x);
    const bool isRising = (x + y) % 2 == 0;
    int& ahead = isRising ? x : y;
    int& behind = isRising ? y : x;
    if (ahead == 7) {
      ++behind;
    } else {
      ++ahead;
      if (behind > 0) --behind;
    }
  }
  return order;
}
constexpr std::array<uint8_t, 64> kZigzag = MakeZigzag();
static_assert(kZigzag[2] == 8 && kZigzag[5] == 2 && kZigzag[35] == 56 && kZigzag[62] == 62);

// One segment of tables, each with its number and the width of its values in front.
void ReadTables(std::span<const uint8_t> segment, std::array<JpegTable, 4>* tables, size_t* count) {
  size_t at = 0;
  while (at < segment.size()) {
    const size_t bytes = segment[at] >> 4 == 0 ? 1 : 2;
    const size_t number = segment[at] & 0x0F;
    ++at;
    if (number > 3 || segment.size() - at < 64 * bytes) return;
    for (size_t i = 0; i < 64; ++i, at += bytes) {
      const int value = bytes == 1 ? segment[at] : segment[at] << 8 | segment[at + 1];
      (*tables)[number][kZigzag[i]] = static_cast<uint16_t>(value);
    }
    *count = std::max(*count, number + 1);
  }
}

}  // namespace

int32_t EstimateQuality(const JpegTable& luminance) {
  int32_t best = 1;
  int64_t least = INT64_MAX;
  for (int32_t quality = 1; quality <= 100; ++quality) {
    const int32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    int64_t apart = 0;
    for (size_t i = 0; i < luminance.size(); ++i) {
      const int32_t scaled = std::clamp((kLuminance[i] * scale + 50) / 100, 1, 255);
      apart += std::abs(scaled - luminance[i]);
    }
    if (apart < least) {
      least = apart;
      best = quality;
    }
  }
  return best;
}

JpegCoding JpegCodingOf(std::span<const uint8_t> bytes) {
  std::array<JpegTable, 4> tables{};
  size_t count = 0;
  size_t at = 2;
  while (bytes.size() >= 2 && bytes[0] == kMark && bytes[1] == kStart && at + 4 <= bytes.size()) {
    if (bytes[at] != kMark) break;
    const uint8_t marker = bytes[at + 1];
    if (marker == kEnd || marker == kScan) break;
    const size_t length = static_cast<size_t>(bytes[at + 2]) << 8 | bytes[at + 3];
    if (length < 2 || at + 2 + length > bytes.size()) break;
    if (marker == kTables) ReadTables(bytes.subspan(at + 4, length - 2), &tables, &count);
    at += 2 + length;
  }
  JpegCoding coding;
  coding.tables.assign(tables.begin(), tables.begin() + static_cast<ptrdiff_t>(count));
  if (count > 0) coding.quality = EstimateQuality(tables[0]);
  return coding;
}

}  // namespace vorlane::files
