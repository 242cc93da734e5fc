// Block marking, labelling and the set's own functions on any image with any parameters.
#include <algorithm>
#include <vector>

#include "fuzz_input.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

struct Image {
  int32_t width;
  int32_t height;
  std::vector<uint8_t> pixels;
};

// Runs of equal pixels, lengths and values from the input; 0 where it ends.
Image ReadImage(FuzzInput& input) {
  Image image{input.In(1, 70), input.In(1, 50), {}};
  const auto area = static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
  const int32_t longest = input.In(1, 30);
  while (image.pixels.size() < area && !input.Rest().empty()) {
    const size_t length = size_t{1} + input.Byte() % static_cast<size_t>(longest);
    image.pixels.insert(image.pixels.end(), std::min(length, area - image.pixels.size()),
                        static_cast<uint8_t>(input.Flag() ? input.Byte() : 0));
  }
  image.pixels.resize(area);
  return image;
}

int16_t RunLength(FuzzInput& input) {
  return static_cast<int16_t>(input.Byte() < 200 ? input.In(0, 12) : input.Int32());
}

void RequireSoundBlock(const BlockRec& block) {
  Require(block.state == BLOCK_FINISHED, "a block handed back is finished");
  Require(block.area > 0 && block.pointCount == block.area, "every pixel is listed once");
  Require(block.childCount == 0 && block.children == nullptr, "no child list is handed back");
  Require(
      block.width == block.right - block.left + 1 && block.height == block.bottom - block.top + 1,
      "width and height are those of the box");
  Require(block.minValue <= block.maxValue, "values lie between the smallest and the largest");
  int64_t sumX = 0;
  int64_t sumY = 0;
  for (int32_t i = 0; i < block.pointCount; ++i) {
    const BlockPoint& point = block.points[i];
    Require(point.x >= block.left && point.x <= block.right && point.y >= block.top &&
                point.y <= block.bottom,
            "every pixel lies in the box");
    sumX += point.x;
    sumY += point.y;
  }
  Require(sumX / block.area == block.centerX && sumY / block.area == block.centerY,
          "the centre is the pixels' mean");
}

void RequireSoundSet(const BlockSetRec& set) {
  for (int32_t i = 0; i < set.count; ++i) {
    RequireSoundBlock(set.blocks[i]);
    Require(set.blocks[i].root == i, "a block handed back is its own root");
  }
}

void Mark(const Image& image, FuzzInput& input) {
  BlockSetRec set{};
  for (int32_t call = 0; call < 2; ++call) {
    const BlockMarkParam param{RunLength(input), RunLength(input), RunLength(input), input.Byte()};
    const BlockRect rect{input.MostlyIn(-10, 80), input.MostlyIn(-10, 60), input.MostlyIn(-80, 80),
                         input.MostlyIn(-60, 60)};
    const auto mark = input.Flag() ? ImageBlockMarkHorEx : BWBlockMarkHorEx;
    const int32_t before = set.count;
    const int32_t status =
        mark(image.pixels.data(), image.height, image.width, &param, &rect, &set);
    Require(status == STATUS_OK || (status == BAD_ARGUMENT && set.count == before),
            "a call marks blocks or refuses");
    RequireSoundSet(set);
  }
  if (set.count >= 2) block_distance(&set.blocks[0], &set.blocks[set.count - 1]);
  DestoryBlockSetRec(&set);
  Require(set.blocks == nullptr && set.count == 0, "a released set is empty");
}

void Label(const Image& image, FuzzInput& input) {
  const bool byCenter = input.Flag();
  BlockSetRec set{};
  const LabelArea area{input.MostlyIn(-5, 60), input.MostlyIn(-5, 60), input.MostlyIn(-5, 80),
                       input.MostlyIn(-5, 80)};
  int32_t isDone = 0;
  if (input.Flag()) {
    const auto label = byCenter ? bw_label_center : bw_label_left;
    isDone = label(image.pixels.data(), image.height, image.width, &set);
  } else {
    const auto label = byCenter ? bw_label_center_area : bw_label_left_area;
    isDone = label(image.pixels.data(), image.height, image.width, &area, &set);
  }
  for (int32_t i = 0; isDone == 1 && i < set.count; ++i) {
    RequireSoundBlock(set.blocks[i]);
    if (i == 0) continue;
    const BlockRec& before = set.blocks[i - 1];
    const BlockRec& block = set.blocks[i];
    Require(byCenter ? before.centerX <= block.centerX : before.left <= block.left,
            "blocks come in ascending order");
  }
  DestoryBlockSetRec(&set);
}

void Measure(FuzzInput& input) {
  const int32_t ends[4] = {input.Int32(), input.Int32(), input.Int32(), input.Int32()};
  overlap_len(ends[0], ends[1], ends[2], ends[3]);
  BlockRec a{};
  BlockRec b{};
  for (BlockRec* block : {&a, &b}) {
    block->left = input.Int32();
    block->right = input.Int32();
    block->top = input.Int32();
    block->bottom = input.Int32();
  }
  block_distance(&a, input.Flag() ? &b : nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  FuzzInput arguments = input;
  for (int skipped = 0; skipped < 120; ++skipped) input.Byte();
  const Image image = ReadImage(input);
  Mark(image, arguments);
  Label(image, arguments);
  Measure(arguments);
  return 0;
}
