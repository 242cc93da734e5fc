#include "deskew/bright_lines_sse2.h"

#if defined(VORLANEPIC_X86)

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <emmintrin.h>
#include <span>

#include "frame/prefetch.h"

namespace vorlanepic::deskew {
namespace {

// Rows between two looks at the counts: few enough for bytes to count them.
constexpr int32_t kRowsPerLook = 64;
static_assert(kRowsPerLook < 256);

// Rows ahead that are fetched while one is counted: a strip takes a new cache line in each, further
// apart than the processor foresees.
constexpr int32_t kRowsAhead = 16;

constexpr int32_t kVectorBytes = 16;

__m128i Load(const uint8_t* bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// 0xFF in each byte that is at most `limit`. SSE2 compares signed bytes only; the saturated
// difference is 0 for these.
__m128i AtMost(__m128i bytes, __m128i limit) {
  return _mm_cmpeq_epi8(_mm_subs_epu8(bytes, limit), _mm_setzero_si128());
}

// The sum of 16 unsigned bytes.
uint32_t SumOfBytes(__m128i bytes) {
  const __m128i halves = _mm_sad_epu8(bytes, _mm_setzero_si128());
  return static_cast<uint32_t>(
      _mm_cvtsi128_si32(_mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves))));
}

bool AllAbove(std::span<const uint32_t> counts, uint32_t pixelCount) {
  return *std::min_element(counts.begin(), counts.end()) > pixelCount;
}

// Calls countRows(first, end, counts), which adds the bright pixels of some rows, for all rows of
// the strip or until every column is bright.
template <typename CountRows>
void CountInLooks(const StripRows& rows, uint32_t (&counts)[kStripColumns], CountRows countRows) {
  std::fill(std::begin(counts), std::end(counts), 0U);
  for (int32_t first = rows.top; first < rows.end;) {
    const int32_t end = first + std::min(kRowsPerLook, rows.end - first);
    countRows(first, end, counts);
    if (AllAbove(counts, rows.pixelCount)) return;
    first = end;
  }
}

// Fetches `length` bytes from byte `offset` of a row that is counted soon after row y.
void FetchAhead(const ImageRec& image, int32_t y, ptrdiff_t offset, ptrdiff_t length) {
  const uint8_t* row = image.rows[y + std::min(kRowsAhead, image.height - 1 - y)] + offset;
  for (ptrdiff_t at = 0; at < length; at += frame::kCacheLine) {
    frame::Prefetch(row + at);
  }
}

// Adds the pixels of rows first..end - 1, kRowsPerLook at most, that are above `threshold`.
void CountGreyRows(const ImageRec& image, uint8_t threshold, int32_t strip, int32_t first,
                   int32_t end, uint32_t (&counts)[kStripColumns]) {
  constexpr size_t kVectors = kStripColumns / kVectorBytes;
  const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
  __m128i dark[kVectors] = {};  // 16 columns each, modulo 256
  for (int32_t y = first; y < end; ++y) {
    FetchAhead(image, y, strip, kStripColumns);
    const uint8_t* pixels = image.rows[y] + strip;
    for (size_t v = 0; v < kVectors; ++v) {
      dark[v] = _mm_sub_epi8(dark[v], AtMost(Load(pixels + v * kVectorBytes), limit));
    }
  }
  uint8_t darkRows[kStripColumns];
  std::memcpy(darkRows, dark, sizeof darkRows);
  const auto rowCount = static_cast<uint32_t>(end - first);
  for (size_t x = 0; x < kStripColumns; ++x) counts[x] += rowCount - darkRows[x];
}

// Sixteen 24-bit pixels. When all their bytes lie on one side of the threshold, so do all
// luminances: a luminance is at most the largest of its bytes and at least the smallest less 1.
class ColourBlock {
 public:
  static constexpr int32_t kPixels = 16;

  ColourBlock(const uint8_t* pixels, uint8_t threshold) : pixels_(pixels), threshold_(threshold) {
    const __m128i a = Load(pixels);
    const __m128i b = Load(pixels + kVectorBytes);
    const __m128i c = Load(pixels + 2 * kVectorBytes);
    const __m128i largest = _mm_max_epu8(a, _mm_max_epu8(b, c));
    const __m128i smallest = _mm_min_epu8(a, _mm_min_epu8(b, c));
    const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
    const __m128i next = _mm_adds_epu8(limit, _mm_set1_epi8(1));
    allDark_ = _mm_movemask_epi8(AtMost(largest, limit)) == 0xFFFF;
    allBright_ = _mm_movemask_epi8(AtMost(smallest, next)) == 0;
  }

  bool allDark() const { return allDark_; }
  bool allBright() const { return allBright_; }
  bool IsBright(int32_t x) const { return BrightColour::IsBright(pixels_, x, threshold_); }

