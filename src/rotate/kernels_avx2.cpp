// Kernels for AVX2. Wherever a run lies at an angle, eight neighbours, or four, come from a few
// source rows and less than 16 columns. So a source row is loaded once for all of them, a byte
// shuffle brings each pixel's taps to its place, and a pixel keeps those of its own row.
#include <cstring>
#include <immintrin.h>

#include "rotate/kernels.h"
#include "rotate/simd_constants.h"
#include "rotate/weights.h"

#define TARGET_AVX2 __attribute__((target("avx2")))

namespace vorlanepic {
namespace {

// Whole pixels and, for blending, tenths, of 16 neighbours in 16-bit lanes.
struct Places {
  __m256i column;
  __m256i row;
  __m256i phaseX;
  __m256i phaseY;
};

// `constant` in all lanes, unknown to the compiler, which would spell multiplications by it out as
// shifts and sums that take longer.
TARGET_AVX2 inline __m256i Multiplier(int16_t constant) {
  __m256i all = _mm256_set1_epi16(constant);
  asm("" : "+x"(all));
  return all;
}

// x / 100 for x below 43698.
TARGET_AVX2 inline __m256i Hundredths(__m256i x) {
  return _mm256_srli_epi16(_mm256_mulhi_epu16(x, _mm256_set1_epi16(kHundredth)), kHundredthShift);
}

// The tenths digit of x, of which `whole` are the hundreds.
TARGET_AVX2 inline __m256i Tenths(__m256i x, __m256i whole) {
  const __m256i rest = _mm256_sub_epi16(x, _mm256_mullo_epi16(whole, Multiplier(100)));
  return _mm256_mulhi_epu16(rest, _mm256_set1_epi16(kTenth));
}

TARGET_AVX2 inline __m256i Steps(const uint16_t* steps, uint16_t start) {
  const __m256i step = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(steps));
  return _mm256_add_epi16(step, _mm256_set1_epi16(static_cast<int16_t>(start)));
}

TARGET_AVX2 inline Places PlacesAt(const PixelRun& run, int32_t i) {
  const __m256i x = Steps(run.stepX + i, run.startX);
  const __m256i y = Steps(run.stepY + i, run.startY);
  const __m256i column = Hundredths(x);
  const __m256i row = Hundredths(y);
  return {column, row, Tenths(x, column), Tenths(y, row)};
}

// Later rows find their part of the source in the cache; slanted walks are too much for the
// machine's own prefetching. The address may lie outside the source.
inline void FetchAhead(const PixelRun& run, const uint8_t* pixel) {
  const auto address = reinterpret_cast<uintptr_t>(pixel) + run.ahead;
  _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
}

TARGET_AVX2 inline __m256i LoadTwo(const uint8_t* low, const uint8_t* high) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
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

// Pairs of bytes (a, b), one pair a word, blended at `weight` = kBlendTenth times the tenths of b:
// the shares of kBlendTable in closed form.
TARGET_AVX2 inline __m256i Mix(__m256i pairs, __m256i weight) {
  const __m256i isBlended = _mm256_cmpgt_epi16(weight, _mm256_setzero_si256());
  const __m256i raised =
      _mm256_adds_epu8(pairs, _mm256_and_si256(isBlended, _mm256_set1_epi16(0x0101)));
  const __m256i twiceA = _mm256_maddubs_epi16(raised, _mm256_set1_epi16(0x0002));
  const __m256i twiceB = _mm256_maddubs_epi16(raised, _mm256_set1_epi16(0x0200));
  const __m256i weightA =
      _mm256_sub_epi16(_mm256_set1_epi16(static_cast<int16_t>(10 * kBlendTenth)), weight);
  return _mm256_add_epi16(_mm256_mulhi_epu16(twiceA, weightA), _mm256_mulhi_epu16(twiceB, weight));
}

TARGET_AVX2 inline __m256i MixSquares(__m256i top, __m256i bottom, __m256i weightX,
                                      __m256i weightY) {
  const __m256i a = Mix(top, weightX);
  const __m256i b = Mix(bottom, weightX);
  return Mix(_mm256_or_si256(a, _mm256_slli_epi16(b, 8)), weightY);
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

// Offsets of eight neighbours from the run's origin, in bytes, and their phases in 16-bit lanes.
struct ColourPlaces {
  alignas(32) int32_t offset[8];
  __m128i phaseX;
  __m128i phaseY;
};

TARGET_AVX2 inline __m128i Hundredths(__m128i x) {
  return _mm_srli_epi16(_mm_mulhi_epu16(x, _mm_set1_epi16(kHundredth)), kHundredthShift);
}

TARGET_AVX2 inline __m128i Tenths(__m128i x, __m128i whole) {
  const __m128i rest = _mm_sub_epi16(x, _mm_mullo_epi16(whole, _mm_set1_epi16(100)));
  return _mm_mulhi_epu16(rest, _mm_set1_epi16(kTenth));
}

TARGET_AVX2 inline __m128i StepsOfEight(const uint16_t* steps, uint16_t start) {
  const __m128i step = _mm_loadu_si128(reinterpret_cast<const __m128i*>(steps));
  return _mm_add_epi16(step, _mm_set1_epi16(static_cast<int16_t>(start)));
}

TARGET_AVX2 inline ColourPlaces ColourPlacesAt(const PixelRun& run, int32_t i) {
  const __m128i x = StepsOfEight(run.stepX + i, run.startX);
  const __m128i y = StepsOfEight(run.stepY + i, run.startY);
  const __m128i column = Hundredths(x);
  const __m128i row = Hundredths(y);
  ColourPlaces places{};
  const __m256i columns = _mm256_mullo_epi32(_mm256_cvtepu16_epi32(column), _mm256_set1_epi32(3));
  const __m256i rows = _mm256_mullo_epi32(_mm256_cvtepu16_epi32(row),
                                          _mm256_set1_epi32(static_cast<int32_t>(run.sourceLine)));
  _mm256_store_si256(reinterpret_cast<__m256i*>(places.offset), _mm256_add_epi32(columns, rows));
  FetchAhead(run, run.origin + places.offset[0]);
  places.phaseX = Tenths(x, column);
  places.phaseY = Tenths(y, row);
  return places;
}

TARGET_AVX2 inline void ColourNearest8(const PixelRun& run, int32_t i) {
  const ColourPlaces places = ColourPlacesAt(run, i);
  uint8_t* out = run.out + ptrdiff_t{i} * 3;
  for (int32_t k = 0; k < 7; ++k) std::memcpy(out + 3 * k, run.origin + places.offset[k], 4);
  std::memcpy(out + 21, run.origin + places.offset[7], 3);
}

// Two pixels of 8 bytes each.
TARGET_AVX2 inline __m128i LoadPair(const uint8_t* first, const uint8_t* second) {
  const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(first));
  return _mm_unpacklo_epi64(low, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(second)));
}

