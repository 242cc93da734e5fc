// Kernels for SSE2: places and blends eight pixels at a time; pixels are fetched one by one.
#include <cstring>
#include <emmintrin.h>

#include "rotate/kernels.h"
#include "rotate/simd_constants.h"
#include "rotate/weights.h"

#define TARGET_SSE2 __attribute__((target("sse2")))

namespace vorlanepic::rotate {
namespace {

// Whole pixels and the hundredths behind them, of eight neighbours.
struct Places {
  __m128i column;
  __m128i row;
  __m128i restX;
  __m128i restY;
};

TARGET_SSE2 inline __m128i Hundredths(__m128i x) {
  return _mm_srli_epi16(_mm_mulhi_epu16(x, _mm_set1_epi16(kHundredth)), kHundredthShift);
}

TARGET_SSE2 inline __m128i Rest(__m128i x, __m128i whole) {
  return _mm_sub_epi16(x, _mm_mullo_epi16(whole, _mm_set1_epi16(100)));
}

TARGET_SSE2 inline __m128i Tenths(__m128i rest) {
  return _mm_mulhi_epu16(rest, _mm_set1_epi16(kTenth));
}

TARGET_SSE2 inline __m128i Steps(const uint16_t* steps, uint16_t start) {
  const __m128i step = _mm_loadu_si128(reinterpret_cast<const __m128i*>(steps));
  return _mm_add_epi16(step, _mm_set1_epi16(static_cast<int16_t>(start)));
}

TARGET_SSE2 inline Places PlacesAt(const PixelRun& run, int32_t i) {
  const __m128i x = Steps(run.stepX + i, run.startX);
  const __m128i y = Steps(run.stepY + i, run.startY);
  const __m128i column = Hundredths(x);
  const __m128i row = Hundredths(y);
  return {column, row, Rest(x, column), Rest(y, row)};
}

// Where eight neighbours lie: bytes from the run's origin.
template <int kBytes>
struct Offsets {
  alignas(16) uint16_t column[8];
  alignas(16) uint16_t row[8];

