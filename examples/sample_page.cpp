// Draws the sample page of scripts/demo: a printed sheet, crooked on a dark scanner background.
//   vorlane-sample-page FILE.png
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <random>

#include <leptonica/allheaders.h>

namespace {

struct PixRelease {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<Pix, PixRelease>;

// The sheet in pixels at 200 dots per inch: about 7 by 10 inches.
constexpr int32_t kWidth = 1400;
constexpr int32_t kHeight = 1960;
constexpr int32_t kMargin = 150;
constexpr int32_t kDpi = 200;

// The scan around it: a dark ground on which the sheet lies crooked, a little off the middle.
constexpr int32_t kScanWidth = 1700;
constexpr int32_t kScanHeight = 2240;
constexpr double kCenterX = 840;
constexpr double kCenterY = 1125;
constexpr double kDegrees = 3.4;
constexpr int32_t kGround = 24;
constexpr int32_t kPaper = 236;
constexpr int32_t kInk = 38;
constexpr int32_t kNoise = 6;     // levels up to which ground and paper vary, up and down
constexpr double kTornDepth = 3;  // pixels that the edges are torn in

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

// A place on the sheet, from its upper left corner.
struct SheetPlace {
  double u;
  double v;
};

SheetPlace OnSheet(double x, double y) {
  static const double kCosine = std::cos(kDegrees * 0.017453292519943295);
  static const double kSine = std::sin(kDegrees * 0.017453292519943295);
  const double dx = x - kCenterX;
  const double dy = y - kCenterY;
  return {dx * kCosine + dy * kSine + kWidth / 2.0, dy * kCosine - dx * kSine + kHeight / 2.0};
}

// Edges that are torn in by another depth at every pixel along them.
class TornEdges {
 public:
  explicit TornEdges(std::mt19937* random) {
    std::uniform_real_distribution<double> depth(0, kTornDepth);
    for (auto& side : teeth_) {
      for (double& tooth : side) tooth = depth(*random);
    }
  }

  bool IsPaper(SheetPlace p) const {
    return p.u >= Depth(0, p.v) && p.u <= kWidth - Depth(1, p.v) && p.v >= Depth(2, p.u) &&
           p.v <= kHeight - Depth(3, p.u);
  }

 private:
  double Depth(size_t side, double along) const {
    return teeth_[side][static_cast<size_t>(std::max(along, 0.0)) % teeth_[side].size()];
  }

  std::array<std::array<double, 2048>, 4> teeth_{};
};

// Places out of nine in the pixel that carry ink, so that print has soft edges.
int32_t CountInk(const Sheet& sheet, int32_t x, int32_t y) {
  int32_t ink = 0;
  for (int32_t i = 0; i < 9; ++i) {
    const SheetPlace p = OnSheet(x + (i % 3 - 1) / 3.0, y + (i / 3 - 1) / 3.0);
    if (p.u > 20 && p.v > 20 && p.u < kWidth - 20 && p.v < kHeight - 20 && sheet.IsInk(p.u, p.v)) {
      ++ink;
    }
  }
  return ink;
}

PixPtr DrawScan() {
  PixPtr scan(pixCreate(kScanWidth, kScanHeight, 8));
  if (!scan) throw std::bad_alloc();
  pixSetResolution(scan.get(), kDpi, kDpi);
  const Sheet sheet;
  std::mt19937 random(1);
  const TornEdges edges(&random);
  std::uniform_int_distribution<int32_t> noise(-kNoise, kNoise);
  for (int32_t y = 0; y < kScanHeight; ++y) {
    for (int32_t x = 0; x < kScanWidth; ++x) {
      const bool isPaper = edges.IsPaper(OnSheet(x, y));
      int32_t level = (isPaper ? kPaper : kGround) + noise(random);
      if (isPaper) level -= (level - kInk) * CountInk(sheet, x, y) / 9;
      pixSetPixel(scan.get(), x, y, static_cast<uint32_t>(level));
    }
  }
  return scan;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    (void)std::fprintf(stderr, "usage: vorlane-sample-page FILE.png\n");
    return 2;
  }
  try {
    if (pixWritePng(argv[1], DrawScan().get(), 0) == 0) return 0;
    (void)std::fprintf(stderr, "vorlane-sample-page: %s cannot be written\n", argv[1]);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "vorlane-sample-page: %s\n", error.what());
  }
  return 1;
}
