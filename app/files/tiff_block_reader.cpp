#include "app/files/tiff_block_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "app/files/deflate.h"
#include "app/files/errors.h"
#include "app/files/fax_strip.h"
#include "app/files/predictor.h"
#include "app/files/strip_checks.h"

namespace vorlane::files {
namespace {

// Below, opening each strip by itself would cost more than decoding it.
constexpr uint32_t kFewestFaxRows = 16;

}  // namespace

void TiffBlockReader::CheckStored() const {
  const uint32_t count = shape_.isTiled ? TIFFNumberOfTiles(tiff_) : TIFFNumberOfStrips(tiff_);
  uint64_t stored = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const uint64_t offset = TIFFGetStrileOffset(tiff_, i);
    const uint64_t bytes = TIFFGetStrileByteCount(tiff_, i);
    if (offset == 0 || bytes == 0) throw DecodeError(BlockName(i) + " is missing");
    if (offset > source_.size() || bytes > source_.size() - offset) {
      throw DecodeError(BlockName(i) + " ends behind the end of the file: it was cut short");
    }
    stored += bytes;
  }
  ThrowErrors();  // of tables that are read here only
  uint64_t wanted = PlaneRowBytes(shape_.width) * uint64_t{shape_.height} * PlaneCount();
  if (shape_.photometric == PHOTOMETRIC_YCBCR) wanted /= 3;  // colours for 4 x 4 pixels at most
  if (MostBytesFrom(shape_.compression, stored) < wanted) {
    throw DecodeError("its " + std::to_string(stored) +
                      " bytes cannot hold the pixels that its header promises");
  }
}

void TiffBlockReader::ReadBand(uint32_t top, std::span<uint8_t> band) {
  const uint32_t rows = std::min(shape_.blockHeight, shape_.height - top);
  if (PlaneCount() == 1) {
    ReadPlaneBand(0, top, rows, band);
    return;
  }
  plane_.resize(PlaneRowBytes(shape_.width) * rows);
  const size_t sampleBytes = shape_.bits / 8U;
  const size_t pixels = size_t{shape_.width} * rows;
  for (uint16_t plane = 0; plane < PlaneCount(); ++plane) {
    ReadPlaneBand(plane, top, rows, plane_);
    uint8_t* to = band.data() + plane * sampleBytes;
    for (size_t i = 0; i < pixels; ++i, to += sampleBytes * PlaneCount()) {
      std::memcpy(to, plane_.data() + i * sampleBytes, sampleBytes);
    }
  }
}

void TiffBlockReader::ThrowErrors() const {
  if (!messages_->errors.empty()) throw DecodeError(FirstError(*messages_));
}

std::string TiffBlockReader::BlockName(uint32_t index) const {
  return std::string(shape_.isTiled ? "tile " : "strip ") + std::to_string(index + 1);
}

uint16_t TiffBlockReader::PlaneCount() const {
  return shape_.planes == PLANARCONFIG_SEPARATE ? shape_.samples : uint16_t{1};
}

size_t TiffBlockReader::PlaneRowBytes(uint32_t width) const {
  const size_t samples = PlaneCount() == 1 ? shape_.samples : 1;
  return (size_t{width} * samples * shape_.bits + 7) / 8;
}

void TiffBlockReader::ReadPlaneBand(uint16_t plane, uint32_t top, uint32_t rows,
                                    std::span<uint8_t> band) {
  if (!shape_.isTiled) {
    const size_t bytes = PlaneRowBytes(shape_.width) * rows;
    ReadBlock(TIFFComputeStrip(tiff_, top, plane), band.first(bytes), rows);
    return;
  }
  const size_t tileRow = PlaneRowBytes(shape_.blockWidth);
  tile_.resize(tileRow * shape_.blockHeight);
  const size_t bandRow = PlaneRowBytes(shape_.width);
  for (uint32_t left = 0; left < shape_.width; left += shape_.blockWidth) {
    ReadBlock(TIFFComputeTile(tiff_, left, top, 0, plane), tile_, shape_.blockHeight);
    const size_t at = PlaneRowBytes(left);
    const size_t bytes = std::min(tileRow, bandRow - at);
    for (uint32_t y = 0; y < rows; ++y) {
      std::memcpy(band.data() + y * bandRow + at, tile_.data() + y * tileRow, bytes);
    }
  }
}

