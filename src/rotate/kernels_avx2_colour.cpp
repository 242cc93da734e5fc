// Kernels for AVX2, 24 bits: eight pixels at a time, each fetched from where it lies.
#include <cstring>

#include "rotate/avx2.h"

namespace vorlanepic::rotate::avx2 {
namespace {

// Offsets of eight neighbours from the run's origin, in bytes, and their phases in 16-bit lanes.
struct ColourPlaces {
  alignas(32) int32_t offset[8];
  __m128i phaseX;
  __m128i phaseY;
};

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

}  // namespace

void ColourNearest(const PixelRun& run) { InBlocks<8, ColourNearest8>(run); }
void ColourBilinear(const PixelRun& run) { InBlocks<8, ColourBilinear8>(run); }
void ColourBicubic(const PixelRun& run) { InBlocks<8, ColourBicubic8>(run); }

}  // namespace vorlanepic::rotate::avx2
