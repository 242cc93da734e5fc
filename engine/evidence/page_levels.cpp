#include "engine/evidence/page_levels.h"

#include <algorithm>
#include <cstring>

#include "engine/evidence/row_kernels.h"

namespace vorlane::evidence {
namespace {

// Adds rows up until a row of the reduced picture is complete: first neighbours within a row, in
// pairs, then rows.
class Reducer {
 public:
  explicit Reducer(ReducedPicture* reduced) : reduced_(*reduced) {}

  bool Prepare() {
    pairs_ = static_cast<size_t>(reduced_.width) << reduced_.shift >> 1;
    return sums_.Allocate(pairs_);
  }

  void Add(int32_t y, const uint8_t* levels) {
    const int32_t rowOfSquare = y & ((1 << reduced_.shift) - 1);
    if (y >> reduced_.shift >= reduced_.height) return;
    if (reduced_.shift == 0) {
      std::memcpy(RowOf(y), levels, static_cast<size_t>(reduced_.width));
      return;
    }
    if (rowOfSquare == 0) std::ranges::fill(sums_.span(), uint16_t{0});
    kernels_.addPairs(levels, pairs_, sums_.data());
    if (rowOfSquare < (1 << reduced_.shift) - 1) return;
    kernels_.meansOf(sums_.data(), static_cast<size_t>(reduced_.width), reduced_.shift,
                     RowOf(y >> reduced_.shift));
  }

 private:
  uint8_t* RowOf(int32_t y) {
    return reduced_.levels.data() + static_cast<size_t>(y) * static_cast<size_t>(reduced_.width);
  }

  const RowKernels& kernels_ = BestRowKernels();
  ReducedPicture& reduced_;
  size_t pairs_ = 0;
  vorlanepic::frame::ScratchArray<uint16_t> sums_;  // of 2 x 32 levels at most
};

}  // namespace

int32_t ReductionOf(int32_t size) {
  int32_t shift = 0;
  while (size >> shift > kMostReduced) ++shift;
  return shift;
}

bool PageLevels::LayOut(const PictureView& picture) {
  const auto width = static_cast<size_t>(picture.width);
  const auto height = static_cast<size_t>(picture.height);
  hasTwoLevels_ = picture.depth == 1;
  if (!rows_.Reserve(height)) return false;
  if (picture.depth != 8 && !plane_.Reserve(width * height)) return false;
  for (size_t y = 0; y < height; ++y) {
    // The core's records hold pointers to pixels that may be written; its stages do not.
    rows_[y] = picture.depth == 8 ? const_cast<uint8_t*>(picture.Row(static_cast<int32_t>(y)))
                                  : plane_.data() + y * width;
  }
  image_ = {picture.width, picture.height, 8,       picture.width * picture.height,
            picture.width, rows_.data(),   rows_[0]};

  reduced_.shift = ReductionOf(size());
  reduced_.width = picture.width >> reduced_.shift;
  reduced_.height = picture.height >> reduced_.shift;
  return reduced_.levels.Reserve(static_cast<size_t>(reduced_.width) *
                                 static_cast<size_t>(reduced_.height));
}

bool PageLevels::Make(const PictureView& picture) {
  const RowKernels& kernels = BestRowKernels();
  const auto width = static_cast<size_t>(picture.width);
  Reducer reducer(&reduced_);
  vorlanepic::frame::ScratchArray<uint8_t> brightness;
  if (!LayOut(picture) || !reducer.Prepare() || !brightness.Allocate(width)) return false;

  for (int32_t y = 0; y < picture.height; ++y) {
    const uint8_t* row = picture.Row(y);
    uint8_t* levels = rows_[static_cast<size_t>(y)];
    switch (picture.depth) {
      case 1:
        kernels.expandBits(row, width, levels);
        break;
      case 24:
        kernels.measureColours24(row, width, levels, brightness.data());
        break;
      case 32:
        kernels.measureColours32(row, width, levels, brightness.data());
        break;
      default:
        break;
    }
    reducer.Add(y, picture.depth > 8 ? brightness.data() : levels);
  }
  return true;
}

}  // namespace vorlane::evidence
