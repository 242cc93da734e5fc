#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#include "analysis/border_walks.h"
#include "analysis/document_mask.h"
#include "analysis/pixel_access.h"
#include "frame/pixel_format.h"

namespace vorlanepic::analysis {
namespace {

constexpr uint64_t kTopBit = 1ULL << 63;

// Every run-th bit from bit 63 down: where the rounds of a 1-bit walk begin.
constexpr auto kRoundStarts = [] {
  std::array<uint64_t, kLongestRun + 1> starts{};
  for (size_t run = 1; run < starts.size(); ++run) {
    for (size_t i = 0; i < 64; i += run) starts[run] |= kTopBit >> i;
  }
  return starts;
}();

uint64_t LoadWord(const uint8_t* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

uint64_t ReverseBitsInBytes(uint64_t word) {
  word = (word >> 1 & 0x5555555555555555) | (word & 0x5555555555555555) << 1;
  word = (word >> 2 & 0x3333333333333333) | (word & 0x3333333333333333) << 2;
  return (word >> 4 & 0x0F0F0F0F0F0F0F0F) | (word & 0x0F0F0F0F0F0F0F0F) << 4;
}

// A 1-bit row in the order in which a walk meets it. Position 0 is the first pixel of the byte in
// which the way begins; the walk goes from position `first` to `last`, byte p / 8 holds position p.
class WayFromLeft {
 public:
  WayFromLeft(const uint8_t* row, const frame::PixelRect& band)
      : bytes_(row + (band.left >> 3)),
        first_(band.left & 7),
        last_(int64_t{band.right} - band.left + first_),
        column_(band.left - first_) {}

  int64_t first() const { return first_; }
  int64_t last() const { return last_; }
  uint8_t ByteAt(int64_t byte) const { return bytes_[byte]; }
  bool IsSet(int64_t p) const { return frame::IsBitSet(bytes_, p); }
  // The 64 pixels of 8 bytes, the first in the top bit.
  uint64_t PixelsAt(int64_t byte) const { return __builtin_bswap64(LoadWord(bytes_ + byte)); }
  int32_t ColumnOf(int64_t p) const { return static_cast<int32_t>(column_ + p); }

 private:
  const uint8_t* bytes_;
  int64_t first_;
  int64_t last_;
  int64_t column_;
};

class WayFromRight {
 public:
  WayFromRight(const uint8_t* row, const frame::PixelRect& band)
      : bytes_(row + (band.right >> 3)),
        first_(7 - (band.right & 7)),
        last_(int64_t{band.right} - band.left + first_),
        column_(band.right + first_) {}

  int64_t first() const { return first_; }
  int64_t last() const { return last_; }
  uint8_t ByteAt(int64_t byte) const { return bytes_[-byte]; }
  bool IsSet(int64_t p) const { return (bytes_[-(p >> 3)] & (1 << (p & 7))) != 0; }
  uint64_t PixelsAt(int64_t byte) const { return ReverseBitsInBytes(LoadWord(bytes_ - byte - 7)); }
  int32_t ColumnOf(int64_t p) const { return static_cast<int32_t>(column_ - p); }

 private:
  const uint8_t* bytes_;
  int64_t first_;
  int64_t last_;
  int64_t column_;
};

// Bytes of `pixels` from the top on that are 0, and that are not.
int32_t CountZeroBytes(uint64_t pixels) { return std::countl_zero(pixels) / 8; }
int32_t CountFilledBytes(uint64_t pixels) {
  constexpr uint64_t kLow7 = 0x7F7F7F7F7F7F7F7F;
  const uint64_t zeroBytes = ~(((pixels & kLow7) + kLow7) | pixels | kLow7);
  return std::countl_zero(zeroBytes) / 8;
}

// Goes on from position *p by the rounds that lie wholly over zero bytes, or wholly over filled
// ones, of the next 8 bytes, up to one that meets set bits only. Returns the position behind that
// one, or -1.
template <typename Way>
int64_t TakeRounds(const Way& way, int32_t run, int64_t* p) {
  const int64_t byte = *p >> 3;
  const auto offset = static_cast<int32_t>(*p & 7);
  const uint64_t stored = way.PixelsAt(byte);
  const int32_t zeroRounds = CountZeroBytes(stored) / run;
  if (zeroRounds > 0) {
    *p += int64_t{8} * run * zeroRounds;
    return -1;
  }

  const auto filled = static_cast<int32_t>(
      std::min<int64_t>(CountFilledBytes(stored) * 8 - offset, way.last() - *p + 1));
  const int32_t rounds = filled / run;
  if (rounds <= 0) return -1;
  const uint64_t pixels = stored << offset;
  uint64_t hits = pixels & kRoundStarts[static_cast<size_t>(run)];
  for (int32_t i = 1; i < run; ++i) hits &= pixels << i;
  const int32_t hit = std::countl_zero(hits);
  if (hit < rounds * run) return *p + hit + run;
  *p += rounds * run;
  return -1;
}

// One round, step by step. Returns the position behind it when it met set bits only, or -1.
template <typename Way>
int64_t TakeRound(const Way& way, int32_t run, int64_t* p) {
  int32_t hits = 0;
  for (int32_t i = 0; i < run && *p <= way.last(); ++i) {
    hits += way.IsSet(*p);
    *p += way.ByteAt(*p >> 3) == 0 ? 8 : 1;
  }
  return hits == run ? *p : -1;
}

template <typename Way>
int32_t WalkBits(const Way& way, int32_t run) {
  const int64_t lastByte = way.last() >> 3;
  int64_t p = way.first();
  while (p <= way.last()) {
    const int64_t before = p;
    int64_t border = -1;
    if ((p >> 3) + 7 <= lastByte) border = TakeRounds(way, run, &p);
    if (border < 0 && p == before) border = TakeRound(way, run, &p);
    if (border >= 0) return way.ColumnOf(border);
  }
  return kNoBorder;
}

}  // namespace

template <typename Pixel>
int32_t WalkFromLeft(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                     int32_t run) {
  const DocumentMask<Pixel> document(levels);
  uint64_t before = 0;  // the mask to the left
  for (int32_t x = band.left; x < band.right;) {
    const int32_t count = std::min(kMaskPixels, band.right - x);
    const uint64_t mask = document(row, x, count);
    uint64_t ends = mask;
    for (int32_t i = 1; i < run; ++i) ends &= mask << i | before >> (kMaskPixels - i);
    if (ends != 0) return x + std::countr_zero(ends) - run + 2;
    before = mask;
    x += count;
  }
  return kNoBorder;
}

template <typename Pixel>
int32_t WalkFromRight(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                      int32_t run) {
  const DocumentMask<Pixel> document(levels);
  uint64_t before = 0;  // the mask to the right
  for (int32_t x = band.right; x > band.left;) {
    const int32_t count = std::min(kMaskPixels, x - band.left);
    // Pixel x stands in the top bit.
    const uint64_t mask = document(row, x - count + 1, count) << (kMaskPixels - count);
    uint64_t ends = mask;
    for (int32_t i = 1; i < run; ++i) ends &= mask >> i | before << (kMaskPixels - i);
    if (ends != 0) return x - std::countl_zero(ends) + run - 2;
    before = mask;
    x -= count;
  }
  return kNoBorder;
}

template <>
int32_t WalkFromLeft<Bit1>(const uint8_t* row, const frame::PixelRect& band, GreyBand,
                           int32_t run) {
  return WalkBits(WayFromLeft(row, band), run);
}

template <>
int32_t WalkFromRight<Bit1>(const uint8_t* row, const frame::PixelRect& band, GreyBand,
                            int32_t run) {
  return WalkBits(WayFromRight(row, band), run);
}

template int32_t WalkFromLeft<Grey8>(const uint8_t*, const frame::PixelRect&, GreyBand, int32_t);
template int32_t WalkFromRight<Grey8>(const uint8_t*, const frame::PixelRect&, GreyBand, int32_t);
template int32_t WalkFromLeft<Colour24>(const uint8_t*, const frame::PixelRect&, GreyBand, int32_t);
template int32_t WalkFromRight<Colour24>(const uint8_t*, const frame::PixelRect&, GreyBand,
                                         int32_t);

}  // namespace vorlanepic::analysis
