// Kernels for AVX-512 with byte permutations. A vector of the output's bytes is a "part": it holds
// whole pixels or not, and all its taps lie in one window of the source, a few rows of 64 bytes.
// Each of these rows is loaded once for the part and permuted to its lanes, and a lane keeps the
// taps of its own row. Grey and colour differ only in which pixel and channel a lane stands for.
#include <algorithm>
#include <cstring>

// g++ 12 takes the header's own undefined vectors for a fault.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#include "rotate/kernels.h"
#include "rotate/simd_constants.h"

#define TARGET_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi")))
// Of lambdas, which take no `inline`, too.
#define INLINE_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi"), always_inline))

namespace vorlanepic {
namespace {

constexpr int32_t kWords = 32;  // words of a vector
constexpr int32_t kBytes = 64;  // bytes of a vector

struct alignas(64) Words {
  uint16_t at[kWords];
};

struct alignas(64) Bytes {
  uint8_t at[kBytes];
};

INLINE_AVX512 inline __m512i Load(const Words& words) { return _mm512_load_si512(words.at); }
INLINE_AVX512 inline __m512i Load(const Bytes& bytes) { return _mm512_load_si512(bytes.at); }

INLINE_AVX512 inline __m512i AllWords(int32_t word) {
  return _mm512_set1_epi16(static_cast<int16_t>(word));
}

// `constant` in all words, unknown to the compiler, which would spell multiplications by it out as
// shifts and sums that take longer.
INLINE_AVX512 inline __m512i Multiplier(int32_t constant) {
  __m512i all = AllWords(constant);
  asm("" : "+v"(all));
  return all;
}

// x / 100 for x below 43698.
INLINE_AVX512 inline __m512i Hundredths(__m512i x) {
  return _mm512_srli_epi16(_mm512_mulhi_epu16(x, AllWords(kHundredth)), kHundredthShift);
}

// The tenths digit of x, of which `whole` are the hundreds.
INLINE_AVX512 inline __m512i Tenths(__m512i x, __m512i whole) {
  const __m512i rest = _mm512_sub_epi16(x, _mm512_mullo_epi16(whole, Multiplier(100)));
  return _mm512_mulhi_epu16(rest, AllWords(kTenth));
}

INLINE_AVX512 inline __m512i Steps(const uint16_t* steps, uint16_t start) {
  return _mm512_add_epi16(_mm512_loadu_si512(steps), AllWords(start));
}

// Source columns, in bytes, and rows of kVectors * 32 neighbours, from the run's origin.
template <int kVectors>
struct Places {
  Words columns[kVectors];
  Words rows[kVectors];

  int32_t ColumnOf(int32_t pixel) const { return columns[pixel / kWords].at[pixel % kWords]; }
  int32_t RowOf(int32_t pixel) const { return rows[pixel / kWords].at[pixel % kWords]; }
};

// The least column and row of a part's pixels, and the source byte there.
struct Window {
  int32_t left;
  int32_t top;
  const uint8_t* first;
};

// Of pixels first..last, whose coordinates are monotone. Later rows of the output find their part
// of the source in the cache; slanted walks are too much for the machine's own prefetching. What
// is fetched ahead may lie outside the source.
template <int kVectors>
INLINE_AVX512 inline Window WindowOf(const PixelRun& run, const Places<kVectors>& places,
                                     int32_t first, int32_t last) {
  const int32_t left = places.ColumnOf(run.isFallingX ? last : first);
  const int32_t top = places.RowOf(run.isFallingY ? last : first);
  const uint8_t* corner = run.origin + top * run.sourceLine + left;
  const auto ahead = reinterpret_cast<uintptr_t>(corner) + run.ahead;
  _mm_prefetch(reinterpret_cast<const char*>(ahead), _MM_HINT_T0);
  return {left, top, corner};
}

// The lowest `count` bits, count from 1 to 64.
inline uint64_t LowBits(int32_t count) { return ~uint64_t{0} >> (64 - count); }

// ---- Interpolation: 32 pixels at a time, a word of a part for every two taps along a row ----

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

// ---- Nearest pixels: 64 at a time, a byte of a part for every byte ----

// For each part of a block and each of its bytes: where the low byte of its pixel's word lies in
// two vectors of words, and the byte of the pixel.
template <int kPixelBytes>
struct PartBytes {
  Bytes pixels[kPixelBytes];
  Bytes channels[kPixelBytes];
};

template <int kPixelBytes>
constexpr PartBytes<kPixelBytes> MakePartBytes() {
  PartBytes<kPixelBytes> bytes{};
  for (int part = 0; part < kPixelBytes; ++part) {
    for (int i = 0; i < kBytes; ++i) {
      const int byte = part * kBytes + i;
      bytes.pixels[part].at[i] = static_cast<uint8_t>(byte / kPixelBytes * 2);
      bytes.channels[part].at[i] = static_cast<uint8_t>(byte % kPixelBytes);
    }
  }
  return bytes;
}

template <int kPixelBytes>
constexpr PartBytes<kPixelBytes> kPartBytes = MakePartBytes<kPixelBytes>();

// The low bytes of two vectors' words in the order of a part, less `least`. Both lie less than 256
// above it.
INLINE_AVX512 inline __m512i SpreadBytes(const Words (&words)[2], const Bytes& order,
                                         int32_t least) {
  const __m512i low = _mm512_permutex2var_epi8(Load(words[0]), Load(order), Load(words[1]));
  return _mm512_sub_epi8(low, _mm512_set1_epi8(static_cast<int8_t>(least)));
}

template <int kPixelBytes>
struct Nearest {
  static constexpr int32_t kPixels = kBytes;