  TARGET_SSE2 Offsets(const PixelRun& run, const Places& places) {
    _mm_store_si128(reinterpret_cast<__m128i*>(column), places.column);
    _mm_store_si128(reinterpret_cast<__m128i*>(row), places.row);
    FetchAhead(run, run.origin + Of(run, 0));
  }
  ptrdiff_t Of(const PixelRun& run, size_t k) const {
    return static_cast<ptrdiff_t>(row[k]) * run.sourceLine + ptrdiff_t{column[k]} * kBytes;
  }
};

template <int kBytes>
TARGET_SSE2 inline void Nearest8(const PixelRun& run, int32_t i) {
  const Offsets<kBytes> offsets(run, PlacesAt(run, i));
  uint8_t* out = run.out + ptrdiff_t{i} * kBytes;
  for (size_t k = 0; k < 8; ++k) {
    std::memcpy(out + k * kBytes, run.origin + offsets.Of(run, k), kBytes);
  }
}

TARGET_SSE2 inline void BitNearest8(const PixelRun& run, int32_t i) {
  const Offsets<1> offsets(run, PlacesAt(run, i));
  uint32_t bits = 0;
  for (size_t k = 0; k < 8; ++k) {
    const int32_t column = offsets.column[k] + run.originBit;
    const uint8_t byte =
        run.origin[static_cast<ptrdiff_t>(offsets.row[k]) * run.sourceLine + (column >> 3)];
    bits = bits << 1 | (byte >> (7 - (column & 7)) & 1U);
  }
  run.out[i / 8] = static_cast<uint8_t>(bits);
}

// Words a and b blended at `weight` = kBlendTenth times the tenths of b: the shares of kBlendTable
// in closed form.
TARGET_SSE2 inline __m128i Mix(__m128i a, __m128i b, __m128i weight) {
  const __m128i isBlended = _mm_cmpgt_epi16(weight, _mm_setzero_si128());
  const __m128i most = _mm_set1_epi16(255);
  const __m128i raisedA = _mm_min_epi16(_mm_sub_epi16(a, isBlended), most);
  const __m128i raisedB = _mm_min_epi16(_mm_sub_epi16(b, isBlended), most);
  const __m128i weightA =
      _mm_sub_epi16(_mm_set1_epi16(static_cast<int16_t>(10 * kBlendTenth)), weight);
  return _mm_add_epi16(_mm_mulhi_epu16(_mm_add_epi16(raisedA, raisedA), weightA),
                       _mm_mulhi_epu16(_mm_add_epi16(raisedB, raisedB), weight));
}

TARGET_SSE2 inline __m128i BlendWeight(__m128i rest) {
  return _mm_mullo_epi16(Tenths(rest), _mm_set1_epi16(kBlendTenth));
}

// Two neighbouring bytes at each offset, as eight words.
template <size_t k>
TARGET_SSE2 inline __m128i InsertPair(__m128i pairs, const PixelRun& run, const Offsets<1>& offsets,
                                      const uint8_t* origin) {
  uint16_t pair;
  std::memcpy(&pair, origin + offsets.Of(run, k), sizeof pair);
  return _mm_insert_epi16(pairs, pair, k);
}

TARGET_SSE2 inline __m128i LoadPairs(const PixelRun& run, const Offsets<1>& offsets,
                                     const uint8_t* origin) {
  __m128i pairs = _mm_setzero_si128();
  pairs = InsertPair<0>(pairs, run, offsets, origin);
  pairs = InsertPair<1>(pairs, run, offsets, origin);
  pairs = InsertPair<2>(pairs, run, offsets, origin);
  pairs = InsertPair<3>(pairs, run, offsets, origin);
  pairs = InsertPair<4>(pairs, run, offsets, origin);
  pairs = InsertPair<5>(pairs, run, offsets, origin);
  pairs = InsertPair<6>(pairs, run, offsets, origin);
  return InsertPair<7>(pairs, run, offsets, origin);
}

TARGET_SSE2 inline void GreyBilinear8(const PixelRun& run, int32_t i) {
  const Places places = PlacesAt(run, i);
  const Offsets<1> offsets(run, places);
  const __m128i top = LoadPairs(run, offsets, run.origin);
  const __m128i bottom = LoadPairs(run, offsets, run.origin + run.sourceLine);
  const __m128i first = _mm_set1_epi16(0x00FF);
  const __m128i weightX = BlendWeight(places.restX);
  const __m128i a = Mix(_mm_and_si128(top, first), _mm_srli_epi16(top, 8), weightX);
  const __m128i b = Mix(_mm_and_si128(bottom, first), _mm_srli_epi16(bottom, 8), weightX);
  const __m128i mixed = Mix(a, b, BlendWeight(places.restY));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(run.out + i), _mm_packus_epi16(mixed, mixed));
}

TARGET_SSE2 inline __m128i LoadEight(const uint8_t* bytes) {
  return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
}

// Two words 0 and 1 of `weights`, each four times.
TARGET_SSE2 inline __m128i SpreadTwo(__m128i weights) {
  const __m128i twice = _mm_unpacklo_epi16(weights, weights);
  return _mm_shuffle_epi32(twice, _MM_SHUFFLE(1, 1, 0, 0));
}

// Two pixels of two neighbours each, mixed along the row: three words of each and one to drop.
TARGET_SSE2 inline __m128i MixNeighbours(const uint8_t* first, const uint8_t* second,
                                         __m128i weight) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i one = _mm_unpacklo_epi8(LoadEight(first), zero);
  const __m128i other = _mm_unpacklo_epi8(LoadEight(second), zero);
  return Mix(_mm_unpacklo_epi64(one, other),
             _mm_unpacklo_epi64(_mm_srli_si128(one, 6), _mm_srli_si128(other, 6)), weight);
}

TARGET_SSE2 inline void StoreColour(uint8_t* out, __m128i bytes) {
  const int32_t pixel = _mm_cvtsi128_si32(bytes);
  std::memcpy(out, &pixel, 3);
}

