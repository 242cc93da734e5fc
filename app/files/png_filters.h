// The filters of PNG rows: each byte is stored as its difference from what its neighbours foretell.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vorlane::files {

enum class PngFilter : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

// Undoes the filter of a row of whole pixels in place. `above` is the row above it without its
// filter, zeros for the first one. `pixelBytes` is 1, 2, 3, 4, 6 or 8. False for a filter that the
// format does not know.
bool UndoFilter(uint8_t filter, std::span<uint8_t> row, const uint8_t* above, size_t pixelBytes);

// Filters the rows of a picture, top row first. The filter is the one whose differences, taken as
// signed numbers, sum up least; neighbouring rows are alike, so that only some are tried with all.
class RowFilter {
 public:
  RowFilter(size_t rowBytes, size_t pixelBytes);

  // Writes the filtered row to `to`. `above` is the row above it, zeros for the first one.
  PngFilter Apply(std::span<const uint8_t> row, const uint8_t* above, uint8_t* to);

 private:
  void Choose(std::span<const uint8_t> row, const uint8_t* above);

  size_t pixelBytes_;
  std::vector<uint8_t> trial_;
  PngFilter filter_ = PngFilter::kUp;
  uint32_t rows_ = 0;
};

}  // namespace vorlane::files