void TiffBlockReader::ReadBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
  if (IsUnpackedHere()) {
    UnpackBlock(index, to, rows);
    return;
  }
  if (IsFax(shape_.compression) && rows >= kFewestFaxRows && !shape_.isTiled) {
    DecodeFax(index, to, rows);
    return;
  }
  CheckEnd(index, to.size(), rows);
  const auto wanted = static_cast<tmsize_t>(to.size());
  messages_->warningsAreErrors = true;
  const tmsize_t got = shape_.isTiled ? TIFFReadEncodedTile(tiff_, index, to.data(), wanted)
                                      : TIFFReadEncodedStrip(tiff_, index, to.data(), wanted);
  messages_->warningsAreErrors = false;
  ThrowErrors();
  if (got != wanted) throw DecodeError(BlockName(index) + " is too short");
}

// The TIFF library stops at the last pixel and does not compare the checksum behind it.
bool TiffBlockReader::IsUnpackedHere() const {
  const bool isDeflate =
      shape_.compression == COMPRESSION_ADOBE_DEFLATE || shape_.compression == COMPRESSION_DEFLATE;
  const bool isPlain = shape_.predictor == PREDICTOR_NONE ||
                       (shape_.predictor == PREDICTOR_HORIZONTAL && shape_.bits >= 8);
  return isDeflate && isPlain && shape_.fillOrder == FILLORDER_MSB2LSB;
}

void TiffBlockReader::UnpackBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
  ReadStored(index);
  const size_t rowBytes = to.size() / rows;
  try {
    InflateStrip(stored_, to, rowBytes * shape_.blockHeight);
  } catch (const DecodeError& error) {
    throw DecodeError(BlockName(index) + ": " + error.what());
  }
  if (shape_.isSwapped && shape_.bits == 16) {
    for (size_t i = 0; i + 1 < to.size(); i += 2) std::swap(to[i], to[i + 1]);
  }
  if (shape_.predictor == PREDICTOR_HORIZONTAL) {
    UndoDifferences(to, rowBytes, PlaneCount() == 1 ? shape_.samples : 1, shape_.bits);
  }
}

void TiffBlockReader::DecodeFax(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
  ReadStored(index);
  FaxStrip strip;
  strip.stored = stored_;
  strip.width = shape_.width;
  strip.rows = rows;
  strip.compression = shape_.compression;
  strip.options = shape_.faxOptions;
  strip.fillOrder = shape_.fillOrder;
  try {
    DecodeFaxStrip(strip, to);
  } catch (const DecodeError& error) {
    throw DecodeError(BlockName(index) + ": " + error.what());
  }
}

void TiffBlockReader::ReadStored(uint32_t index) {
  stored_.resize(static_cast<size_t>(TIFFGetStrileByteCount(tiff_, index)));
  if (source_.ReadAt(TIFFGetStrileOffset(tiff_, index), stored_) < stored_.size()) {
    throw DecodeError(BlockName(index) + " was cut short");
  }
}

// Schemes without a checksum whose decoder does not look whether it came to the end.
void TiffBlockReader::CheckEnd(uint32_t index, uint64_t expected, uint32_t rows) {
  const bool isLzw = shape_.compression == COMPRESSION_LZW;
  if (!isLzw && shape_.compression != COMPRESSION_PACKBITS) return;
  if (shape_.fillOrder != FILLORDER_MSB2LSB) return;
  ReadStored(index);
  const uint64_t whole = expected / rows * shape_.blockHeight;
  const bool isRight = isLzw ? LzwStripEndsRight(stored_, expected, whole)
                             : PackBitsStripEndsRight(stored_, expected, whole);
  if (!isRight) {
    throw DecodeError(BlockName(index) + " is damaged: its codes do not end where its rows do");
  }
}

}  // namespace vorlane::files
