#include "app/files/plain_encoders.h"

#include <cmath>
#include <string>

namespace vorlane::files {
namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr uint32_t kFileHeader = 14;
constexpr uint32_t kInfoHeader = 40;

// Numbers of BMP stand lowest byte first.
void Put(uint32_t value, size_t at, size_t bytes, Bytes* to) {
  for (size_t i = 0; i < bytes; ++i) (*to)[at + i] = static_cast<uint8_t>(value >> 8 * i);
}

uint32_t PerMetre(double dpi) {
  return dpi > 0 ? static_cast<uint32_t>(std::lround(dpi / kMetresPerInch)) : 0;
}

bool IsLight(const ImageRec& image, int32_t x, int32_t y) {
  return (image.rows[y][x / 8] & (0x80 >> (x % 8))) != 0;
}

// One pixel as red, green, blue.
void PutColour(const ImageRec& image, int32_t x, int32_t y, Bytes* to) {
  const uint8_t* row = image.rows[y];
  if (image.bitsPerPixel == 24) {
    to->insert(to->end(), {row[3 * x + 2], row[3 * x + 1], row[3 * x]});
  } else {
    const uint8_t level = image.bitsPerPixel == 8 ? row[x] : (IsLight(image, x, y) ? 255 : 0);
    to->insert(to->end(), 3, level);
  }
}

void PutColours(const ImageRec& image, Bytes* to) {
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) PutColour(image, x, y, to);
  }
}

void PutGreys(const ImageRec& image, Bytes* to) {
  for (int32_t y = 0; y < image.height; ++y) {
    if (image.bitsPerPixel == 8) {
      to->insert(to->end(), image.rows[y], image.rows[y] + image.width);
      continue;
    }
    for (int32_t x = 0; x < image.width; ++x) to->push_back(IsLight(image, x, y) ? 255 : 0);
  }
}

// A set bit is black in the file.
void PutBits(const ImageRec& image, Bytes* to) {
  const auto bytes = static_cast<size_t>(image.width + 7) / 8;
  const int over = image.width % 8;
  for (int32_t y = 0; y < image.height; ++y) {
    for (size_t i = 0; i < bytes; ++i) to->push_back(static_cast<uint8_t>(~image.rows[y][i]));
    if (over != 0) to->back() &= static_cast<uint8_t>(0xFF00 >> over);
  }
}

}  // namespace

EncodedPage EncodeBmp(const EncodeJob& job) {
  const ImageRec& image = job.image;
  const uint32_t colours = image.bitsPerPixel == 24 ? 0 : 1U << image.bitsPerPixel;
  const auto rowBytes = static_cast<size_t>(
      (static_cast<uint64_t>(image.width) * static_cast<uint64_t>(image.bitsPerPixel) + 31) / 32 *
      4);
  const uint32_t pixelsAt = kFileHeader + kInfoHeader + 4 * colours;
  const uint64_t size =
      pixelsAt + static_cast<uint64_t>(rowBytes) * static_cast<uint64_t>(image.height);
  if (size > UINT32_MAX) throw EncodeError("a page of this size cannot be stored as BMP");
  EncodedPage page;
  Bytes& to = page.bytes;
  to.reserve(static_cast<size_t>(size));
  to.resize(pixelsAt);
  to[0] = 'B';
  to[1] = 'M';
  Put(static_cast<uint32_t>(size), 2, 4, &to);
  Put(pixelsAt, 10, 4, &to);
  Put(kInfoHeader, 14, 4, &to);
  Put(static_cast<uint32_t>(image.width), 18, 4, &to);
  Put(static_cast<uint32_t>(image.height), 22, 4, &to);
  Put(1, 26, 2, &to);
  Put(static_cast<uint32_t>(image.bitsPerPixel), 28, 2, &to);
  Put(static_cast<uint32_t>(size - pixelsAt), 34, 4, &to);
  Put(PerMetre(job.source.metadata.resolution.x), 38, 4, &to);
  Put(PerMetre(job.source.metadata.resolution.y), 42, 4, &to);
  Put(colours, 46, 4, &to);
  for (uint32_t i = 0; i < colours; ++i) {
    Put(i * (0x00FFFFFFU / (colours - 1)), pixelsAt - 4 * (colours - i), 4, &to);
  }
  const auto used =
      static_cast<size_t>((static_cast<int64_t>(image.width) * image.bitsPerPixel + 7) / 8);
  for (int32_t y = image.height - 1; y >= 0; --y) {
    to.insert(to.end(), image.rows[y], image.rows[y] + used);
    to.insert(to.end(), rowBytes - used, 0);
  }
  return page;
}

EncodedPage EncodePnm(FileFormat format, const EncodeJob& job) {
  const ImageRec& image = job.image;
  if (format == FileFormat::kPbm && image.bitsPerPixel != 1) {
    throw EncodeError("PBM holds 1-bit pages only; name it .pnm, .pgm or .ppm");
  }
  if (format == FileFormat::kPgm && image.bitsPerPixel == 24) {
    throw EncodeError("PGM holds grey pages only; name it .pnm or .ppm");
  }
  const bool isColour = format == FileFormat::kPpm || image.bitsPerPixel == 24;
  const bool isBits = !isColour && image.bitsPerPixel == 1 && format != FileFormat::kPgm;
  const std::string head = std::string(isColour ? "P6"
                                       : isBits ? "P4"
                                                : "P5") +
                           "\n" + std::to_string(image.width) + " " + std::to_string(image.height) +
                           (isBits ? "\n" : "\n255\n");
  EncodedPage page;
  page.bytes.assign(head.begin(), head.end());
  if (isColour) {
    PutColours(image, &page.bytes);
  } else if (isBits) {
    PutBits(image, &page.bytes);
  } else {
    PutGreys(image, &page.bytes);
  }
  return page;
}

}  // namespace vorlane::files