 private:
  const uint8_t* pixels_;
  uint8_t threshold_;
  bool allDark_;
  bool allBright_;
};

void CountColourRow(const uint8_t* pixels, uint8_t threshold, uint32_t (&counts)[kStripColumns]) {
  for (int32_t x = 0; x < kStripColumns; x += ColourBlock::kPixels) {
    const ColourBlock block(pixels + ptrdiff_t{x} * 3, threshold);
    if (block.allDark()) continue;
    if (block.allBright()) {
      for (int32_t i = 0; i < ColourBlock::kPixels; ++i) ++counts[x + i];
      continue;
    }
    for (int32_t i = 0; i < ColourBlock::kPixels; ++i) counts[x + i] += block.IsBright(i) ? 1U : 0U;
  }
}

constexpr int32_t kWordBytes = 8;
static_assert(kStripColumns == kWordBytes * 8);

uint64_t LoadWord(const uint8_t* bytes) {
  uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Counts set bits column by column: bit c of planes_[p] is bit p of the count of column c.
class BitColumns {
 public:
  void Add(uint64_t word) {
    for (uint64_t& plane : planes_) {
      if (word == 0) return;
      const uint64_t carry = plane & word;
      plane ^= word;
      word = carry;
    }
  }

  // Pixel x of a word is bit x ^ 7: bytes come in order, the leftmost pixel of each at its top.
  uint32_t CountOf(size_t x) const {
    uint32_t count = 0;
    for (size_t p = 0; p < kPlanes; ++p) {
      count |= static_cast<uint32_t>(planes_[p] >> (x ^ 7) & 1) << p;
    }
    return count;
  }

 private:
  static constexpr size_t kPlanes = 7;
  static_assert(kRowsPerLook < 1 << kPlanes);
  uint64_t planes_[kPlanes] = {};
};

}  // namespace

int32_t GreyKernel::LastStrip(const ImageRec& image) { return image.width - kStripColumns; }

void GreyKernel::CountColumns(const ImageRec& image, uint8_t threshold, int32_t strip,
                              const StripRows& rows, uint32_t (&counts)[kStripColumns]) {
  CountInLooks(rows, counts, [&](int32_t first, int32_t end, auto& sums) {
    CountGreyRows(image, threshold, strip, first, end, sums);
  });
}

bool GreyKernel::IsBrightRow(const ImageRec& image, uint8_t threshold, int32_t y,
                             uint32_t pixelCount) {
  constexpr int32_t kPixelsPerLook = 8 * kVectorBytes;
  const uint8_t* row = image.rows[y];
  const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
  uint32_t bright = 0;
  int32_t x = 0;
  for (; x + kPixelsPerLook <= image.width && bright <= pixelCount; x += kPixelsPerLook) {
    __m128i dark = _mm_setzero_si128();
    for (int32_t i = 0; i < kPixelsPerLook; i += kVectorBytes) {
      dark = _mm_sub_epi8(dark, AtMost(Load(row + x + i), limit));
    }
    bright += kPixelsPerLook - SumOfBytes(dark);
  }
  for (; x < image.width && bright <= pixelCount; ++x) bright += row[x] > threshold ? 1U : 0U;
  return bright > pixelCount;
}

int32_t ColourKernel::LastStrip(const ImageRec& image) { return image.width - kStripColumns; }

void ColourKernel::CountColumns(const ImageRec& image, uint8_t threshold, int32_t strip,
                                const StripRows& rows, uint32_t (&counts)[kStripColumns]) {
  CountInLooks(rows, counts, [&](int32_t first, int32_t end, auto& sums) {
    for (int32_t y = first; y < end; ++y) {
      FetchAhead(image, y, ptrdiff_t{strip} * 3, kStripColumns * 3);
      CountColourRow(image.rows[y] + ptrdiff_t{strip} * 3, threshold, sums);
    }
  });
}

bool ColourKernel::IsBrightRow(const ImageRec& image, uint8_t threshold, int32_t y,
                               uint32_t pixelCount) {
  const uint8_t* row = image.rows[y];
  uint32_t bright = 0;
  int32_t x = 0;
  for (; x + ColourBlock::kPixels <= image.width && bright <= pixelCount;
       x += ColourBlock::kPixels) {
    const ColourBlock block(row + ptrdiff_t{x} * 3, threshold);
    if (block.allDark()) continue;
    if (block.allBright()) {
      bright += ColourBlock::kPixels;
      continue;
    }
    for (int32_t i = 0; i < ColourBlock::kPixels; ++i) bright += block.IsBright(i) ? 1U : 0U;
  }
  for (; x < image.width && bright <= pixelCount; ++x) {
    bright += BrightColour::IsBright(row, x, threshold) ? 1U : 0U;
  }
  return bright > pixelCount;
}

int32_t BitKernel::LastStrip(const ImageRec& image) {
  const int64_t rowBytes = (int64_t{image.width} + 7) / 8;
  return static_cast<int32_t>((rowBytes - kWordBytes) * 8);
}

void BitKernel::CountColumns(const ImageRec& image, uint8_t /*threshold*/, int32_t strip,
                             const StripRows& rows, uint32_t (&counts)[kStripColumns]) {
  CountInLooks(rows, counts, [&](int32_t first, int32_t end, auto& sums) {
    BitColumns columns;
    for (int32_t y = first; y < end; ++y) columns.Add(LoadWord(image.rows[y] + strip / 8));
    for (size_t x = 0; x < kStripColumns; ++x) sums[x] += columns.CountOf(x);
  });
}

bool BitKernel::IsBrightRow(const ImageRec& image, uint8_t /*threshold*/, int32_t y,
                            uint32_t pixelCount) {
  const uint8_t* row = image.rows[y];
  const int32_t wholeBytes = image.width / 8;
  uint32_t bright = 0;
  int32_t at = 0;
  for (; at + kWordBytes <= wholeBytes && bright <= pixelCount; at += kWordBytes) {
    const uint64_t word = LoadWord(row + at);
    if (word != 0) bright += static_cast<uint32_t>(std::popcount(word));
  }
  for (; at < wholeBytes; ++at) bright += static_cast<uint32_t>(std::popcount(row[at]));
  if (image.width % 8 != 0) {
    const int rest = row[wholeBytes] >> (8 - image.width % 8);
    bright += static_cast<uint32_t>(std::popcount(static_cast<uint32_t>(rest)));
  }
  return bright > pixelCount;
}

}  // namespace vorlanepic::deskew

#endif  // VORLANEPIC_X86