TARGET_SSE2 inline void ColourBilinear8(const PixelRun& run, int32_t i) {
  const Places places = PlacesAt(run, i);
  const Offsets<3> offsets(run, places);
  __m128i weightsX = BlendWeight(places.restX);
  __m128i weightsY = BlendWeight(places.restY);
  uint8_t* out = run.out + ptrdiff_t{i} * 3;
  for (size_t k = 0; k < 8; k += 2, out += 6) {
    const uint8_t* first = run.origin + offsets.Of(run, k);
    const uint8_t* second = run.origin + offsets.Of(run, k + 1);
    const __m128i weightX = SpreadTwo(weightsX);
    const __m128i a = MixNeighbours(first, second, weightX);
    const __m128i b = MixNeighbours(first + run.sourceLine, second + run.sourceLine, weightX);
    const __m128i mixed = Mix(a, b, SpreadTwo(weightsY));
    const __m128i bytes = _mm_packus_epi16(mixed, mixed);
    StoreColour(out, bytes);
    StoreColour(out + 3, _mm_srli_si128(bytes, 4));
    weightsX = _mm_srli_si128(weightsX, 4);
    weightsY = _mm_srli_si128(weightsY, 4);
  }
}

// The four cubic weights of a phase, twice.
TARGET_SSE2 inline __m128i CubicWeightsOf(uint16_t phase) {
  const __m128i weights = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kCubicWeights[phase]));
  return _mm_unpacklo_epi64(weights, weights);
}

struct Phases {
  alignas(16) uint16_t x[8];
  alignas(16) uint16_t y[8];

  TARGET_SSE2 explicit Phases(const Places& places) {
    _mm_store_si128(reinterpret_cast<__m128i*>(x), Tenths(places.restX));
    _mm_store_si128(reinterpret_cast<__m128i*>(y), Tenths(places.restY));
  }
};

// Sums of neighbouring lanes: a0 + a1, a2 + a3, b0 + b1, b2 + b3.
TARGET_SSE2 inline __m128i AddNeighbours(__m128i a, __m128i b) {
  const __m128i low = _mm_unpacklo_epi32(a, b);   // a0 b0 a1 b1
  const __m128i high = _mm_unpackhi_epi32(a, b);  // a2 b2 a3 b3
  const __m128i sums = _mm_add_epi32(_mm_unpacklo_epi64(low, high), _mm_unpackhi_epi64(low, high));
  return _mm_shuffle_epi32(sums, _MM_SHUFFLE(3, 1, 2, 0));
}

// Four bytes of each of two rows, as words.
TARGET_SSE2 inline __m128i LoadTwoRows(const uint8_t* row, ptrdiff_t line) {
  int32_t first;
  int32_t second;
  std::memcpy(&first, row, sizeof first);
  std::memcpy(&second, row + line, sizeof second);
  const __m128i both = _mm_unpacklo_epi32(_mm_cvtsi32_si128(first), _mm_cvtsi32_si128(second));
  return _mm_unpacklo_epi8(both, _mm_setzero_si128());
}

TARGET_SSE2 inline void GreyBicubic8(const PixelRun& run, int32_t i) {
  const Places places = PlacesAt(run, i);
  const Offsets<1> offsets(run, places);
  const Phases phases(places);
  const ptrdiff_t line = run.sourceLine;
  for (size_t k = 0; k < 8; ++k) {
    const uint8_t* first = run.origin - line - 1 + offsets.Of(run, k);
    const __m128i weightsX = CubicWeightsOf(phases.x[k]);
    const __m128i upper = _mm_madd_epi16(LoadTwoRows(first, line), weightsX);
    const __m128i lower = _mm_madd_epi16(LoadTwoRows(first + 2 * line, line), weightsX);
    const __m128i rows = _mm_srai_epi32(AddNeighbours(upper, lower), kCubicShift);
    const __m128i products =
        _mm_madd_epi16(_mm_packs_epi32(rows, rows), CubicWeightsOf(phases.y[k]));
    const __m128i sum = _mm_add_epi32(products, _mm_srli_si128(products, 4));
    const __m128i value = _mm_srai_epi32(sum, kCubicShift);
    const __m128i words = _mm_packs_epi32(value, value);
    run.out[i + static_cast<int32_t>(k)] =
        static_cast<uint8_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
  }
}

