// Texts for what calls make, exact to the last bit.
#pragma once

#include <bit>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

#include "support/dib_image.h"
#include "support/initialised_memory.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

// FNV-1a over everything added.
class Checksum {
 public:
  void Add(std::span<const uint8_t> bytes) {
    RequireInitialised(bytes.data(), bytes.size());
    for (const uint8_t byte : bytes) value_ = (value_ ^ byte) * 0x100000001B3U;
  }
  void Add(int32_t number) {
    uint8_t bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    Add(bytes);
  }
  // The meaningful bits of each row, without padding.
  void AddRow(const uint8_t* row, int32_t width, int32_t bitsPerPixel) {
    const int32_t bits = width * bitsPerPixel;
    Add(std::span(row, static_cast<size_t>(bits / 8)));
    if (bits % 8 != 0) Add(row[bits / 8] >> (8 - bits % 8));
  }
  std::string text() const {
    char text[17];
    (void)std::snprintf(text, sizeof text, "%016" PRIx64, value_);
    return text;
  }

 private:
  uint64_t value_ = 0xCBF29CE484222325U;
};

inline std::string RowsText(const uint8_t* top, ptrdiff_t lineBytes, int32_t width, int32_t height,
                            int32_t bitsPerPixel) {
  Checksum sum;
  for (int32_t y = 0; y < height; ++y) sum.AddRow(top + y * lineBytes, width, bitsPerPixel);
  return std::to_string(width) + " x " + std::to_string(height) + " " + sum.text();
}

inline std::string ImageText(const ImageRec& image) {
  return RowsText(image.rows[0], image.lineBytes, image.width, image.height, image.bitsPerPixel);
}

inline std::string DibText(const DibRec& image) {
  const int32_t width = DibField(image, 4);
  const int32_t depth = DibField(image, 12) >> 16;
  return RowsText(image.bits, (width * depth + 31) / 32 * 4, width, DibField(image, 8), depth);
}

inline std::string AngleText(double angle) {
  RequireInitialised(&angle, sizeof angle);
  char text[48];
  (void)std::snprintf(text, sizeof text, "angle %.9f %016" PRIx64, angle,
                      std::bit_cast<uint64_t>(angle));
  return text;
}

inline std::string BlockText(const BlockRec& block) {
  Checksum sum;
  for (const int32_t field :
       {block.area, block.centerX, block.centerY, block.width, block.left, block.right,
        block.height, block.bottom, block.top, block.state, static_cast<int32_t>(block.minValue),
        static_cast<int32_t>(block.maxValue), block.pointCapacity}) {
    sum.Add(field);
  }
  for (const BlockPoint& point : std::span(block.points, static_cast<size_t>(block.pointCount))) {
    sum.Add(point.x << 16 | point.y);
  }
  return "block of " + std::to_string(block.area) + " " + sum.text();
}

}  // namespace vorlanepic::testing
