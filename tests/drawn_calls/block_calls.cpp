#include <algorithm>
#include <span>

#include "drawn_calls/catalogue.h"

namespace vorlanepic::testing {
namespace {

// One byte a pixel, as the marking functions take it.
struct Bytes {
  GuardedBytes pixels;
  int32_t height;
  int32_t width;
};

Bytes GreyBytes(const TestImage& image) {
  const ImageRec& rec = *image.rec();
  Bytes grey{GuardedBytes(static_cast<size_t>(rec.width) * static_cast<size_t>(rec.height)),
             rec.height, rec.width};
  size_t at = 0;
  for (int32_t y = 0; y < rec.height; ++y) {
    for (int32_t x = 0; x < rec.width; ++x) grey.pixels[at++] = image.Get(x, y);
  }
  return grey;
}

// The dark pixels, with their levels.
Bytes DarkBytes(const TestImage& image) {
  Bytes dark = GreyBytes(image);
  for (uint8_t& level : dark.pixels) level = level > 120 ? 0 : level;
  return dark;
}

using Mark = std::function<int32_t(const Bytes& bytes, BlockSetRec* set)>;

// `done` is what the function returns when all blocks are there.
void AddMarking(const SharedPage& page, const std::string& name, const Bytes& bytes, int32_t done,
                int32_t exhausted, const Mark& mark, Catalogue* calls) {
  calls->Add(page, name, {exhausted}, [=](const Around& around) {
    BlockSetRec set{};
    int32_t status = 0;
    around([&] { status = mark(bytes, &set); });
    CallResult result{status, status == done, {}};
    Checksum roots;
    for (const BlockRec& block : std::span(set.blocks, static_cast<size_t>(set.count))) {
      result.made.push_back(BlockText(block));
      roots.Add(block.root);
    }
    if (result.isDone) result.made.push_back("places " + roots.text());
    DestoryBlockSetRec(&set);
    return result;
  });
}

// The three that ask for nothing, on blocks of a set.
void AddMeasures(const SharedPage& page, Catalogue* calls) {
  calls->Add(page, "block_distance, overlap_len, DestoryBlockSetRec", {},
             [=](const Around& around) {
               BlockSetRec set{};
               const Bytes dark = DarkBytes(page->image);
               bw_label_left(dark.pixels.data(), dark.height, dark.width, &set);
               CallResult result{0, true, {}};
               double distance = 0;
               int32_t shared = 0;
               around([&] {
                 for (int32_t i = 1; i < set.count; ++i) {
                   const BlockRec* pair = set.blocks + i - 1;
                   distance += block_distance(pair, pair + 1);
                   shared += overlap_len(pair[0].left, pair[0].right, pair[1].left, pair[1].right);
                 }
                 result.status = DestoryBlockSetRec(&set);
               });
               result.made = {AngleText(distance), std::to_string(shared)};
               return result;
             });
}

}  // namespace

void AddBlocks(const SharedPage& page, Catalogue* calls) {
  static constexpr BlockMarkParam kParam{2, 400, 3, 120};
  const Bytes grey = GreyBytes(page->image);
  const Bytes dark = DarkBytes(page->image);
  const auto add = [&](const std::string& name, const Bytes& bytes, auto mark) {
    AddMarking(
        page, name, bytes, 0, OUT_OF_MEMORY,
        [=](const Bytes& image, BlockSetRec* set) {
          const BlockRect rect{10, 10, image.width - 30, image.height - 20};
          return mark(image.pixels.data(), image.height, image.width, &kParam, &rect, set);
        },
        calls);
  };
  add("ImageBlockMarkHorEx", grey, ImageBlockMarkHorEx);
  add("BWBlockMarkHorEx", dark, BWBlockMarkHorEx);
  const auto addLabel = [&](const std::string& name, auto label) {
    AddMarking(
        page, name, dark, 1, 0,
        [=](const Bytes& image, BlockSetRec* set) {
          return label(image.pixels.data(), image.height, image.width, set);
        },
        calls);
  };
  addLabel("bw_label_center", bw_label_center);
  addLabel("bw_label_left", bw_label_left);
  const auto addArea = [&](const std::string& name, auto label) {
    addLabel(name, [=](const uint8_t* pixels, int32_t height, int32_t width, BlockSetRec* set) {
      const LabelArea area{height / 5, height * 4 / 5, width / 4, width * 3 / 4};
      return label(pixels, height, width, &area, set);
    });
  };
  addArea("bw_label_center_area", bw_label_center_area);
  addArea("bw_label_left_area", bw_label_left_area);
  AddMeasures(page, calls);
}

void AddNoiseAtTop(Catalogue* calls) {
  constexpr int32_t kWidth = 900;
  constexpr int32_t kHeight = 3600;
  constexpr int32_t kNoisyRows = 400;
  TestImage picture(kWidth, kHeight, 8);
  picture.Fill(255);
  const TestImage noise = DrawNoise(kWidth, kNoisyRows, 8, 7);
  for (int32_t y = 0; y < kNoisyRows; ++y) std::copy_n(noise.row(y), kWidth, picture.row(y));
  const auto page = std::make_shared<Page>("noise at the top,", picture);
  AddMarking(
      page, "ImageBlockMarkHorEx", GreyBytes(page->image), 0, OUT_OF_MEMORY,
      [](const Bytes& image, BlockSetRec* set) {
        constexpr BlockMarkParam kParam{0, 0, 0, 30};
        const BlockRect rect{0, 0, image.width, image.height};
        return ImageBlockMarkHorEx(image.pixels.data(), image.height, image.width, &kParam, &rect,
                                   set);
      },
      calls);
  calls->SparesLargest();
}

}  // namespace vorlanepic::testing
