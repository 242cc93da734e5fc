// The information header of a device-independent image.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vorlanepic::frame {

// Where the fields stand, in bytes from the header's start. All are little-endian.
inline constexpr size_t kDibWidthAt = 4;
inline constexpr size_t kDibHeightAt = 8;
inline constexpr size_t kDibPlanesAt = 12;
inline constexpr size_t kDibBitCountAt = 14;
inline constexpr size_t kDibImageBytesAt = 20;
inline constexpr size_t kDibPixelsPerMetreXAt = 24;
inline constexpr size_t kDibPixelsPerMetreYAt = 28;
inline constexpr size_t kDibColoursAt = 32;

inline constexpr int32_t kDibFileHeaderBytes = 14;
inline constexpr int32_t kDibInfoHeaderBytes = 40;

template <typename T>
T LoadDibField(const uint8_t* infoHeader, size_t at) {
  using Bits = std::make_unsigned_t<T>;
  Bits bits = 0;
  for (size_t k = 0; k < sizeof(T); ++k) {
    bits = static_cast<Bits>(bits | static_cast<Bits>(infoHeader[at + k]) << (8 * k));
  }
  return static_cast<T>(bits);
}

template <typename T>
void StoreDibField(uint8_t* infoHeader, size_t at, T value) {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  for (size_t k = 0; k < sizeof(T); ++k) {
    infoHeader[at + k] = static_cast<uint8_t>(bits >> (8 * k));
  }
}

// What the header says of the image, not known to be good.
struct DibShape {
  int32_t width;
  int32_t height;
  int32_t bitsPerPixel;
  int32_t pixelsPerMetre;  // horizontally; 0 where it is not known
};

inline DibShape ShapeOfDib(const uint8_t* infoHeader) {
  return {LoadDibField<int32_t>(infoHeader, kDibWidthAt),
          LoadDibField<int32_t>(infoHeader, kDibHeightAt),
          LoadDibField<uint16_t>(infoHeader, kDibBitCountAt),
          LoadDibField<int32_t>(infoHeader, kDibPixelsPerMetreXAt)};
}

}  // namespace vorlanepic::frame
