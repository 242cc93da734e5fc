// Blocks in pictures that are so long that sums of coordinates pass 2^31, and coordinates 2^16.
#include <algorithm>
#include <vector>

#include "fuzz_input.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

// A few rows of many columns, or a few columns of many rows, with strokes along them.
struct LongImage {
  explicit LongImage(FuzzInput& input) : isHigh(input.Flag()) {
    const int32_t length = input.In(1, 65535) + input.In(0, 8191);
    const int32_t lines = input.In(1, 3);
    width = isHigh ? lines : length;
    height = isHigh ? length : lines;
    pixels.resize(static_cast<size_t>(length) * static_cast<size_t>(lines));
    for (int32_t strokes = input.In(0, 4); strokes > 0; --strokes) {
      const int32_t line = input.Byte() % lines;
      const int32_t from = (2 * input.In(0, 65535)) % length;
      const int32_t to = std::min(length, from + 2 * input.In(0, 65535) + input.Byte());
      const auto value = static_cast<uint8_t>(1 + input.Byte() % 255);
      for (int32_t at = from; at < to; ++at) {
        const int32_t place = isHigh ? at * lines + line : line * length + at;
        pixels[static_cast<size_t>(place)] = value;
      }
    }
  }

  bool isHigh;
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> pixels;
};

// Along one axis: the block's bounds, its centre, and the sum of all coordinates where they fit
// into a point's 16 bits.
struct Extent {
  int32_t low;
  int32_t high;
  int32_t center;
  int64_t sum;
};

void RequireSoundExtent(const Extent& extent, const BlockRec& block) {
  Require(extent.low >= 0 && extent.low <= extent.high, "bounds are in order");
  if (extent.high > UINT16_MAX) return;
  // A sum that passes 2^31 wraps, and with it the centre; a negative quotient is raised by one.
  const int32_t share = static_cast<int32_t>(static_cast<uint32_t>(extent.sum)) / block.area;
  Require(extent.center == (share < 0 ? share + 1 : share),
          "the centre is the wrapped sum's share");
  const bool isRight = int64_t{block.area} * extent.high < (int64_t{1} << 31);
  if (isRight) {
    Require(extent.center >= extent.low && extent.center <= extent.high,
            "the centre of a block within the limits lies in it");
  }
}

void RequireSoundBlock(const BlockRec& block, const LongImage& image) {
  Require(block.area > 0 && block.pointCount == block.area, "every pixel is listed once");
  Require(block.right < image.width && block.bottom < image.height, "a block lies in the image");
  int64_t sumX = 0;
  int64_t sumY = 0;
  for (int32_t i = 0; i < block.pointCount; ++i) {
    const BlockPoint& point = block.points[i];
    // Of larger coordinates a point holds the low 16 bits.
    Require(static_cast<uint16_t>(point.x - block.left) <= block.right - block.left &&
                static_cast<uint16_t>(point.y - block.top) <= block.bottom - block.top,
            "every pixel lies in the box");
    sumX += point.x;
    sumY += point.y;
  }
  RequireSoundExtent({block.left, block.right, block.centerX, sumX}, block);
  RequireSoundExtent({block.top, block.bottom, block.centerY, sumY}, block);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  const uint8_t kind = input.Byte();
  const LongImage image(input);
  BlockSetRec set{};
  int32_t status = STATUS_OK;
  if (kind % 4 == 0) {
    const auto label = kind < 128 ? bw_label_center : bw_label_left;
    status = label(image.pixels.data(), image.height, image.width, &set) == 1 ? STATUS_OK
                                                                              : OUT_OF_MEMORY;
  } else {
    const auto mark = kind < 128 ? BWBlockMarkHorEx : ImageBlockMarkHorEx;
    const BlockMarkParam param{0, 0, static_cast<int16_t>(input.In(0, 3)), input.Byte()};
    const BlockRect rect{0, 0, image.width, image.height};
    status = mark(image.pixels.data(), image.height, image.width, &param, &rect, &set);
  }
  Require(status == STATUS_OK, "an image with room for its blocks is marked");
  for (int32_t i = 0; i < set.count; ++i) RequireSoundBlock(set.blocks[i], image);
  if (set.count >= 2) block_distance(&set.blocks[0], &set.blocks[set.count - 1]);
  DestoryBlockSetRec(&set);
  return 0;
}
