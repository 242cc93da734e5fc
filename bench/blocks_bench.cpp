// Block marking and labelling on a dense printed page and on noise, beside the plain marker that
// the tests compare results with.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "omr/plain_blocks.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

// A letter-size page at 300 dots per inch.
constexpr int32_t kWidth = 2550;
constexpr int32_t kHeight = 3300;

struct GreyPage {
  int32_t width;
  int32_t height;
  std::vector<uint8_t> pixels;

  GreyPage(int32_t w, int32_t h, uint8_t paper)
      : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), paper) {}
  uint8_t& At(int32_t x, int32_t y) {
    return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
};

// A glyph: four strokes, three pixels thick, through corners of its 18 x 24 cell.
void DrawGlyph(GreyPage* page, int32_t left, int32_t top, std::mt19937* random) {
  std::uniform_int_distribution<int32_t> inX(0, 14);
  std::uniform_int_distribution<int32_t> inY(0, 20);
  std::uniform_int_distribution<int32_t> ink(10, 90);
  int32_t x = inX(*random);
  int32_t y = inY(*random);
  for (int stroke = 0; stroke < 4; ++stroke) {
    const int32_t toX = inX(*random);
    const int32_t toY = inY(*random);
    for (int32_t step = 0; step <= 24; ++step) {
      const int32_t px = left + x + (toX - x) * step / 24;
      const int32_t py = top + y + (toY - y) * step / 24;
      for (int32_t k = 0; k < 9; ++k) {
        page->At(px + k % 3, py + k / 3) = static_cast<uint8_t>(ink(*random));
      }
    }
    x = toX;
    y = toY;
  }
}

// Some 10,000 glyphs in lines.
GreyPage TextPage(int32_t width, int32_t height) {
  GreyPage page(width, height, 235);
  std::mt19937 random(1);
  for (int32_t y = 100; y + 130 < height; y += 32) {
    for (int32_t x = 120; x + 140 < width; x += 22) DrawGlyph(&page, x, y, &random);
  }
  return page;
}

// A tenth of the pixels set at random.
GreyPage NoisePage(int32_t width, int32_t height) {
  GreyPage page(width, height, 255);
  std::mt19937 random(2);
  for (uint8_t& pixel : page.pixels) pixel = random() % 10 == 0 ? 0 : 255;
  return page;
}

constexpr BlockMarkParam kParam{0, 0, 0, 128};

using DrawPage = GreyPage (*)(int32_t width, int32_t height);

void MarkDark(benchmark::State& state, DrawPage draw, int32_t scale) {
  const GreyPage page = draw(kWidth * scale, kHeight);
  const BlockRect all{0, 0, page.width, page.height};
  int32_t blocks = 0;
  for ([[maybe_unused]] auto iteration : state) {
    BlockSetRec set{};
    if (ImageBlockMarkHorEx(page.pixels.data(), page.height, page.width, &kParam, &all, &set) !=
        0) {
      state.SkipWithError("marking failed");
    }
    blocks = set.count;
    DestoryBlockSetRec(&set);
  }
  state.counters["blocks"] = blocks;
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(page.pixels.size()));
}

void MarkDarkPlainly(benchmark::State& state, DrawPage draw) {
  const GreyPage page = draw(kWidth, kHeight);
  const BlockRect all{0, 0, page.width, page.height};
  for ([[maybe_unused]] auto iteration : state) {
    PlainSet set;
    MarkPlainly(page.pixels.data(), page.height, page.width, kParam, all, IsDark, &set);
    benchmark::DoNotOptimize(set.blocks.data());
  }
}

void LabelByCentre(benchmark::State& state, DrawPage draw) {
  GreyPage page = draw(kWidth, kHeight);
  for (uint8_t& pixel : page.pixels) pixel = pixel <= kParam.threshold ? 255 : 0;
  for ([[maybe_unused]] auto iteration : state) {
    BlockSetRec set{};
    if (bw_label_center(page.pixels.data(), page.height, page.width, &set) != 1) {
      state.SkipWithError("labelling failed");
    }
    DestoryBlockSetRec(&set);
  }
}

BENCHMARK_CAPTURE(MarkDark, TextPage, TextPage, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MarkDark, TextPageTwiceAsWide, TextPage, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MarkDark, Noise, NoisePage, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MarkDark, NoiseTwiceAsWide, NoisePage, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MarkDarkPlainly, TextPage, TextPage)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LabelByCentre, TextPage, TextPage)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LabelByCentre, Noise, NoisePage)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vorlanepic::testing
