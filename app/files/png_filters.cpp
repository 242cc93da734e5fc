#include "app/files/png_filters.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorlane::files {
namespace {

uint8_t Sum(int a, int b) { return static_cast<uint8_t>(a + b); }

// Of left, above and upper left the one nearest to left + above - upper left.
int Paeth(int left, int above, int corner) {
  const int fromLeft = std::abs(above - corner);
  const int fromAbove = std::abs(left - corner);
  const int fromCorner = std::abs(left + above - 2 * corner);
  const int nearest = fromAbove <= fromCorner ? above : corner;
  return fromLeft <= fromAbove && fromLeft <= fromCorner ? left : nearest;
}

// A pixel's bytes at a time: those to its left are kept where the compiler holds them in registers.
template <size_t kPixel>
void UndoSub(std::span<uint8_t> row) {
  for (size_t i = kPixel; i < row.size(); ++i) row[i] = Sum(row[i], row[i - kPixel]);
}

template <size_t kPixel>
void UndoAverage(std::span<uint8_t> row, const uint8_t* above) {
  uint8_t left[kPixel] = {};
  for (size_t i = 0; i + kPixel <= row.size(); i += kPixel) {
    for (size_t k = 0; k < kPixel; ++k) {
      left[k] = Sum(row[i + k], (left[k] + above[i + k]) / 2);
      row[i + k] = left[k];
    }
  }
}

#if defined(__SSE2__)
// What a pixel is read as at once: put together from parts it would wait for each of them.
template <size_t kPixel>
using PixelWord =
    std::conditional_t<(kPixel > 4), uint64_t,
                       std::conditional_t<(kPixel > 2), uint32_t,
                                          std::conditional_t<(kPixel > 1), uint16_t, uint8_t>>>;

// The bytes of a pixel, and those of the next one that the word holds besides, as 16-bit lanes.
template <size_t kPixel>
__m128i LoadPixel(const uint8_t* from) {
  PixelWord<kPixel> word = 0;
  std::memcpy(&word, from, sizeof(word));
  return _mm_unpacklo_epi8(_mm_cvtsi64_si128(static_cast<int64_t>(word)), _mm_setzero_si128());
}

template <size_t kPixel>
void StorePixel(__m128i lanes, uint8_t* to) {
  const auto bytes = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(lanes, lanes)));
  constexpr size_t kFirst = kPixel == 3 ? 2 : kPixel == 6 ? 4 : kPixel;
  std::memcpy(to, &bytes, kFirst);
  for (size_t k = kFirst; k < kPixel; ++k) to[k] = static_cast<uint8_t>(bytes >> 8 * k);
}