  INLINE_AVX512 static inline void Rotate(const PixelRun& run, int32_t i, int32_t count) {
    constexpr const PartBytes<kPixelBytes>& kOrder = kPartBytes<kPixelBytes>;
    Places<2> places;
    for (int32_t k = 0; k < 2; ++k) {
      const int32_t first = i + k * kWords;
      const __m512i column = Hundredths(Steps(run.stepX + first, run.startX));
      _mm512_store_si512(
          places.columns[k].at,
          kPixelBytes == 1 ? column : _mm512_mullo_epi16(column, AllWords(kPixelBytes)));
      _mm512_store_si512(places.rows[k].at, Hundredths(Steps(run.stepY + first, run.startY)));
    }
    for (int32_t part = 0; part < kPixelBytes; ++part) {
      const int32_t firstByte = part * kBytes;
      const int32_t left = count * kPixelBytes - firstByte;
      if (left <= 0) break;
      const int32_t lastByte = firstByte + std::min(left, kBytes) - 1;
      const Window window = WindowOf(run, places, firstByte / kPixelBytes, lastByte / kPixelBytes);
      const __m512i byte =
          _mm512_add_epi8(SpreadBytes(places.columns, kOrder.pixels[part], window.left),
                          Load(kOrder.channels[part]));
      const __m512i row = SpreadBytes(places.rows, kOrder.pixels[part], window.top);
      // Pixels of several bytes reach beyond 64.
      const auto rowAt = [&](ptrdiff_t r) INLINE_AVX512 {
        const uint8_t* first = window.first + r * run.sourceLine;
        const __m512i low = _mm512_loadu_si512(first);
        if constexpr (kPixelBytes == 1) return _mm512_permutexvar_epi8(byte, low);
        return _mm512_permutex2var_epi8(low, byte, _mm512_loadu_si512(first + kBytes));
      };
      __m512i taken = rowAt(0);
      for (int32_t r = 1; r <= run.rows; ++r) {
        const __mmask64 isHere =
            _mm512_cmpeq_epi8_mask(row, _mm512_set1_epi8(static_cast<int8_t>(r)));
        taken = _mm512_mask_mov_epi8(taken, isHere, rowAt(r));
      }
      uint8_t* out = run.out + ptrdiff_t{i} * kPixelBytes + firstByte;
      if (left >= kBytes) {
        _mm512_storeu_si512(out, taken);
      } else {
        _mm512_mask_storeu_epi8(out, LowBits(left), taken);
      }
    }
  }
};

// Mirrored in eights: the first pixel of eight is the highest bit of its byte.
constexpr Bytes MakeBitOrder() {
  Bytes order{};
  for (int i = 0; i < kBytes; ++i) order.at[i] = static_cast<uint8_t>((i ^ 7) * 2);
  return order;
}

constexpr Bytes kBitOrder = MakeBitOrder();

struct Bits {
  static constexpr int32_t kPixels = kBytes;

