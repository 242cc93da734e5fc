#include "app/files/png_encoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <libdeflate.h>
#include <memory>
#include <string_view>

#include "app/files/deflate.h"
#include "app/files/exif.h"
#include "app/files/icc.h"
#include "app/files/png_chunks.h"
#include "app/files/png_filters.h"

namespace vorlane::files {
namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr int kBitsLevel = 6;  // of deflate: bits are few enough to be packed well
constexpr size_t kLargestChunk = size_t{1} << 30;

void PutNumber(uint32_t value, Bytes* to) {
  for (const int shift : {24, 16, 8, 0}) to->push_back(static_cast<uint8_t>(value >> shift));
}

void PutText(std::string_view text, Bytes* to) { to->insert(to->end(), text.begin(), text.end()); }

void PutChunk(std::string_view type, std::span<const uint8_t> data, Bytes* to) {
  PutNumber(static_cast<uint32_t>(data.size()), to);
  const size_t checked = to->size();
  PutText(type, to);
  to->insert(to->end(), data.begin(), data.end());
  PutNumber(libdeflate_crc32(0, to->data() + checked, to->size() - checked), to);
}

struct PngShape {
  uint8_t bits = 8;
  uint8_t colour = 0;  // as the header names it
  size_t rowBytes = 0;
  size_t pixelBytes = 1;
  bool addsAlpha = false;
};

PngShape ShapeOf(const EncodeJob& job) {
  PngShape shape;
  const auto width = static_cast<size_t>(job.image.width);
  if (job.image.bitsPerPixel == 1) {
    shape.bits = 1;
    shape.rowBytes = (width + 7) / 8;
    return shape;
  }
  const bool isColour = job.image.bitsPerPixel == 24;
  shape.addsAlpha = job.source.coding.hasOpaqueAlpha;
  shape.colour = static_cast<uint8_t>((isColour ? 2 : 0) + (shape.addsAlpha ? 4 : 0));
  shape.pixelBytes = (isColour ? 3U : 1U) + (shape.addsAlpha ? 1U : 0U);
  shape.rowBytes = width * shape.pixelBytes;
  return shape;
}

// Red before green and blue, alpha behind.
void StoreRow(const uint8_t* from, const ImageRec& image, const PngShape& shape, uint8_t* to) {
  const auto width = static_cast<size_t>(image.width);
  if (image.bitsPerPixel != 24 && !shape.addsAlpha) {
    std::memcpy(to, from, shape.rowBytes);
    return;
  }
  const size_t step = image.bitsPerPixel == 24 ? 3 : 1;
  for (size_t x = 0; x < width; ++x, from += step, to += shape.pixelBytes) {
    for (size_t c = 0; c < step; ++c) to[c] = from[step - 1 - c];
    if (shape.addsAlpha) to[step] = 255;
  }
}

// All rows, each behind the byte that names its filter.
class FilteredRows {
 public:
  FilteredRows(const EncodeJob& job, const PngShape& shape)
      : size_((shape.rowBytes + 1) * static_cast<size_t>(job.image.height)),
        bytes_(std::make_unique_for_overwrite<uint8_t[]>(size_)),
        above_(shape.rowBytes),
        row_(shape.rowBytes) {
    RowFilter filter(shape.rowBytes, shape.pixelBytes);
    uint8_t* to = bytes_.get();
    for (int32_t y = 0; y < job.image.height; ++y, to += shape.rowBytes + 1) {
      StoreRow(job.image.rows[y], job.image, shape, row_.data());
      if (shape.bits == 1) {
        to[0] = static_cast<uint8_t>(PngFilter::kNone);
        std::memcpy(to + 1, row_.data(), row_.size());
      } else {
        to[0] = static_cast<uint8_t>(filter.Apply(row_, above_.data(), to + 1));
      }
      std::swap(row_, above_);
    }
  }

  std::span<const uint8_t> bytes() const { return {bytes_.get(), size_}; }