// The bytes of four neighbours, weighed and summed: one lane for each byte, and one to drop.
TARGET_SSE2 inline __m128i WeighColours(const uint8_t* first, __m128i weights01,
                                        __m128i weights23) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
  const __m128i low = _mm_unpacklo_epi8(bytes, zero);
  const __m128i high = _mm_unpacklo_epi8(_mm_srli_si128(bytes, 6), zero);
  const __m128i pairs01 = _mm_unpacklo_epi16(low, _mm_srli_si128(low, 6));
  const __m128i pairs23 = _mm_unpacklo_epi16(high, _mm_srli_si128(high, 6));
  const __m128i sum =
      _mm_add_epi32(_mm_madd_epi16(pairs01, weights01), _mm_madd_epi16(pairs23, weights23));
  return _mm_srai_epi32(sum, kCubicShift);
}

TARGET_SSE2 inline void ColourBicubic8(const PixelRun& run, int32_t i) {
  const Places places = PlacesAt(run, i);
  const Offsets<3> offsets(run, places);
  const Phases phases(places);
  const ptrdiff_t line = run.sourceLine;
  uint8_t* out = run.out + ptrdiff_t{i} * 3;
  for (size_t k = 0; k < 8; ++k, out += 3) {
    const uint8_t* first = run.origin - line - 3 + offsets.Of(run, k);
    const __m128i weightsX = CubicWeightsOf(phases.x[k]);
    const __m128i x01 = _mm_shuffle_epi32(weightsX, 0x00);
    const __m128i x23 = _mm_shuffle_epi32(weightsX, 0x55);
    const __m128i row0 = WeighColours(first, x01, x23);
    const __m128i row1 = WeighColours(first + line, x01, x23);
    const __m128i row2 = WeighColours(first + 2 * line, x01, x23);
    const __m128i row3 = WeighColours(first + 3 * line, x01, x23);
    const __m128i weightsY = CubicWeightsOf(phases.y[k]);
    const __m128i upper =
        _mm_unpacklo_epi16(_mm_packs_epi32(row0, row0), _mm_packs_epi32(row1, row1));
    const __m128i lower =
        _mm_unpacklo_epi16(_mm_packs_epi32(row2, row2), _mm_packs_epi32(row3, row3));
    const __m128i sum = _mm_add_epi32(_mm_madd_epi16(upper, _mm_shuffle_epi32(weightsY, 0x00)),
                                      _mm_madd_epi16(lower, _mm_shuffle_epi32(weightsY, 0x55)));
    const __m128i words = _mm_packs_epi32(_mm_srai_epi32(sum, kCubicShift), sum);
    StoreColour(out, _mm_packus_epi16(words, words));
  }
}

// Whole blocks of a run, and a last one that ends with it and may repeat pixels. Works on a copy,
// which no store to the output can change.
template <void (*kPixels)(const PixelRun&, int32_t)>
TARGET_SSE2 void InEights(const PixelRun& run) {
  const PixelRun own = run;
  int32_t i = 0;
  for (; i + 8 <= own.count; i += 8) kPixels(own, i);
  if (i < own.count) kPixels(own, own.count - 8);
}

}  // namespace

const KernelTable kSse2Kernels = {{{InEights<BitNearest8>},
                                   {InEights<Nearest8<1>>},
                                   {InEights<GreyBilinear8>},
                                   {InEights<GreyBicubic8>},
                                   {InEights<Nearest8<3>>},
                                   {InEights<ColourBilinear8>},
                                   {InEights<ColourBicubic8>}}};

}  // namespace vorlanepic::rotate
