// The page as grey levels: at full size, where the border is traced, and reduced, where print and
// light are looked at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/evidence/picture_view.h"
#include "frame/scratch.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::evidence {

// The most pixels along a side of a reduced picture. Print of 8 points is still told from its
// neighbours at this size, and the search for its skew takes milliseconds.
inline constexpr int32_t kMostReduced = 1800;

// The picture reduced by a power of two: each level is the mean brightness of a square of
// 1 << shift pixels; what is left over at the right and at the bottom is not in it.
struct ReducedPicture {
  int32_t shift = 0;
  int32_t width = 0;
  int32_t height = 0;
  vorlanepic::frame::ScratchArray<uint8_t> levels;  // width * height and more, row after row

  const uint8_t* Row(int32_t y) const {
    return levels.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
  }
};

// A picture of any depth as 8-bit levels: those of a grey picture as they stand, 0 and 255 for 1
// bit, the largest colour for 24 and 32 (a page lies off its surround in whichever colour it is
// lightest).
class PageLevels {
 public:
  // Looks at every pixel once: makes the levels where the picture is not grey already, and the
  // reduced picture. Pixels of a grey picture stay the caller's. Made again for another picture, it
  // uses the memory that it has. False when there is no memory.
  bool Make(const PictureView& picture);

  int32_t width() const { return image_.width; }
  int32_t height() const { return image_.height; }
  int32_t size() const { return image_.width > image_.height ? image_.width : image_.height; }
  const uint8_t* Row(int32_t y) const { return rows_[static_cast<size_t>(y)]; }
  // Whether the picture is one of 1 bit.
  bool hasTwoLevels() const { return hasTwoLevels_; }
  // From a row to the one below; negative where the caller's top row is the last in memory.
  ptrdiff_t lineBytes() const { return height() > 1 ? Row(1) - Row(0) : width(); }
  // The levels for the core's stages, which only read them.
  const ImageRec& image() const { return image_; }
  const ReducedPicture& reduced() const { return reduced_; }

 private:
  bool LayOut(const PictureView& picture);

  bool hasTwoLevels_ = false;
  ImageRec image_{};
  vorlanepic::frame::ScratchArray<uint8_t*> rows_;
  vorlanepic::frame::ScratchArray<uint8_t> plane_;  // unused for a grey picture
  ReducedPicture reduced_;
};

// The shift that brings a picture of `size` pixels to kMostReduced or just below, and 0 where it is
// that small already.
int32_t ReductionOf(int32_t size);

}  // namespace vorlane::evidence