 private:
  size_t size_;
  std::unique_ptr<uint8_t[]> bytes_;
  Bytes above_;
  Bytes row_;
};

void PutHeader(const EncodeJob& job, const PngShape& shape, Bytes* to) {
  Bytes data;
  PutNumber(static_cast<uint32_t>(job.image.width), &data);
  PutNumber(static_cast<uint32_t>(job.image.height), &data);
  data.insert(data.end(), {shape.bits, shape.colour, 0, 0, 0});
  PutChunk("IHDR", data, to);
}

void PutDensity(const Resolution& resolution, Bytes* to) {
  if (resolution.x <= 0 || resolution.y <= 0) return;
  constexpr uint8_t kMetre = 1;
  Bytes data;
  PutNumber(static_cast<uint32_t>(std::lround(resolution.x / kMetresPerInch)), &data);
  PutNumber(static_cast<uint32_t>(std::lround(resolution.y / kMetresPerInch)), &data);
  data.push_back(kMetre);
  PutChunk("pHYs", data, to);
}

// Text in Unicode: keyword, two bytes for "not packed", no language, no translated keyword.
void PutUnicode(std::string_view keyword, std::string_view text, Bytes* to) {
  Bytes data;
  PutText(keyword, &data);
  data.insert(data.end(), 5, 0);
  PutText(text, &data);
  PutChunk("iTXt", data, to);
}

void PutProfile(const Bytes& icc, Bytes* to) {
  Bytes data;
  PutText("ICC profile", &data);
  data.insert(data.end(), 2, 0);
  const Bytes packed = Deflate(icc, kDeflateLevel);
  data.insert(data.end(), packed.begin(), packed.end());
  PutChunk("iCCP", data, to);
}

bool IsProfile(const PngChunk& chunk) { return chunk.type == "iCCP" || chunk.type == "sRGB"; }

void PutMetadata(const EncodeJob& job, Bytes* to) {
  const Metadata& metadata = job.source.metadata;
  const bool hasProfile = !metadata.icc.empty();
  const bool fits = hasProfile && IccFits(metadata.icc, job.image.bitsPerPixel);
  if (hasProfile && !fits) {
    job.notes->emplace_back("the colour profile, which is for other colours, dropped");
  }
  const bool isPng = job.source.coding.format == FileFormat::kPng;
  if (!isPng && fits) PutProfile(metadata.icc, to);
  for (const PngChunk& chunk : metadata.pngChunks) {
    if (!IsProfile(chunk) || !hasProfile || fits) PutChunk(chunk.type, chunk.data, to);
  }
  PutDensity(metadata.resolution, to);
  if (!isPng) {
    if (!metadata.xmp.empty()) {
      PutUnicode("XML:com.adobe.xmp",
                 {reinterpret_cast<const char*>(metadata.xmp.data()), metadata.xmp.size()}, to);
    }
    for (const TextEntry& text : metadata.texts) PutUnicode(text.keyword, text.text, to);
  }
  Bytes exif = metadata.exif;
  if (exif.empty()) return;
  ResetExif(job.image.width, job.image.height, &exif);
  PutChunk("eXIf", exif, to);
}

}  // namespace

EncodedPage EncodePng(const EncodeJob& job) {
  const PngShape shape = ShapeOf(job);
  const int level = shape.bits == 1 ? kBitsLevel : kDeflateLevel;
  const Bytes packed = Deflate(FilteredRows(job, shape).bytes(), level);
  EncodedPage page;
  page.bytes.reserve(packed.size() + 4096);
  page.bytes.assign(kPngSignature.begin(), kPngSignature.end());
  PutHeader(job, shape, &page.bytes);
  PutMetadata(job, &page.bytes);
  for (size_t at = 0; at < packed.size(); at += kLargestChunk) {
    const std::span<const uint8_t> rest = std::span(packed).subspan(at);
    PutChunk("IDAT", rest.first(std::min(rest.size(), kLargestChunk)), &page.bytes);
  }
  PutChunk("IEND", {}, &page.bytes);
  return page;
}

}  // namespace vorlane::files
