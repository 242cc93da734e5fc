// Kernels for AVX-512, interpolated: 32 pixels at a time, a word of a part for every two taps along
// a row.
#include <algorithm>

#include "rotate/avx512.h"

namespace vorlanepic::rotate {
namespace avx512 {
namespace {

// For each part of a block and each of its words: the pixel, and the bytes of its two taps counted
// from the pixel's first tap.
template <int kPixelBytes, int kTaps>
struct PartWords {
  static constexpr int kWordsEach = kTaps / 2;
  static constexpr int kParts = kPixelBytes * kWordsEach;

  Words pixels[kParts];
  Words taps[kParts];
};

template <int kPixelBytes, int kTaps>
constexpr PartWords<kPixelBytes, kTaps> MakePartWords() {
  PartWords<kPixelBytes, kTaps> words{};
  for (int part = 0; part < words.kParts; ++part) {
    for (int i = 0; i < kWords; ++i) {
      const int byte = (part * kWords + i) / words.kWordsEach;
      const int tap = 2 * (i % words.kWordsEach);
      const int first = byte % kPixelBytes + tap * kPixelBytes;
      words.pixels[part].at[i] = static_cast<uint16_t>(byte / kPixelBytes);
      words.taps[part].at[i] = static_cast<uint16_t>(first | (first + kPixelBytes) << 8);
    }
  }
  return words;
}

template <int kPixelBytes, int kTaps>
constexpr PartWords<kPixelBytes, kTaps> kPartWords = MakePartWords<kPixelBytes, kTaps>();

// Taps of kTaps neighbouring rows: `bytes` of a window are those of each lane, `row` its first row.
template <int kTaps>
INLINE_AVX512 inline void GatherTaps(const PixelRun& run, const uint8_t* first, __m512i bytes,
                                     __m512i row, __m512i (&taps)[kTaps]) {
  const auto rowAt = [&](ptrdiff_t r) INLINE_AVX512 {
    return _mm512_permutexvar_epi8(bytes, _mm512_loadu_si512(first + r * run.sourceLine));
  };
  __m512i below[kTaps];
  for (int32_t k = 0; k < kTaps; ++k) taps[k] = below[k] = rowAt(k);
  for (int32_t r = 1; r <= run.rows; ++r) {
    const __mmask32 isHere = _mm512_cmpeq_epi16_mask(row, AllWords(r));
    for (int32_t k = 0; k + 1 < kTaps; ++k) below[k] = below[k + 1];
    below[kTaps - 1] = rowAt(r + kTaps - 1);
    for (int32_t k = 0; k < kTaps; ++k) {
      taps[k] = _mm512_mask_mov_epi16(taps[k], isHere, below[k]);
    }
  }
}

// How two bytes are blended, as the table of shares has it: at tenths 1 to 9 a byte below 255 is
// raised by 1, at 0 the first byte is the value.
struct BlendWeights {
  __mmask32 isBlended;
  __m512i first;
  __m512i second;
};

// `second` is twice kBlendTenth times the tenths of the second byte.
INLINE_AVX512 inline BlendWeights BlendWeightsOf(__m512i second) {
  return {_mm512_test_epi16_mask(second, second),
          _mm512_sub_epi16(AllWords(20 * kBlendTenth), second), second};
}

// Of words below 256, raised where they are blended.
INLINE_AVX512 inline __m512i Mix(__m512i first, __m512i second, const BlendWeights& weights) {
  return _mm512_add_epi16(_mm512_mask_mulhi_epu16(first, weights.isBlended, first, weights.first),
                          _mm512_mulhi_epu16(second, weights.second));
}

// Both bytes of each word.
INLINE_AVX512 inline __m512i MixPairs(__m512i pairs, const BlendWeights& weights) {
  const __m512i raise = _mm512_maskz_mov_epi16(weights.isBlended, AllWords(0x0101));
  const __m512i raised = _mm512_adds_epu8(pairs, raise);
  return Mix(_mm512_and_si512(raised, AllWords(0x00FF)), _mm512_srli_epi16(raised, 8), weights);
}

// What a blend of kTaps taps takes for the tenths of a pixel: here twice kBlendTenth times them.
template <int kTaps>
INLINE_AVX512 inline __m512i BlendPhase(__m512i tenths) {
  return kTaps == 2 ? _mm512_mullo_epi16(tenths, Multiplier(2 * kBlendTenth)) : tenths;
}

// 32 bytes of the output.
INLINE_AVX512 inline __m256i Blend(const __m512i (&taps)[2], __m512i phaseX, __m512i phaseY) {
  const BlendWeights x = BlendWeightsOf(phaseX);
  const BlendWeights y = BlendWeightsOf(phaseY);
  const __m512i raise = _mm512_maskz_mov_epi16(y.isBlended, AllWords(0x0001));
  const __m512i top = _mm512_adds_epu8(MixPairs(taps[0], x), raise);
  const __m512i bottom = _mm512_adds_epu8(MixPairs(taps[1], x), raise);
  return _mm512_cvtepi16_epi8(Mix(top, bottom, y));
}

// The sum of four values' products, scaled back: values and weights 0, 2 and 1, 3 in pairs.
INLINE_AVX512 inline __m512i WeighFour(__m512i values02, __m512i values13, __m512i phase) {
  const __m512i weights02 = _mm512_permutexvar_epi32(phase, _mm512_load_si512(kCubicPairs02.pairs));
  const __m512i weights13 = _mm512_permutexvar_epi32(phase, _mm512_load_si512(kCubicPairs13.pairs));
  return _mm512_srai_epi32(_mm512_add_epi32(_mm512_madd_epi16(values02, weights02),
                                            _mm512_madd_epi16(values13, weights13)),
                           kCubicShift);
}

// Two values of 32 bits, which fit 16, as one pair.
INLINE_AVX512 inline __m512i PairUp(__m512i low, __m512i high) {
  return _mm512_mask_mov_epi16(low, 0xAAAAAAAA, _mm512_slli_epi32(high, 16));
}

// 16 bytes of the output.
INLINE_AVX512 inline __m128i Blend(const __m512i (&taps)[4], __m512i phaseX, __m512i phaseY) {
  __m512i rows[4];
  for (int32_t k = 0; k < 4; ++k) {
    rows[k] = WeighFour(_mm512_and_si512(taps[k], AllWords(0x00FF)), _mm512_srli_epi16(taps[k], 8),
                        phaseX);
  }
  const __m512i value = WeighFour(PairUp(rows[0], rows[2]), PairUp(rows[1], rows[3]), phaseY);
  return _mm512_cvtusepi32_epi8(_mm512_max_epi32(value, _mm512_setzero_si512()));
}

INLINE_AVX512 inline void Store(uint8_t* out, __m256i bytes, int32_t count) {
  if (count >= 32) return _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
  _mm256_mask_storeu_epi8(out, static_cast<__mmask32>(LowBits(count)), bytes);
}

INLINE_AVX512 inline void Store(uint8_t* out, __m128i bytes, int32_t count) {
  if (count >= 16) return _mm_storeu_si128(reinterpret_cast<__m128i*>(out), bytes);
  _mm_mask_storeu_epi8(out, static_cast<__mmask16>(LowBits(count)), bytes);
}

template <int kPixelBytes, int kTaps>
struct Interpolated {
  static constexpr int32_t kPixels = kWords;