  INLINE_AVX512 static inline void Rotate(const PixelRun& run, int32_t i, int32_t count) {
    Places<2> places;  // columns in bits, from the first bit of the origin's byte
    for (int32_t k = 0; k < 2; ++k) {
      const int32_t first = i + k * kWords;
      _mm512_store_si512(places.columns[k].at,
                         _mm512_add_epi16(Hundredths(Steps(run.stepX + first, run.startX)),
                                          AllWords(run.originBit)));
      _mm512_store_si512(places.rows[k].at, Hundredths(Steps(run.stepY + first, run.startY)));
    }
    const int32_t last = count - 1;
    const int32_t leftByte = places.ColumnOf(run.isFallingX ? last : 0) / 8;
    const int32_t top = places.RowOf(run.isFallingY ? last : 0);
    const uint8_t* corner = run.origin + top * run.sourceLine + leftByte;
    _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<uintptr_t>(corner) + run.ahead),
                 _MM_HINT_T0);
    const __m512i bit = SpreadBytes(places.columns, kBitOrder, leftByte * 8);
    const __m512i row = SpreadBytes(places.rows, kBitOrder, top);
    const __m512i masks = _mm512_shuffle_epi8(_mm512_set1_epi64(0x0102040810204080), bit);
    // Bytes of four rows fill a vector: a pixel's byte there from its row and its byte.
    const __m512i byte =
        _mm512_or_si512(_mm512_and_si512(_mm512_srli_epi16(bit, 3), _mm512_set1_epi8(0x0F)),
                        _mm512_and_si512(_mm512_slli_epi16(row, 4), _mm512_set1_epi8(0x30)));
    const __m512i group = _mm512_andnot_si512(_mm512_set1_epi8(3), row);
    const auto rowsAt = [&](ptrdiff_t r) INLINE_AVX512 {
      const auto at = [&](ptrdiff_t k) INLINE_AVX512 {
        const uint8_t* first = corner + std::min<ptrdiff_t>(r + k, run.rows) * run.sourceLine;
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
      };
      __m512i rows = _mm512_castsi128_si512(at(0));
      rows = _mm512_inserti32x4(rows, at(1), 1);
      rows = _mm512_inserti32x4(rows, at(2), 2);
      rows = _mm512_inserti32x4(rows, at(3), 3);
      return _mm512_permutexvar_epi8(byte, rows);
    };
    __m512i taken = rowsAt(0);
    for (int32_t r = 4; r <= run.rows; r += 4) {
      const __mmask64 isHere =
          _mm512_cmpeq_epi8_mask(group, _mm512_set1_epi8(static_cast<int8_t>(r)));
      taken = _mm512_mask_mov_epi8(taken, isHere, rowsAt(r));
    }
    const uint64_t light = _mm512_test_epi8_mask(taken, masks);
    std::memcpy(run.out + i / 8, &light, static_cast<size_t>(count) / 8);
  }
};

// ---- Runs ----

// What is left of a run behind its whole blocks.
template <typename Block>
TARGET_AVX512 __attribute__((noinline)) void RotateRest(const PixelRun& run, int32_t i) {
  Block::Rotate(run, i, run.count - i);
}

template <typename Block>
INLINE_AVX512 inline void RotateBlocks(const PixelRun& run) {
  int32_t i = 0;
  for (; i + Block::kPixels <= run.count; i += Block::kPixels)
    Block::Rotate(run, i, Block::kPixels);
  if (i < run.count) RotateRest<Block>(run, i);
}

// Works on a copy, which no store to the output can change. Most pages lie so straight that a few
// rows are all: with their number known, no loop over rows is left.
template <typename Block>
TARGET_AVX512 void InBlocks(const PixelRun& run) {
  PixelRun own = run;
  switch (run.rows) {
    case 1:
      own.rows = 1;
      return RotateBlocks<Block>(own);
    case 2:
      own.rows = 2;
      return RotateBlocks<Block>(own);
    case 3:
      own.rows = 3;
      return RotateBlocks<Block>(own);
    default:
      return RotateBlocks<Block>(own);
  }
}

}  // namespace

// Beyond these rows the smaller windows of AVX2 do with less.
const KernelTable kAvx512Kernels = {{{InBlocks<Bits>, 64, 16},
                                     {InBlocks<Nearest<1>>, 64, 4},
                                     {InBlocks<Interpolated<1, 2>>, 32, 4},
                                     {InBlocks<Interpolated<1, 4>>, 16, 16},
                                     {InBlocks<Nearest<3>>, 22, 3},
                                     {InBlocks<Interpolated<3, 2>>, 12, 4},
                                     {InBlocks<Interpolated<3, 4>>, 6, 16}}};

}  // namespace vorlanepic
