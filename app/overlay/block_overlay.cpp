#include "app/overlay/block_overlay.h"

#include <algorithm>
#include <array>
#include <string>

#include "app/overlay/overlay_canvas.h"

namespace vorlane::overlay {
namespace {

// Neighbours in the list get different colours, so that boxes that overlap can be told apart.
constexpr std::array<Colour, 5> kColours = {
    {{240, 50, 50}, {40, 130, 255}, {20, 190, 70}, {255, 0, 200}, {255, 140, 0}}};

// More numbers than this hide the page; the largest blocks get them.
constexpr size_t kMostNumbers = 80;

int64_t SmallestNumbered(std::span<const services::Block> blocks) {
  if (blocks.size() <= kMostNumbers) return 0;
  std::vector<int64_t> areas;
  for (const services::Block& block : blocks) areas.push_back(block.area);
  std::nth_element(areas.begin(), areas.begin() + kMostNumbers, areas.end(), std::greater<>());
  return areas[kMostNumbers] + 1;
}

}  // namespace

files::PixPtr DrawBlocks(const files::Page& page, std::span<const services::Block> blocks) {
  OverlayCanvas canvas(*page.image.rec());
  const int64_t smallest = SmallestNumbered(blocks);
  for (size_t i = 0; i < blocks.size(); ++i) {
    const services::Block& b = blocks[i];
    canvas.Box(b.left - 1, b.top - 1, b.right + 1, b.bottom + 1, 0.6,
               kColours[i % kColours.size()]);
  }
  for (size_t i = 0; i < blocks.size(); ++i) {
    const services::Block& b = blocks[i];
    if (b.area < smallest) continue;
    canvas.Label({b.left - 1.0, b.top - 2.0}, std::to_string(i), kColours[i % kColours.size()]);
  }
  std::vector<CaptionLine> caption = {{std::to_string(blocks.size()) + " blocks"}};
  if (smallest > 0) {
    caption.push_back({"numbers stand at the " + std::to_string(kMostNumbers) +
                       " largest; --csv or --json lists all"});
  }
  return canvas.WithCaption(caption);
}

}  // namespace vorlane::overlay