  // Pixels i to i + count - 1 of the run, at most kPixels.
  INLINE_AVX512 static inline void Rotate(const PixelRun& run, int32_t i, int32_t count) {
    using Parts = PartWords<kPixelBytes, kTaps>;
    constexpr const Parts& kOrder = kPartWords<kPixelBytes, kTaps>;
    constexpr int32_t kPartBytes = kWords / Parts::kWordsEach;
    constexpr int32_t kTapsBefore = kTaps / 2 - 1;

    const __m512i x = Steps(run.stepX + i, run.startX);
    const __m512i y = Steps(run.stepY + i, run.startY);
    const __m512i column = Hundredths(x);
    const __m512i row = Hundredths(y);
    const __m512i phaseX = BlendPhase<kTaps>(Tenths(x, column));
    const __m512i phaseY = BlendPhase<kTaps>(Tenths(y, row));
    const __m512i columnByte =
        kPixelBytes == 1 ? column : _mm512_mullo_epi16(column, AllWords(kPixelBytes));
    Places<1> places;
    _mm512_store_si512(places.columns[0].at, columnByte);
    _mm512_store_si512(places.rows[0].at, row);

    for (int32_t part = 0; part < Parts::kParts; ++part) {
      const int32_t firstByte = part * kPartBytes;
      const int32_t left = count * kPixelBytes - firstByte;
      if (left <= 0) break;
      const int32_t lastByte = firstByte + std::min(left, kPartBytes) - 1;
      const Window window = WindowOf(run, places, firstByte / kPixelBytes, lastByte / kPixelBytes);
      const auto spread = [&](__m512i pixels) INLINE_AVX512 {
        return Parts::kParts == 1 ? pixels
                                  : _mm512_permutexvar_epi16(Load(kOrder.pixels[part]), pixels);
      };
      const __m512i byte = _mm512_sub_epi16(spread(columnByte), AllWords(window.left));
      const __m512i bytes =
          _mm512_add_epi16(_mm512_mullo_epi16(byte, AllWords(0x0101)), Load(kOrder.taps[part]));
      __m512i taps[kTaps];
      GatherTaps(run, window.first - kTapsBefore * (run.sourceLine + kPixelBytes), bytes,
                 _mm512_sub_epi16(spread(row), AllWords(window.top)), taps);
      Store(run.out + ptrdiff_t{i} * kPixelBytes + firstByte,
            Blend(taps, spread(phaseX), spread(phaseY)), left);
    }
  }
};

}  // namespace
}  // namespace avx512

// Beyond these rows the smaller windows of AVX2 do with less.
const KernelTable kAvx512Kernels = {{{avx512::BitNearest, 64, 16},
                                     {avx512::GreyNearest, 64, 4},
                                     {avx512::InBlocks<avx512::Interpolated<1, 2>>, 32, 4},
                                     {avx512::InBlocks<avx512::Interpolated<1, 4>>, 16, 16},
                                     {avx512::ColourNearest, 22, 3},
                                     {avx512::InBlocks<avx512::Interpolated<3, 2>>, 12, 4},
                                     {avx512::InBlocks<avx512::Interpolated<3, 4>>, 6, 16}}};

}  // namespace vorlanepic::rotate