// Pixels j, j + 1 in the lower half and j + 4, j + 5 in the upper one, each as four words with the
// bytes of two neighbours in turn.
TARGET_AVX2 inline __m256i LoadNeighbours(const uint8_t* origin, const int32_t* offset) {
  const __m128i low = LoadPair(origin + offset[0], origin + offset[1]);
  const __m128i high = LoadPair(origin + offset[4], origin + offset[5]);
  const __m256i pixels = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
  return _mm256_shuffle_epi8(
      pixels, _mm256_setr_epi8(0, 3, 1, 4, 2, 5, -1, -1, 8, 11, 9, 12, 10, 13, -1, -1,  //
                               0, 3, 1, 4, 2, 5, -1, -1, 8, 11, 9, 12, 10, 13, -1, -1));
}

// The weights of pixels j, j + 1 | j + 4, j + 5, each for four words; j is 0 or 2.
TARGET_AVX2 inline __m256i SpreadWeights(__m128i weights, int32_t j) {
  const __m256i both = _mm256_broadcastsi128_si256(weights);
  const __m256i order =
      _mm256_setr_epi16(0x0100, 0x0100, 0x0100, 0x0100, 0x0302, 0x0302, 0x0302, 0x0302, 0x0908,
                        0x0908, 0x0908, 0x0908, 0x0B0A, 0x0B0A, 0x0B0A, 0x0B0A);
  const __m256i further = _mm256_set1_epi8(static_cast<int8_t>(2 * j));
  return _mm256_shuffle_epi8(both, _mm256_add_epi8(order, further));
}

// Eight pixels of four bytes, of which the fourth is dropped.
TARGET_AVX2 inline void StoreColours(uint8_t* out, __m256i pixels) {
  const __m256i packed = _mm256_shuffle_epi8(
      pixels, _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,  //
                               0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  const __m128i high = _mm256_extracti128_si256(packed, 1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 12), high);
  const int32_t last = _mm_extract_epi32(high, 2);
  std::memcpy(out + 20, &last, sizeof last);
}

TARGET_AVX2 inline void ColourBilinear8(const PixelRun& run, int32_t i) {
  const ColourPlaces places = ColourPlacesAt(run, i);
  const __m128i tenth = _mm_set1_epi16(kBlendTenth);
  const __m128i weightX = _mm_mullo_epi16(places.phaseX, tenth);
  const __m128i weightY = _mm_mullo_epi16(places.phaseY, tenth);
  __m256i mixed[2];
  for (int32_t half = 0; half < 2; ++half) {
    const int32_t j = 2 * half;
    mixed[half] = MixSquares(LoadNeighbours(run.origin, places.offset + j),
                             LoadNeighbours(run.origin + run.sourceLine, places.offset + j),
                             SpreadWeights(weightX, j), SpreadWeights(weightY, j));
  }
  StoreColours(run.out + ptrdiff_t{i} * 3, _mm256_packus_epi16(mixed[0], mixed[1]));
}

