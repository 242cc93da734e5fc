#include "engine/evidence/page_levels.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vorlane::evidence {
namespace {

// Print of 8 points is still told from its neighbours at this size, and the search for its skew
// takes milliseconds.
constexpr int32_t kReducedSize = 1800;

// The eight levels of a byte of a 1-bit row.
constexpr auto kLevelsOfByte = [] {
  std::array<std::array<uint8_t, 8>, 256> levels{};
  for (size_t byte = 0; byte < 256; ++byte) {
    for (size_t bit = 0; bit < 8; ++bit) levels[byte][bit] = (byte << bit & 0x80) != 0 ? 255 : 0;
  }
  return levels;
}();

void ExpandBits(const uint8_t* row, int32_t width, uint8_t* levels) {
  int32_t x = 0;
  for (; x + 8 <= width; x += 8) std::memcpy(levels + x, kLevelsOfByte[row[x >> 3]].data(), 8);
  if (x < width) {
    std::memcpy(levels + x, kLevelsOfByte[row[x >> 3]].data(), static_cast<size_t>(width - x));
  }
}

// The largest colour of each pixel, and its brightness with green counted twice, which needs no
// knowledge of which of the others is red.
template <int32_t kBytes>
void MeasureColours(const uint8_t* row, int32_t width, uint8_t* largest, uint8_t* brightness) {
  for (int32_t x = 0; x < width; ++x) {
    const uint8_t a = row[kBytes * x];
    const uint8_t b = row[kBytes * x + 1];
    const uint8_t c = row[kBytes * x + 2];
    largest[x] = std::max(std::max(a, b), c);
    brightness[x] = static_cast<uint8_t>((a + 2 * b + c + 2) >> 2);
  }
}

// Adds rows up until a row of the reduced picture is complete.
class Reducer {
 public:
  Reducer(int32_t width, ReducedPicture* reduced) : width_(width), reduced_(*reduced) {}

  bool Prepare() { return sums_.Allocate(static_cast<size_t>(width_)); }

  void Add(int32_t y, const uint8_t* levels) {
    if (reduced_.shift == 0) {
      std::memcpy(RowOf(y), levels, static_cast<size_t>(width_));
      return;
    }
    const int32_t factor = 1 << reduced_.shift;
    uint16_t* sums = sums_.data();
    if ((y & (factor - 1)) == 0) {
      for (int32_t x = 0; x < width_; ++x) sums[x] = levels[x];
    } else {
      for (int32_t x = 0; x < width_; ++x) sums[x] = static_cast<uint16_t>(sums[x] + levels[x]);
    }
    if ((y & (factor - 1)) == factor - 1) Finish(y >> reduced_.shift);
  }

 private:
  uint8_t* RowOf(int32_t y) {
    return reduced_.levels.data() + static_cast<size_t>(y) * static_cast<size_t>(reduced_.width);
  }

  template <int32_t kFactor>
  void Collapse(uint8_t* out) const {
    const uint16_t* sums = sums_.data();
    for (int32_t x = 0; x < reduced_.width; ++x) {
      uint32_t sum = kFactor * kFactor / 2;
      for (int32_t i = 0; i < kFactor; ++i) sum += sums[kFactor * x + i];
      out[x] = static_cast<uint8_t>(sum / (kFactor * kFactor));
    }
  }

  void Finish(int32_t y) {
    if (y >= reduced_.height) return;
    switch (reduced_.shift) {
      case 1:
        return Collapse<2>(RowOf(y));
      case 2:
        return Collapse<4>(RowOf(y));
      case 3:
        return Collapse<8>(RowOf(y));
      case 4:
        return Collapse<16>(RowOf(y));
      default:
        return Collapse<32>(RowOf(y));
    }
  }

  int32_t width_;
  ReducedPicture& reduced_;
  vorlanepic::frame::ScratchArray<uint16_t> sums_;  // 32 rows of 255 fit
};

}  // namespace

int32_t ReductionOf(int32_t size) {
  int32_t shift = 0;
  while (size >> shift > kReducedSize) ++shift;
  return shift;
}

bool PageLevels::LayOut(const PictureView& picture) {
  const auto width = static_cast<size_t>(picture.width);
  const auto height = static_cast<size_t>(picture.height);
  if (!rows_.Allocate(height)) return false;
  if (picture.depth != 8 && !plane_.Allocate(width * height)) return false;
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
  return reduced_.levels.Allocate(static_cast<size_t>(reduced_.width) *
                                  static_cast<size_t>(reduced_.height));
}

bool PageLevels::Make(const PictureView& picture) {
  Reducer reducer(picture.width, &reduced_);
  vorlanepic::frame::ScratchArray<uint8_t> brightness;
  if (!LayOut(picture) || !reducer.Prepare()) return false;
  if (!brightness.Allocate(static_cast<size_t>(picture.width))) return false;

  for (int32_t y = 0; y < picture.height; ++y) {
    const uint8_t* row = picture.Row(y);
    uint8_t* levels = rows_[static_cast<size_t>(y)];
    switch (picture.depth) {
      case 1:
        ExpandBits(row, picture.width, levels);
        break;
      case 24:
        MeasureColours<3>(row, picture.width, levels, brightness.data());
        break;
      case 32:
        MeasureColours<4>(row, picture.width, levels, brightness.data());
        break;
      default:
        break;
    }
    reducer.Add(y, picture.depth > 8 ? brightness.data() : levels);
  }
  return true;
}

}  // namespace vorlane::evidence
