// Reads the strips or tiles of a TIFF page.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/files/byte_source.h"
#include "app/files/tiff_handle.h"
#include "app/files/tiff_shape.h"

namespace vorlane::files {

// Row band by row band. Damage is thrown as a DecodeError.
class TiffBlockReader {
 public:
  TiffBlockReader(const ByteSource& source, TIFF* tiff, const TiffShape& shape,
                  TiffMessages* messages)
      : source_(source), tiff_(tiff), shape_(shape), messages_(messages) {}

  // Compares what is stored with what the header promises, before anything is decoded.
  void CheckStored() const;

  // Reads the rows from `top` on, as many as a block holds, into `band`: rows of all channels
  // beside each other.
  void ReadBand(uint32_t top, std::span<uint8_t> band);

  void ThrowErrors() const;

 private:
  std::string BlockName(uint32_t index) const;
  uint16_t PlaneCount() const;
  size_t PlaneRowBytes(uint32_t width) const;
  void ReadPlaneBand(uint16_t plane, uint32_t top, uint32_t rows, std::span<uint8_t> band);
  void ReadBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows);
  bool IsUnpackedHere() const;
  void UnpackBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows);
  void DecodeFax(uint32_t index, std::span<uint8_t> to, uint32_t rows);
  void ReadStored(uint32_t index);
  void CheckEnd(uint32_t index, uint64_t expected, uint32_t rows);

  const ByteSource& source_;
  TIFF* tiff_;
  const TiffShape& shape_;
  TiffMessages* messages_;
  std::vector<uint8_t> plane_;
  std::vector<uint8_t> tile_;
  std::vector<uint8_t> stored_;
};

}  // namespace vorlane::files
