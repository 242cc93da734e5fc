// Device-independent images as the stages take them.
#pragma once

#include <cstdint>
#include <span>

#include "frame/scratch.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// A set of device-independent images, wrapped in image records without a copy of their pixels, and
// as many records for the results. Rows keep their order in memory, bottom row first.
class DibSet {
 public:
  DibSet() = default;
  DibSet(const DibSet&) = delete;
  DibSet& operator=(const DibSet&) = delete;
  ~DibSet();

  // Wraps `count` images, of which the first is known to be good. They stay the caller's and live
  // as long as the set.
  //
  // Returns STATUS_OK; BAD_ARGUMENT for a count below 1; OUT_OF_MEMORY; or the image library's code
  // about a later image.
  int32_t Wrap(const DibRec* images, int32_t count);

  // Copies every result into a new device-independent image.
  //
  //   outImages  as many records; the caller owns the images that were made, also those made before
  //              a failure
  //
  // Returns STATUS_OK; BAD_ARGUMENT for a null array; or the image library's code.
  int32_t CopyResults(DibRec* outImages) const;

  std::span<const ImageRec> sources() const { return sources_.span(); }
  std::span<ImageRec> results() { return results_.span(); }

 private:
  frame::ScratchArray<ImageRec> sources_;
  frame::ScratchArray<ImageRec> results_;
  frame::ScratchArray<uint8_t*> rows_;  // the row tables, one behind the other
};

}  // namespace vorlanepic::deskew
