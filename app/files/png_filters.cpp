#include "app/files/png_filters.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

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

template <size_t kPixel>
void UndoPaeth(std::span<uint8_t> row, const uint8_t* above) {
  uint8_t left[kPixel] = {};
  uint8_t corner[kPixel] = {};
  for (size_t i = 0; i + kPixel <= row.size(); i += kPixel) {
    for (size_t k = 0; k < kPixel; ++k) {
      left[k] = Sum(row[i + k], Paeth(left[k], above[i + k], corner[k]));
      corner[k] = above[i + k];
      row[i + k] = left[k];
    }
  }
}

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
