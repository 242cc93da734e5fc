// Kernels for AVX-512, nearest pixels: 64 at a time, a byte of a part for every byte.
#include <algorithm>
#include <cstring>

#include "rotate/avx512.h"

namespace vorlanepic::rotate::avx512 {
namespace {

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
    FetchAhead(run, corner);
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

}  // namespace

void BitNearest(const PixelRun& run) { InBlocks<Bits>(run); }
void GreyNearest(const PixelRun& run) { InBlocks<Nearest<1>>(run); }
void ColourNearest(const PixelRun& run) { InBlocks<Nearest<3>>(run); }

}  // namespace vorlanepic::rotate::avx512
