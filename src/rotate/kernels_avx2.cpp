// Kernels for AVX2, 1 and 8 bits. Wherever a run lies at an angle, eight neighbours, or four, come
// from a few source rows and less than 16 columns. So a source row is loaded once for all of them,
// a byte shuffle brings each pixel's taps to its place, and a pixel keeps those of its own row.
#include <cstring>

#include "rotate/avx2.h"

namespace vorlanepic::rotate {
namespace avx2 {
namespace {

// Whole pixels and, for blending, tenths, of 16 neighbours in 16-bit lanes.
struct Places {
  __m256i column;
  __m256i row;
  __m256i phaseX;
  __m256i phaseY;
};

TARGET_AVX2 inline Places PlacesAt(const PixelRun& run, int32_t i) {
  const __m256i x = Steps(run.stepX + i, run.startX);
  const __m256i y = Steps(run.stepY + i, run.startY);
  const __m256i column = Hundredths(x);
  const __m256i row = Hundredths(y);
  return {column, row, Tenths(x, column), Tenths(y, row)};
}

// Shuffles the least of 8 monotone words of each half into all of its words.
TARGET_AVX2 inline __m256i LeastOfEight(bool isFalling) {
  return _mm256_set1_epi16(isFalling ? 0x0F0E : 0x0100);
}

// The window of the source around each half's eight pixels.
struct Windows {
  const uint8_t* low;   // first byte of the lower half's window
  const uint8_t* high;  // of the upper half's
  __m256i byte;         // each pixel's byte in its window
  __m256i row;          // each pixel's row in its window
};

// `column` counts bytes from the run's origin.
TARGET_AVX2 inline Windows WindowsOf(const PixelRun& run, __m256i column, __m256i row) {
  const __m256i left = _mm256_shuffle_epi8(column, LeastOfEight(run.isFallingX));
  const __m256i top = _mm256_shuffle_epi8(row, LeastOfEight(run.isFallingY));
  const __m256i corners = _mm256_unpacklo_epi16(left, top);
  const auto low = static_cast<uint32_t>(_mm256_cvtsi256_si32(corners));
  const auto high = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm256_extracti128_si256(corners, 1)));
  const uint8_t* first =
      run.origin + static_cast<ptrdiff_t>(low >> 16) * run.sourceLine + (low & 0xFFFF);
  FetchAhead(run, first);
  return {first, run.origin + static_cast<ptrdiff_t>(high >> 16) * run.sourceLine + (high & 0xFFFF),
          _mm256_sub_epi16(column, left), _mm256_sub_epi16(row, top)};
}

// One row of both windows, `row` rows below their first.
TARGET_AVX2 inline __m256i ShuffledRow(const Windows& windows, ptrdiff_t offset, __m256i bytes) {
  return _mm256_shuffle_epi8(LoadTwo(windows.low + offset, windows.high + offset), bytes);
}

// Each pixel's own byte, and zero above it.
TARGET_AVX2 inline __m256i NearestBytes(const PixelRun& run, const Windows& windows) {
  const __m256i bytes =
      _mm256_add_epi16(windows.byte, _mm256_set1_epi16(static_cast<int16_t>(0x8000)));
  __m256i taken = ShuffledRow(windows, 0, bytes);
  for (int32_t r = 1; r <= run.rows; ++r) {
    const __m256i next = ShuffledRow(windows, r * run.sourceLine, bytes);
    const __m256i isNext =
        _mm256_cmpeq_epi16(windows.row, _mm256_set1_epi16(static_cast<int16_t>(r)));
    taken = _mm256_blendv_epi8(taken, next, isNext);
  }
  return taken;
}

TARGET_AVX2 inline void StoreBytes(uint8_t* out, __m256i words) {
  const __m128i bytes =
      _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
}

TARGET_AVX2 inline __m256i BlendWeight(__m256i phase) {
  return _mm256_mullo_epi16(phase, Multiplier(kBlendTenth));
}

TARGET_AVX2 inline void GreyBilinear16(const PixelRun& run, int32_t i) {
  const Places places = PlacesAt(run, i);
  const Windows windows = WindowsOf(run, places.column, places.row);
  // Byte b and the one behind it.
  const __m256i bytes = _mm256_add_epi16(
      _mm256_mullo_epi16(windows.byte, _mm256_set1_epi16(0x0101)), _mm256_set1_epi16(0x0100));
  __m256i top = ShuffledRow(windows, 0, bytes);
  __m256i below = ShuffledRow(windows, run.sourceLine, bytes);
  __m256i bottom = below;
  for (int32_t r = 1;; ++r) {
    const __m256i isHere =
        _mm256_cmpeq_epi16(windows.row, _mm256_set1_epi16(static_cast<int16_t>(r)));
    const __m256i next = ShuffledRow(windows, (r + 1) * run.sourceLine, bytes);
    top = _mm256_blendv_epi8(top, below, isHere);
    bottom = _mm256_blendv_epi8(bottom, next, isHere);
    if (r == run.rows) break;
    below = next;
  }
  StoreBytes(run.out + i,
             MixSquares(top, bottom, BlendWeight(places.phaseX), BlendWeight(places.phaseY)));
}

TARGET_AVX2 inline void GreyNearest16(const PixelRun& run, int32_t i) {
  const __m256i column = Hundredths(Steps(run.stepX + i, run.startX));
  const __m256i row = Hundredths(Steps(run.stepY + i, run.startY));
  StoreBytes(run.out + i, NearestBytes(run, WindowsOf(run, column, row)));
}

TARGET_AVX2 inline void BitNearest16(const PixelRun& run, int32_t i) {
  const __m256i bit = _mm256_add_epi16(Hundredths(Steps(run.stepX + i, run.startX)),
                                       _mm256_set1_epi16(static_cast<int16_t>(run.originBit)));
  const __m256i row = Hundredths(Steps(run.stepY + i, run.startY));
  const __m256i bytes = NearestBytes(run, WindowsOf(run, _mm256_srli_epi16(bit, 3), row));
  const __m256i masks =
      _mm256_shuffle_epi8(_mm256_set1_epi64x(0x0102040810204080),
                          _mm256_or_si256(_mm256_and_si256(bit, _mm256_set1_epi16(7)),
                                          _mm256_set1_epi16(static_cast<int16_t>(0x8000))));
  const __m256i isLight = _mm256_cmpeq_epi16(_mm256_and_si256(bytes, masks), masks);
  const __m128i lightBytes =
      _mm_packs_epi16(_mm256_castsi256_si128(isLight), _mm256_extracti128_si256(isLight, 1));
  // The first pixel of eight is the highest bit of its byte.
  const __m128i mirrored = _mm_shuffle_epi8(
      lightBytes, _mm_set_epi8(8, 9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7));
  const auto bits = static_cast<uint16_t>(_mm_movemask_epi8(mirrored));
  std::memcpy(run.out + i / 8, &bits, sizeof bits);
}

// The two pairs of cubic weights for eight phases 0..9.
struct CubicPairs {
  __m256i weights02;
  __m256i weights13;
};

TARGET_AVX2 inline __m256i LookUpPairs(const int32_t (&table)[16], __m256i phase) {
  const __m256i low = _mm256_load_si256(reinterpret_cast<const __m256i*>(table));
  const __m256i high = _mm256_load_si256(reinterpret_cast<const __m256i*>(table + 8));
  return _mm256_blendv_epi8(_mm256_permutevar8x32_epi32(low, phase),
                            _mm256_permutevar8x32_epi32(high, phase),
                            _mm256_cmpgt_epi32(phase, _mm256_set1_epi32(7)));
}

TARGET_AVX2 inline CubicPairs CubicPairsOf(__m128i phase) {
  const __m256i wide = _mm256_cvtepu16_epi32(phase);
  return {LookUpPairs(kCubicPairs02.pairs, wide), LookUpPairs(kCubicPairs13.pairs, wide)};
}

TARGET_AVX2 inline void GreyBicubic8(const PixelRun& run, int32_t i) {
  const __m128i x = StepsOfEight(run.stepX + i, run.startX);
  const __m128i y = StepsOfEight(run.stepY + i, run.startY);
  const __m128i columns = Hundredths(x);
  const __m128i rows = Hundredths(y);

  // Windows of four pixels in each half.
  const __m256i column = _mm256_cvtepu16_epi32(columns);
  const __m256i row = _mm256_cvtepu16_epi32(rows);
  const int32_t firstX = run.isFallingX ? 3 : 0;
  const int32_t firstY = run.isFallingY ? 3 : 0;
  const __m256i left =
      _mm256_shuffle_epi8(column, _mm256_set1_epi32(0x03020100 + 0x04040404 * firstX));
  const __m256i top = _mm256_shuffle_epi8(row, _mm256_set1_epi32(0x03020100 + 0x04040404 * firstY));
  const __m256i corners = _mm256_or_si256(left, _mm256_slli_epi32(top, 16));
  const auto low = static_cast<uint32_t>(_mm256_cvtsi256_si32(corners));
  const auto high = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm256_extracti128_si256(corners, 1)));
  const uint8_t* origin = run.origin - run.sourceLine - 1;
  const Windows windows = {
      origin + static_cast<ptrdiff_t>(low >> 16) * run.sourceLine + (low & 0xFFFF),
      origin + static_cast<ptrdiff_t>(high >> 16) * run.sourceLine + (high & 0xFFFF),
      _mm256_sub_epi32(column, left), _mm256_sub_epi32(row, top)};

  FetchAhead(run, windows.low);

  // Four neighbours of each pixel in each of the four rows.
  const __m256i bytes =
      _mm256_add_epi32(_mm256_mullo_epi32(windows.byte, _mm256_set1_epi32(0x01010101)),
                       _mm256_set1_epi32(0x03020100));
  __m256i below[4];
  __m256i taps[4];
  for (int32_t k = 0; k < 4; ++k) {
    taps[k] = below[k] = ShuffledRow(windows, k * run.sourceLine, bytes);
  }
  for (int32_t r = 1; r <= run.rows; ++r) {
    const __m256i isHere = _mm256_cmpeq_epi32(windows.row, _mm256_set1_epi32(r));
    for (int32_t k = 0; k < 3; ++k) below[k] = below[k + 1];
    below[3] = ShuffledRow(windows, (r + 3) * run.sourceLine, bytes);
    for (int32_t k = 0; k < 4; ++k) taps[k] = _mm256_blendv_epi8(taps[k], below[k], isHere);
  }

  const CubicPairs weightsX = CubicPairsOf(Tenths(x, columns));
  const __m256i even = _mm256_set1_epi16(0x00FF);
  for (__m256i& tap : taps) {
    tap = WeighFour(_mm256_and_si256(tap, even), _mm256_srli_epi16(tap, 8), weightsX.weights02,
                    weightsX.weights13);
  }
  const CubicPairs weightsY = CubicPairsOf(Tenths(y, rows));
  const __m256i value = WeighRows(taps, weightsY.weights02, weightsY.weights13);
  const __m128i words =
      _mm_packs_epi32(_mm256_castsi256_si128(value), _mm256_extracti128_si256(value, 1));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(run.out + i), _mm_packus_epi16(words, words));
}

}  // namespace
}  // namespace avx2

const KernelTable kAvx2Kernels = {{{avx2::InBlocks<16, avx2::BitNearest16>, 8},
                                   {avx2::InBlocks<16, avx2::GreyNearest16>, 8},
                                   {avx2::InBlocks<16, avx2::GreyBilinear16>, 8},
                                   {avx2::InBlocks<8, avx2::GreyBicubic8>, 4},
                                   {avx2::ColourNearest},
                                   {avx2::ColourBilinear},
                                   {avx2::ColourBicubic}}};

}  // namespace vorlanepic::rotate