// The sum of four rows' or taps' products, scaled back: weights (0, 2) and (1, 3) in pairs.
TARGET_AVX2 inline __m256i WeighFour(__m256i values02, __m256i values13, __m256i weights02,
                                     __m256i weights13) {
  return _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(values02, weights02),
                                            _mm256_madd_epi16(values13, weights13)),
                           kCubicShift);
}

// Two values of 32 bits, which fit 16, as one pair.
TARGET_AVX2 inline __m256i PairUp(__m256i low, __m256i high) {
  return _mm256_blend_epi16(low, _mm256_slli_epi32(high, 16), 0xAA);
}

TARGET_AVX2 inline __m256i WeighRows(const __m256i (&rows)[4], __m256i weights02,
                                     __m256i weights13) {
  return WeighFour(PairUp(rows[0], rows[2]), PairUp(rows[1], rows[3]), weights02, weights13);
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

// A pair of weights for pixel j in the lower half and j + 4 in the upper one.
TARGET_AVX2 inline __m256i SpreadPair(const int32_t (&table)[16], const uint16_t* phase) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_set1_epi32(table[phase[0]])),
                                 _mm_set1_epi32(table[phase[4]]), 1);
}

TARGET_AVX2 inline void ColourBicubic8(const PixelRun& run, int32_t i) {
  const ColourPlaces places = ColourPlacesAt(run, i);
  alignas(16) uint16_t phaseX[8];
  alignas(16) uint16_t phaseY[8];
  _mm_store_si128(reinterpret_cast<__m128i*>(phaseX), places.phaseX);
  _mm_store_si128(reinterpret_cast<__m128i*>(phaseY), places.phaseY);
  const __m256i order02 =
      _mm256_setr_epi8(0, -1, 6, -1, 1, -1, 7, -1, 2, -1, 8, -1, -1, -1, -1, -1, 0, -1, 6, -1, 1,
                       -1, 7, -1, 2, -1, 8, -1, -1, -1, -1, -1);
  const __m256i order13 =
      _mm256_setr_epi8(3, -1, 9, -1, 4, -1, 10, -1, 5, -1, 11, -1, -1, -1, -1, -1, 3, -1, 9, -1, 4,
                       -1, 10, -1, 5, -1, 11, -1, -1, -1, -1, -1);
  const uint8_t* origin = run.origin - run.sourceLine - 3;
  __m256i values[4];
  for (int32_t j = 0; j < 4; ++j) {
    const __m256i weights02 = SpreadPair(kCubicPairs02.pairs, phaseX + j);
    const __m256i weights13 = SpreadPair(kCubicPairs13.pairs, phaseX + j);
    __m256i rows[4];
    for (int32_t k = 0; k < 4; ++k) {
      const uint8_t* row = origin + k * run.sourceLine;
      const __m256i pixels = LoadTwo(row + places.offset[j], row + places.offset[j + 4]);
      rows[k] = WeighFour(_mm256_shuffle_epi8(pixels, order02),
                          _mm256_shuffle_epi8(pixels, order13), weights02, weights13);
    }
    values[j] = WeighRows(rows, SpreadPair(kCubicPairs02.pairs, phaseY + j),
                          SpreadPair(kCubicPairs13.pairs, phaseY + j));
  }
  StoreColours(run.out + ptrdiff_t{i} * 3,
               _mm256_packus_epi16(_mm256_packs_epi32(values[0], values[1]),
                                   _mm256_packs_epi32(values[2], values[3])));
}

// Whole blocks of a run, and a last one that ends with it and may repeat pixels.
template <int kBlock, void (*kPixels)(const PixelRun&, int32_t)>
TARGET_AVX2 inline void RunBlocks(const PixelRun& run) {
  int32_t i = 0;
  for (; i + kBlock <= run.count; i += kBlock) kPixels(run, i);
  if (i < run.count) kPixels(run, run.count - kBlock);
}

// Works on a copy, which no store to the output can change. Most pages lie so straight that
// neighbours differ by one row at most: with that known, no loop over rows is left.
template <int kBlock, void (*kPixels)(const PixelRun&, int32_t)>
TARGET_AVX2 void InBlocks(const PixelRun& run) {
  PixelRun own = run;
  if (run.rows == 1) {
    own.rows = 1;
    RunBlocks<kBlock, kPixels>(own);
  } else {
    RunBlocks<kBlock, kPixels>(own);
  }
}

}  // namespace

const KernelTable kAvx2Kernels = {{{InBlocks<16, BitNearest16>, 8, INT32_MAX},
                                   {InBlocks<16, GreyNearest16>, 8, INT32_MAX},
                                   {InBlocks<16, GreyBilinear16>, 8, INT32_MAX},
                                   {InBlocks<8, GreyBicubic8>, 4, INT32_MAX},
                                   {InBlocks<8, ColourNearest8>, 1, INT32_MAX},
                                   {InBlocks<8, ColourBilinear8>, 1, INT32_MAX},
                                   {InBlocks<8, ColourBicubic8>, 1, INT32_MAX}}};

}  // namespace vorlanepic
