// Draws the sample page of scripts/demo: a printed sheet, crooked on a dark scanner background.
//   vorlane-sample-page FILE
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "host/page_writer.h"
#include "host/pix_owner.h"
#include "support/page_drawing.h"

namespace {

using vorlanepic::host::PixPtr;
using vorlanepic::testing::DrawnPage;
using vorlanepic::testing::DrawPage;
using vorlanepic::testing::EdgeShape;
using vorlanepic::testing::TestImage;

// The sheet in pixels at 200 dots per inch: about 7 by 10 inches.
constexpr int32_t kWidth = 1400;
constexpr int32_t kHeight = 1960;
constexpr int32_t kMargin = 150;
constexpr int32_t kDpi = 200;
constexpr double kDegrees = 3.4;

constexpr const char* kTitle = "On straight pages";
constexpr const char* kText[] = {
    "A sheet that goes through a scanner seldom lies straight. One corner enters first, the "
    "rollers "
    "pull a little harder on one side than on the other, and what comes out leans by a degree or "
    "two. Nobody minds on paper. On a screen every line of print climbs or sinks, a form's boxes "
    "no "
    "longer stand where a reading program looks for them, and the dark background of the scanner "
    "shows as wedges along all four sides.",
    "The cure begins with that very background. Because it is dark and the paper is light, walking "
    "in from each side one soon meets the sheet's edge. Do so on every second row and every second "
    "column, and four dotted lines appear. Some dots are wrong: a torn corner, a crease, a speck "
    "of "
    "dust. But most of them lie on a straight line, and a straight line is easily told from a "
    "crooked one when there are hundreds of dots to ask.",
    "Four lines make four corners; the corners give the middle of the sheet, its size and its "
    "lean. "
    "What is left is to turn the page about its middle, pixel by pixel, until it stands upright, "
    "and to let the background go.",
    "This page was drawn by a program, not scanned. It leans by a little over three degrees, its "
    "edges are slightly torn and its paper is not quite even. When you look at the result, the "
    "rules above and below should be level."};

struct FontRelease {
  void operator()(L_Bmf* font) const { bmfDestroy(&font); }
};

// The sheet's print, black on white, upright.
class Sheet {
 public:
  Sheet()
      : pix_(pixCreate(kWidth, kHeight, 1)),
        font_(bmfCreate(nullptr, 8)),
        titleFont_(bmfCreate(nullptr, 20)) {
    if (!pix_ || !font_ || !titleFont_) throw std::bad_alloc();
    DrawHead();
    DrawPicture(420);
    int32_t top = 850;
    for (const char* text : kText) top = DrawParagraph(text, top);
    Rule(kHeight - 170, 3);
    DrawLine(font_.get(), "1", kWidth / 2 - 8, kHeight - 150);
  }

  bool IsInk(double x, double y) const {
    const auto column = static_cast<int32_t>(std::lround(x));
    const auto row = static_cast<int32_t>(std::lround(y));
    uint32_t bit = 0;
    return pixGetPixel(pix_.get(), column, row, &bit) == 0 && bit != 0;
  }

 private:
  void Rule(int32_t y, int32_t thickness) {
    pixRasterop(pix_.get(), kMargin, y, kWidth - 2 * kMargin, thickness, PIX_SET, nullptr, 0, 0);
  }

  void DrawLine(L_Bmf* font, const char* text, int32_t left, int32_t top, int32_t scale = 1) {
    int32_t width = 0;
    bmfGetStringWidth(font, text, &width);
    const PixPtr line(pixCreate(width + 8, font->lineheight + 4, 1));
    if (!line) throw std::bad_alloc();
    pixSetTextline(line.get(), font, text, 1, 2, font->baseline1 + 2, nullptr, nullptr);
    const PixPtr large(pixExpandReplicate(line.get(), scale));
    pixRasterop(pix_.get(), left, top, pixGetWidth(large.get()), pixGetHeight(large.get()),
                PIX_PAINT, large.get(), 0, 0);
  }

  void DrawHead() {
    Rule(150, 6);
    int32_t width = 0;
    bmfGetStringWidth(titleFont_.get(), kTitle, &width);
    DrawLine(titleFont_.get(), kTitle, (kWidth - 2 * width) / 2, 190, 2);
    Rule(370, 2);
  }

