#include <memory>

#include "labellers.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::bench {
namespace {

BlockTotals Count(const BlockSetRec& set) {
  BlockTotals totals{};
  totals.blocks = set.count;
  for (int32_t i = 0; i < set.count; ++i) {
    const BlockRec& block = set.blocks[i];
    totals.pixels += block.area;
    totals.listed += block.pointCount;
    totals.centerSum += block.centerX + block.centerY;
    totals.perimeters += block.width + block.height;
  }
  return totals;
}

using Mark = decltype(&BWBlockMarkHorEx);

Labeller Marker(const char* name, Mark mark, const uint8_t* pixels, const ByteImage& image) {
  return {name, [mark, pixels, width = image.width, height = image.height](BlockTotals* totals) {
            const BlockMarkParam param{0, 0, 0, 127};
            const BlockRect whole{0, 0, width, height};
            BlockSetRec set{};
            const int32_t status = mark(pixels, height, width, &param, &whole, &set);
            if (totals != nullptr) *totals = Count(set);
            DestoryBlockSetRec(&set);
            return status == STATUS_OK;
          }};
}

}  // namespace

std::vector<Labeller> OurLabellers(const ByteImage& image) {
  // Dark on light, for the marker that looks for dark pixels.
  auto inverse = std::make_shared<std::vector<uint8_t>>(image.pixels);
  for (uint8_t& pixel : *inverse) pixel = static_cast<uint8_t>(255 - pixel);
  Labeller dark =
      Marker("VorlanePic, ImageBlockMarkHorEx", ImageBlockMarkHorEx, inverse->data(), image);
  dark.run = [inverse, run = dark.run](BlockTotals* totals) { return run(totals); };
  return {Marker("VorlanePic, BWBlockMarkHorEx", BWBlockMarkHorEx, image.pixels.data(), image),
          dark};
}

}  // namespace vorlanepic::bench
