#include "app/overlay/small_copy.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "app/files/errors.h"

namespace vorlane::overlay {
namespace {

struct Sums {
  uint32_t blue = 0;
  uint32_t green = 0;
  uint32_t red = 0;
};

void Add(const ImageRec& image, const uint8_t* row, int32_t x, Sums* sums) {
  if (image.bitsPerPixel == 24) {
    sums->blue += row[3 * x];
    sums->green += row[3 * x + 1];
    sums->red += row[3 * x + 2];
    return;
  }
  const bool isBit = image.bitsPerPixel == 1;
  const uint32_t level = !isBit ? row[x] : (row[x / 8] & (0x80 >> (x % 8))) != 0 ? 255U : 0U;
  sums->blue += level;
  sums->green += level;
  sums->red += level;
}

// Where the pixels of each of `count` parts of `length` begin, and behind them the end.
std::vector<int32_t> PartsOf(int32_t length, int32_t count) {
  std::vector<int32_t> starts;
  for (int32_t i = 0; i <= count; ++i) {
    starts.push_back(static_cast<int32_t>(int64_t{length} * i / count));
  }
  return starts;
}

uint32_t MeanWord(const Sums& sums, uint32_t pixels) {
  const auto mean = [pixels](uint32_t sum) { return (sum + pixels / 2) / pixels; };
  return mean(sums.red) << L_RED_SHIFT | mean(sums.green) << L_GREEN_SHIFT |
         mean(sums.blue) << L_BLUE_SHIFT;
}

}  // namespace

files::PixPtr SmallCopy(const ImageRec& image, int32_t longest, double* scale) {
  const int32_t longer = std::max(image.width, image.height);
  *scale = std::min(1.0, static_cast<double>(longest) / longer);
  const auto scaled = [scale](int32_t length) {
    return std::max(1, static_cast<int32_t>(length * *scale));
  };
  const std::vector<int32_t> columns = PartsOf(image.width, scaled(image.width));
  const std::vector<int32_t> rows = PartsOf(image.height, scaled(image.height));
  files::PixPtr copy(pixCreate(scaled(image.width), scaled(image.height), 32));
  if (!copy) throw files::FileError("there is not enough memory for an overlay of this page");
  std::vector<Sums> sums(columns.size() - 1);
  for (size_t j = 0; j + 1 < rows.size(); ++j) {
    std::fill(sums.begin(), sums.end(), Sums{});
    for (int32_t y = rows[j]; y < rows[j + 1]; ++y) {
      for (size_t i = 0; i < sums.size(); ++i) {
        for (int32_t x = columns[i]; x < columns[i + 1]; ++x) {
          Add(image, image.rows[y], x, &sums[i]);
        }
      }
    }
    uint32_t* words = pixGetData(copy.get()) + j * static_cast<size_t>(pixGetWpl(copy.get()));
    for (size_t i = 0; i < sums.size(); ++i) {
      const int32_t pixels = (columns[i + 1] - columns[i]) * (rows[j + 1] - rows[j]);
      words[i] = MeanWord(sums[i], static_cast<uint32_t>(pixels));
    }
  }
  return copy;
}

}  // namespace vorlane::overlay