  // Hills under a sun, in strokes.
  void DrawPicture(int32_t top) {
    const int32_t right = kWidth - kMargin;
    for (int32_t y = 0; y < 360; ++y) {
      for (int32_t x = kMargin; x < right; ++x) {
        const double u = (x - kMargin) / 100.0;
        const double far = 190 - 60 * std::sin(u * 0.7) - 18 * std::sin(u * 2.3 + 1);
        const double near = 280 - 40 * std::sin(u * 0.5 + 2) - 12 * std::sin(u * 1.7);
        const double sun = std::hypot(x - right + 250, y - 95);
        const bool frame = x < kMargin + 3 || x >= right - 3 || y < 3 || y >= 357;
        const bool rays = sun > 70 && y < far && std::fmod(sun, 22) < 2;
        const bool hill = y > near ? (x + 2 * y) % 7 < 4 : y > far && (x - y + 2000) % 9 < 3;
        const bool outline = std::abs(y - far) < 2.5 || std::abs(y - near) < 3.5;
        if (frame || rays || hill || outline || std::abs(sun - 56) < 2) {
          pixSetPixel(pix_.get(), x, top + y, 1);
        }
      }
    }
  }

  // Returns the row where the next paragraph begins.
  int32_t DrawParagraph(const char* text, int32_t top) {
    int32_t height = 0;
    Sarray* lines = bmfGetLineStrings(font_.get(), text, kWidth - 2 * kMargin - 40, 0, &height);
    for (int32_t i = 0; i < sarrayGetCount(lines); ++i) {
      DrawLine(font_.get(), sarrayGetString(lines, i, L_NOCOPY), kMargin, top);
      top += font_->lineheight + 10;
    }
    sarrayDestroy(&lines);
    return top + 22;
  }

  PixPtr pix_;
  std::unique_ptr<L_Bmf, FontRelease> font_;
  std::unique_ptr<L_Bmf, FontRelease> titleFont_;
};

TestImage DrawSample() {
  DrawnPage page;
  page.imageWidth = 1700;
  page.imageHeight = 2240;
  page.pageWidth = kWidth;
  page.pageHeight = kHeight;
  page.centerX = 840;
  page.centerY = 1125;
  page.degrees = kDegrees;
  page.background = 24;
  page.paper = 236;
  page.noise = 6;
  page.edges = EdgeShape::kTorn;
  page.edgeDepth = 3;
  TestImage image = DrawPage(page);

  const Sheet sheet;
  const double radians = kDegrees * 0.017453292519943295;
  for (int32_t y = 0; y < page.imageHeight; ++y) {
    for (int32_t x = 0; x < page.imageWidth; ++x) {
      // Ink over a grid of 3 x 3 places in the pixel, so that print has soft edges.
      int32_t ink = 0;
      for (int32_t i = 0; i < 9; ++i) {
        const int32_t placeX = i % 3 - 1;
        const int32_t placeY = i / 3 - 1;
        const double dx = x - page.centerX + placeX / 3.0;
        const double dy = y - page.centerY + placeY / 3.0;
        const double u = dx * std::cos(radians) + dy * std::sin(radians) + kWidth / 2.0;
        const double v = dy * std::cos(radians) - dx * std::sin(radians) + kHeight / 2.0;
        if (u > 20 && v > 20 && u < kWidth - 20 && v < kHeight - 20 && sheet.IsInk(u, v)) ++ink;
      }
      if (ink == 0) continue;
      const int32_t paper = image.Get(x, y);
      image.Set(x, y, static_cast<uint8_t>(paper - (paper - 38) * ink / 9));
    }
  }
  return image;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    (void)std::fprintf(stderr, "usage: vorlane-sample-page FILE\n");
    return 2;
  }
  try {
    const TestImage image = DrawSample();
    vorlanepic::host::PageWriter writer(argv[1], 92);
    writer.Add(*image.rec(), kDpi, kDpi);
    writer.Commit();
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "vorlane-sample-page: %s\n", error.what());
    return 1;
  }
  return 0;
}
