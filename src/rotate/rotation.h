// A rotation made ready once and then computed row by row into memory that the caller owns.
#pragma once

#include <cstdint>
#include <memory>

#include "rotate/rotate_job.h"
#include "rotate/tiled_rotation.h"

namespace vorlanepic::rotate {

// Holds no lock and starts no thread: any number of threads compute rows of one rotation at a time,
// and each row comes out alike, whoever computes it.
class Rotation {
 public:
  // What RotateImage is told, within the bounds that it checks, but that a region may have a single
  // row. Of `target` only the size, the depth, the row table and lineBytes are looked at: its rows
  // may lie anywhere, and several may share their memory when they are computed one after the
  // other. A row has lineBytes bytes; of those behind its pixels, which is none at the least
  // lineBytes, 24-bit rows keep what they held and others take the fill. All arguments outlive this
  // object.
  Rotation(const ImageRec& source, const ImageRec& target, const RowSpans& region, const Turn& turn,
           const uint8_t* fill)
      : job_{source, target, region, turn, fill, {}} {}
  Rotation(const Rotation&) = delete;
  Rotation& operator=(const Rotation&) = delete;

  // Makes the tables. False when there is no memory.
  [[nodiscard]] bool Build();

  // Computes rows first..last of the target.
  void RotateRows(int32_t first, int32_t last) const;

 private:
  RotateJob job_;
  std::unique_ptr<TiledRotation> tiled_;  // null: the job does not suit it
};

}  // namespace vorlanepic::rotate
