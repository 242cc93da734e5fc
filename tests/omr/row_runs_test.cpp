#include "omr/row_runs.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded_memory.h"

namespace vorlanepic::omr {
namespace {

using testing::GuardedBytes;

using Runs = std::vector<std::pair<int32_t, int32_t>>;

template <typename Foreground>
Runs Cut(const Foreground& foreground, const GuardedBytes& row, int32_t first, int32_t last) {
  std::vector<PixelRun> room(MaxRuns(last - first + 1));
  const size_t count = CutRow(foreground, row.data(), first, last, room.data());
  Runs runs;
  for (size_t i = 0; i < count; ++i) runs.emplace_back(room.at(i).start, room.at(i).end);
  return runs;
}

// Pixel by pixel; the last column belongs to a run that comes up to it.
template <typename Foreground>
Runs CutPlainly(const Foreground& foreground, const GuardedBytes& row, int32_t first,
                int32_t last) {
  Runs runs;
  bool isOpen = false;
  for (int32_t x = first; x <= last; ++x) {
    const bool isMarked = foreground.Has(row[static_cast<size_t>(x)]) || (isOpen && x == last);
    if (isMarked && !isOpen) runs.emplace_back(x, x + 1);
    if (isMarked) runs.back().second = x + 1;
    isOpen = isMarked;
  }
  return runs;
}

TEST(RowRunsTest, RowsOfAnyLengthAreCutAsPixelByPixel) {
  std::mt19937 random(5);
  const uint8_t values[] = {0, 1, 127, 128, 254, 255};
  for (int32_t width = 1; width < 200; ++width) {
    GuardedBytes row(static_cast<size_t>(width));
    for (uint8_t& pixel : row) pixel = values[random() % 6];
    if (width % 3 == 0) row.assign(row.size(), 0);  // one run
    if (width % 3 == 1) {
      for (size_t x = 0; x < row.size(); ++x) row[x] = x % 2 == 0 ? 0 : 255;  // the most runs
    }
    const auto first = static_cast<int32_t>(random() % static_cast<uint32_t>(width));
    const auto left = static_cast<uint32_t>(width - first);
    const int32_t last = first + static_cast<int32_t>(random() % left);
    for (const int32_t threshold : {0, 127, 128, 255}) {
      const DarkPixels dark{static_cast<uint8_t>(threshold)};
      ASSERT_EQ(Cut(dark, row, 0, width - 1), CutPlainly(dark, row, 0, width - 1)) << width;
      ASSERT_EQ(Cut(dark, row, first, last), CutPlainly(dark, row, first, last)) << width;
    }
    ASSERT_EQ(Cut(NonZeroPixels{}, row, first, last),
              CutPlainly(NonZeroPixels{}, row, first, last));
  }
}

}  // namespace
}  // namespace vorlanepic::omr
