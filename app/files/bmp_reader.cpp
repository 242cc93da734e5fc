#include "app/files/bmp_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdlib>

#include "app/files/page_image.h"
#include "app/files/row_converter.h"

namespace vorlane::files {
namespace {

constexpr size_t kFileHeader = 14;
constexpr uint32_t kOldHeader = 12;  // of OS/2, with 16-bit sizes and three bytes a colour
constexpr uint32_t kPlain = 0;
constexpr uint32_t kMasks = 3;
constexpr double kMetresPerInch = 0.0254;

uint32_t NumberAt(std::span<const uint8_t> bytes, size_t at, size_t count) {
  if (at > bytes.size() || count > bytes.size() - at) throw DecodeError("it was cut short");
  uint32_t value = 0;
  for (size_t i = 0; i < count; ++i) value |= static_cast<uint32_t>(bytes[at + i]) << 8 * i;
  return value;
}

struct BmpHeader {
  uint32_t headerBytes = 0;
  int32_t width = 0;
  int32_t height = 0;
  bool isTopFirst = false;
  uint32_t bits = 0;
  uint32_t compression = kPlain;
  uint32_t colours = 0;
  uint32_t pixelsAt = 0;
  std::array<uint32_t, 3> masks{};  // red, green, blue, of 16 and 32 bits
};

BmpHeader HeaderOf(std::span<const uint8_t> bytes) {
  BmpHeader header;
  header.pixelsAt = NumberAt(bytes, 10, 4);
  header.headerBytes = NumberAt(bytes, kFileHeader, 4);
  const size_t at = kFileHeader;
  if (header.headerBytes == kOldHeader) {
    header.width = static_cast<int32_t>(NumberAt(bytes, at + 4, 2));
    header.height = static_cast<int32_t>(NumberAt(bytes, at + 6, 2));
    header.bits = NumberAt(bytes, at + 10, 2);
    return header;
  }
  if (header.headerBytes < 40) throw DecodeError("its header is of a kind that is not served");
  header.width = static_cast<int32_t>(NumberAt(bytes, at + 4, 4));
  header.height = static_cast<int32_t>(NumberAt(bytes, at + 8, 4));
  header.isTopFirst = header.height < 0;
  if (header.height == INT32_MIN || header.width < 0)
    throw DecodeError("its header makes no sense");
  header.height = std::abs(header.height);
  header.bits = NumberAt(bytes, at + 14, 2);
  header.compression = NumberAt(bytes, at + 16, 4);
  header.colours = NumberAt(bytes, at + 32, 4);
  if (header.compression == kMasks) {
    for (size_t c = 0; c < 3; ++c) header.masks[c] = NumberAt(bytes, at + 40 + 4 * c, 4);
  } else if (header.bits == 16) {
    header.masks = {0x7C00, 0x03E0, 0x001F};
  } else {
    header.masks = {0xFF0000, 0x00FF00, 0x0000FF};
  }
  return header;
}

SampleLayout LayoutOf(std::span<const uint8_t> bytes, const BmpHeader& header) {
  SampleLayout layout;
  if (header.bits >= 16) {
    layout.model = ColourModel::kBgr;
    layout.channels = 3;
    return layout;
  }
  layout.model = ColourModel::kPalette;
  layout.bits = static_cast<int32_t>(header.bits);
  const uint32_t most = 1U << header.bits;
  const uint32_t count = header.colours == 0 ? most : std::min(header.colours, most);
  const size_t entryBytes = header.headerBytes == kOldHeader ? 3 : 4;
  const size_t masks = header.compression == kMasks && header.headerBytes == 40 ? 12 : 0;
  for (uint32_t i = 0; i < count; ++i) {
    const size_t at = kFileHeader + header.headerBytes + masks + entryBytes * i;
    const uint32_t colour = NumberAt(bytes, at, 3);
    layout.palette.push_back({static_cast<uint8_t>(colour >> 16), static_cast<uint8_t>(colour >> 8),
                              static_cast<uint8_t>(colour)});
  }
  return layout;
}

// The usual palette of 8-bit greys is what 8-bit grey means.
bool IsGreyRamp(const SampleLayout& layout) {
  if (layout.bits != 8 || layout.palette.size() != 256) return false;
  for (size_t i = 0; i < 256; ++i) {
    const auto level = static_cast<uint8_t>(i);
    if (layout.palette[i] != PaletteEntry{level, level, level}) return false;
  }
  return true;
}

uint8_t Masked(uint32_t pixel, uint32_t mask) {
  if (mask == 0) return 0;
  const uint32_t most = mask >> std::countr_zero(mask);
  const uint64_t value = (pixel & mask) >> std::countr_zero(mask);
  return static_cast<uint8_t>((value * 255 + most / 2) / most);
}

// Blue, green, red of pixels of 16 or 32 bits.
void UnpackMasked(std::span<const uint8_t> row, const BmpHeader& header, Bytes* to) {
  const size_t bytes = header.bits / 8;
  for (size_t x = 0; x < static_cast<size_t>(header.width); ++x) {
    const uint32_t pixel = NumberAt(row, x * bytes, bytes);
    for (size_t c = 0; c < 3; ++c) (*to)[3 * x + c] = Masked(pixel, header.masks[2 - c]);
  }
}

}  // namespace

void ReadBmp(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page) {
  const BmpHeader header = HeaderOf(bytes);
  CheckSize(static_cast<uint64_t>(header.width), static_cast<uint64_t>(header.height), limits);
  const bool isKnown = header.bits == 1 || header.bits == 4 || header.bits == 8 ||
                       header.bits == 16 || header.bits == 24 || header.bits == 32;
  const bool hasMasks = header.compression == kMasks && header.bits >= 16 && header.bits != 24;
  if (!isKnown || (header.compression != kPlain && !hasMasks)) {
    throw DecodeError("its compression or depth is not served");
  }
  const size_t rowBytes = (static_cast<size_t>(header.width) * header.bits + 31) / 32 * 4;
  const auto height = static_cast<size_t>(header.height);
  if (header.pixelsAt > bytes.size() || rowBytes > (bytes.size() - header.pixelsAt) / height) {
    throw DecodeError("it was cut short");
  }
  SampleLayout layout = LayoutOf(bytes, header);
  if (IsGreyRamp(layout)) layout.model = ColourModel::kGrey;
  RowConverter converter(layout, header.width);
  MakeImage(header.width, header.height, converter.depth(), page);
  const bool isMasked = header.bits == 16 || header.bits == 32;
  Bytes unpacked(isMasked ? 3 * static_cast<size_t>(header.width) : 0);
  for (size_t y = 0; y < height; ++y) {
    const std::span<const uint8_t> row = bytes.subspan(header.pixelsAt + y * rowBytes, rowBytes);
    if (isMasked) UnpackMasked(row, header, &unpacked);
    const size_t to = header.isTopFirst ? y : height - 1 - y;
    converter.Convert(isMasked ? unpacked.data() : row.data(), page->image.rec()->rows[to]);
  }
  if (!converter.Note().empty()) page->notes.push_back(converter.Note());
  if (header.bits == 16) page->notes.emplace_back("16-bit BMP converted to 24-bit colour");
  page->coding.format = FileFormat::kBmp;
  if (header.headerBytes != kOldHeader) {
    page->metadata.resolution = {NumberAt(bytes, kFileHeader + 24, 4) * kMetresPerInch,
                                 NumberAt(bytes, kFileHeader + 28, 4) * kMetresPerInch};
  }
}

}  // namespace vorlane::files