__m128i Select(__m128i mask, __m128i yes, __m128i no) {
  return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

// What Paeth gives, without distances: the smaller of left and above where left + above - corner
// lies beyond it, the larger one where it lies beyond that, and the corner between.
template <size_t kPixel>
void UndoPaeth(std::span<uint8_t> row, const uint8_t* above) {
  const __m128i byteMask = _mm_set1_epi16(0xFF);
  __m128i left = _mm_setzero_si128();
  __m128i corner = _mm_setzero_si128();
  size_t i = 0;
  for (; i + sizeof(PixelWord<kPixel>) <= row.size(); i += kPixel) {
    const __m128i up = LoadPixel<kPixel>(above + i);
    const __m128i triple = _mm_add_epi16(corner, _mm_add_epi16(corner, corner));
    const __m128i limit = _mm_sub_epi16(_mm_sub_epi16(triple, up), left);
    const __m128i low = _mm_min_epi16(left, up);
    const __m128i high = _mm_max_epi16(left, up);
    const __m128i upper = Select(_mm_cmpgt_epi16(limit, low), corner, high);
    const __m128i foretold = Select(_mm_cmpgt_epi16(high, limit), upper, low);
    const __m128i stored = LoadPixel<kPixel>(row.data() + i);
    left = _mm_and_si128(_mm_add_epi16(stored, foretold), byteMask);
    corner = up;
    StorePixel<kPixel>(left, row.data() + i);
  }
  for (; i < row.size(); ++i) {
    row[i] = i < kPixel ? Sum(row[i], above[i])
                        : Sum(row[i], Paeth(row[i - kPixel], above[i], above[i - kPixel]));
  }
}
#else
template <size_t kPixel>
void UndoPaeth(std::span<uint8_t> row, const uint8_t* above) {
  for (size_t i = 0; i < row.size(); ++i) {
    row[i] = i < kPixel ? Sum(row[i], above[i])
                        : Sum(row[i], Paeth(row[i - kPixel], above[i], above[i - kPixel]));
  }
}
#endif

template <size_t kPixel>
bool Undo(uint8_t filter, std::span<uint8_t> row, const uint8_t* above) {
  switch (static_cast<PngFilter>(filter)) {
    case PngFilter::kNone:
      return true;
    case PngFilter::kSub:
      UndoSub<kPixel>(row);
      return true;
    case PngFilter::kUp:
      for (size_t i = 0; i < row.size(); ++i) row[i] = Sum(row[i], above[i]);
      return true;
    case PngFilter::kAverage:
      UndoAverage<kPixel>(row, above);
      return true;
    case PngFilter::kPaeth:
      UndoPaeth<kPixel>(row, above);
      return true;
    default:
      return false;
  }
}

void FilterSub(std::span<const uint8_t> row, size_t pixel, uint8_t* to) {
  const size_t first = std::min(pixel, row.size());
  std::memcpy(to, row.data(), first);
  for (size_t i = first; i < row.size(); ++i) to[i] = static_cast<uint8_t>(row[i] - row[i - pixel]);
}

void FilterUp(std::span<const uint8_t> row, const uint8_t* above, uint8_t* to) {
  for (size_t i = 0; i < row.size(); ++i) to[i] = static_cast<uint8_t>(row[i] - above[i]);
}

void FilterPaeth(std::span<const uint8_t> row, const uint8_t* above, size_t pixel, uint8_t* to) {
  const size_t first = std::min(pixel, row.size());
  for (size_t i = 0; i < first; ++i) to[i] = static_cast<uint8_t>(row[i] - above[i]);
  for (size_t i = first; i < row.size(); ++i) {
    const auto left = static_cast<int16_t>(row[i - pixel]);
    const auto up = static_cast<int16_t>(above[i]);
    const auto corner = static_cast<int16_t>(above[i - pixel]);
    to[i] = static_cast<uint8_t>(row[i] - Paeth(left, up, corner));
  }
}

uint64_t SumOfDifferences(std::span<const uint8_t> filtered) {
  uint64_t sum = 0;
  for (const uint8_t v : filtered) sum += static_cast<uint64_t>(v < 128 ? v : 256 - v);
  return sum;
}

void Filter(PngFilter filter, std::span<const uint8_t> row, const uint8_t* above, size_t pixel,
            uint8_t* to) {
  switch (filter) {
    case PngFilter::kSub:
      FilterSub(row, pixel, to);
      break;
    case PngFilter::kUp:
      FilterUp(row, above, to);
      break;
    default:
      FilterPaeth(row, above, pixel, to);
  }
}

}  // namespace

RowFilter::RowFilter(size_t rowBytes, size_t pixelBytes)
    : pixelBytes_(pixelBytes), trial_(rowBytes) {}

PngFilter RowFilter::Apply(std::span<const uint8_t> row, const uint8_t* above, uint8_t* to) {
  constexpr uint32_t kRowsAlike = 8;
  if (rows_++ % kRowsAlike == 0) Choose(row, above);
  Filter(filter_, row, above, pixelBytes_, to);
  return filter_;
}

void RowFilter::Choose(std::span<const uint8_t> row, const uint8_t* above) {
  uint64_t least = UINT64_MAX;
  for (const PngFilter filter : {PngFilter::kUp, PngFilter::kSub, PngFilter::kPaeth}) {
    Filter(filter, row, above, pixelBytes_, trial_.data());
    const uint64_t sum = SumOfDifferences(trial_);
    if (sum >= least) continue;
    least = sum;
    filter_ = filter;
  }
}

bool UndoFilter(uint8_t filter, std::span<uint8_t> row, const uint8_t* above, size_t pixelBytes) {
  switch (pixelBytes) {
    case 1:
      return Undo<1>(filter, row, above);
    case 2:
      return Undo<2>(filter, row, above);
    case 3:
      return Undo<3>(filter, row, above);
    case 4:
      return Undo<4>(filter, row, above);
    case 6:
      return Undo<6>(filter, row, above);
    case 8:
      return Undo<8>(filter, row, above);
    default:
      return false;
  }
}

}  // namespace vorlane::files
