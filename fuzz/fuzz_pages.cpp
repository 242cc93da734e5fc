#include "fuzz_pages.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vorlanepic::fuzz {

using testing::TestImage;

namespace {

constexpr int32_t kDepths[] = {1, 8, 24};

// A rectangle in the page's own axes: u to the right and v down as seen on the upright page, from
// its centre, in pixels.
struct Sheet {
  double left;
  double top;
  double right;
  double bottom;
};

struct FuzzPage {
  explicit FuzzPage(FuzzInput& input)
      : bitsPerPixel(kDepths[input.In(0, 2)]),
        imageWidth(input.In(1, kWidestPage)),
        imageHeight(input.In(1, kWidestPage)),
        halfWidth(input.In(0, 2 * imageWidth) / 2.0),
        halfHeight(input.In(0, 2 * imageHeight) / 2.0),
        centerX(input.In(0, imageWidth)),
        centerY(input.In(0, imageHeight)),
        radians(input.In(-900, 900) * 0.0017453292519943295),
        background(input.Byte()),
        paper(input.Byte()),
        noise(input.Flag() ? input.Byte() : uint8_t{0}),
        depth(input.Flag() ? input.In(0, 40) : 0),
        isCurved(input.Flag()),
        hasText(input.Flag()) {}

  int32_t bitsPerPixel;
  int32_t imageWidth;
  int32_t imageHeight;
  double halfWidth;
  double halfHeight;
  int32_t centerX;
  int32_t centerY;
  double radians;  // clockwise as seen
  uint8_t background;
  uint8_t paper;
  uint8_t noise;  // the most that a level is raised by
  int32_t depth;  // pixels that torn or curved sides may lack
  bool isCurved;
  bool hasText;
};

// Marsaglia's xorshift: the same numbers in every build.
class Chance {
 public:
  uint32_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    return state_ ^= state_ << 5;
  }

 private:
  uint32_t state_ = 2463534242U;
};

class Painter {
 public:
  explicit Painter(const FuzzPage& page)
      : page_(page),
        image_(page.imageWidth, page.imageHeight, page.bitsPerPixel),
        cosine_(std::cos(page.radians)),
        sine_(std::sin(page.radians)) {
    std::fill_n(image_.rec()->pixels, image_.rec()->imageBytes, Level(page.background));
  }

  void Paper() {
    const Sheet whole{-page_.halfWidth, -page_.halfHeight, page_.halfWidth, page_.halfHeight};
    for (int32_t y = 0; y < page_.imageHeight; ++y) {
      const auto [from, to] = Columns(whole, y);
      Put(y, from + Lack(y), to - Lack(y + 1), page_.paper);
    }
  }

  // Words of 5 columns, 3 apart, on every second group of 4 rows.
  void Text() {
    constexpr double kMargin = 12;
    const Sheet inner{kMargin - page_.halfWidth, kMargin - page_.halfHeight,
                      page_.halfWidth - kMargin, page_.halfHeight - kMargin};
    for (int32_t y = 0; y < page_.imageHeight; ++y) {
      const auto [from, to] = Columns(inner, y);
      for (int32_t x = from; (y & 4) != 0 && x < to; x += 8) {
        Put(y, x, std::min(x + 5, to), page_.background);
      }
    }
  }

  void Bar(const Sheet& bar) {
    for (int32_t y = 0; y < page_.imageHeight; ++y) {
      const auto [from, to] = Columns(bar, y);
      Put(y, from, to, page_.background);
    }
  }

  void Noise() {
    const ImageRec& rec = *image_.rec();
    uint32_t chance = 0;
    for (int32_t i = 0; i < rec.imageBytes; ++i, chance >>= 8) {
      if (i % 4 == 0) chance = chance_.Next();
      const uint32_t raised = (chance & 255) * (page_.noise + 1U) >> 8;
      rec.pixels[i] = static_cast<uint8_t>(rec.bitsPerPixel == 1
                                               ? rec.pixels[i] ^ (raised > 200 ? 1U << (i & 7) : 0)
                                               : std::min<uint32_t>(rec.pixels[i] + raised, 255));
    }
  }

  TestImage Take() { return std::move(image_); }

 private:
  struct Range {
    int32_t from;  // first column
    int32_t to;    // behind the last one
  };

  uint8_t Level(uint8_t grey) const {
    return page_.bitsPerPixel == 1 ? static_cast<uint8_t>(grey > 127 ? 255 : 0) : grey;
  }

  // What a side lacks in row `y`, in pixels.
  int32_t Lack(int32_t y) {
    if (page_.depth == 0) return 0;
    if (!page_.isCurved) {
      return static_cast<int32_t>(chance_.Next() % static_cast<uint32_t>(page_.depth + 1));
    }
    const double bow = 2.0 * y / page_.imageHeight - 1;
    return static_cast<int32_t>(page_.depth * (1 - bow * bow));
  }

  // Keeps low <= factor * dx + shift <= high; a factor of 0 keeps all or nothing.
  static void Clip(double factor, double shift, double low, double high, double* from, double* to) {
    if (std::abs(factor) < 1e-9) {
      if (shift < low || shift > high) *to = *from - 1;
      return;
    }
    const double a = (low - shift) / factor;
    const double b = (high - shift) / factor;
    *from = std::max(*from, std::min(a, b));
    *to = std::min(*to, std::max(a, b));
  }

  Range Columns(const Sheet& sheet, int32_t y) const {
    const double dy = y - page_.centerY;
    double from = -page_.centerX;
    double to = page_.imageWidth - 1 - page_.centerX;
    Clip(cosine_, dy * sine_, sheet.left, sheet.right, &from, &to);
    Clip(-sine_, dy * cosine_, sheet.top, sheet.bottom, &from, &to);
    if (from > to) return {0, 0};
    return {page_.centerX + static_cast<int32_t>(std::ceil(from)),
            page_.centerX + static_cast<int32_t>(std::floor(to)) + 1};
  }

  void Put(int32_t y, int32_t from, int32_t to, uint8_t grey) {
    from = std::max(from, 0);
    to = std::min(to, page_.imageWidth);
    if (from >= to) return;
    if (page_.bitsPerPixel == 1) {
      for (; from < to && from % 8 != 0; ++from) image_.Set(from, y, grey);
      for (; from < to && to % 8 != 0; --to) image_.Set(to - 1, y, grey);
      std::fill(image_.row(y) + from / 8, image_.row(y) + to / 8, Level(grey));
      return;
    }
    const int32_t bytes = page_.bitsPerPixel / 8;
    std::fill(image_.row(y) + from * bytes, image_.row(y) + to * bytes, grey);
  }

  const FuzzPage& page_;
  TestImage image_;
  double cosine_;
  double sine_;
  Chance chance_;
};

// Lays runs of equal bytes over the pixels.
void Strew(TestImage& image, FuzzInput& input) {
  const ImageRec& rec = *image.rec();
  for (int32_t strokes = input.In(0, 20); strokes > 0; --strokes) {
    const int32_t from = input.In(0, 65535) % rec.imageBytes;
    const int32_t count = std::min(int32_t{input.Byte()}, rec.imageBytes - from);
    std::fill_n(rec.pixels + from, count, input.Byte());
  }
}

void Put(std::vector<uint8_t>& bytes, size_t at, int32_t value, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    bytes[at + i] = static_cast<uint8_t>(static_cast<uint32_t>(value) >> (8 * i));
  }
}

}  // namespace

TestImage DrawFuzzPage(FuzzInput& input) {
  const FuzzPage page(input);
  Painter painter(page);
  painter.Paper();
  if (page.hasText) painter.Text();
  if (page.noise > 0) painter.Noise();
  TestImage image = painter.Take();
  Strew(image, input);
  return image;
}

TestImage DrawFuzzForm(FuzzInput& input) {
  const FuzzPage page(input);
  const double across = input.In(1, kWidestPage) / 2.0;
  const double along = input.In(1, 20) / 2.0;
  const double x = input.In(-40, 40);
  const double y = input.In(-40, 40);
  const bool isTall = input.Flag();
  Painter painter(page);
  painter.Paper();
  painter.Bar(isTall ? Sheet{x - along, y - across, x + along, y + across}
                     : Sheet{x - across, y - along, x + across, y + along});
  if (page.noise > 0) painter.Noise();
  TestImage image = painter.Take();
  Strew(image, input);
  return image;
}

FuzzDib::FuzzDib(const ImageRec& image, FuzzInput& input)
    : fileHeader_{'B', 'M'}, infoHeader_(40), bits_(image.pixels, image.pixels + image.imageBytes) {
  Put(infoHeader_, 0, 40, 4);
  Put(infoHeader_, 4, image.width, 4);
  Put(infoHeader_, 8, image.height, 4);
  Put(infoHeader_, 14, image.bitsPerPixel, 2);
  Put(infoHeader_, 24, input.MostlyIn(0, 10000), 4);
  // No larger image than there are bytes for may pass the checks, so sizes are spoilt to what none
  // can have.
  constexpr int32_t kImpossible[] = {0, -1, INT32_MIN};
  if (input.Byte() < 8) Put(infoHeader_, 4, kImpossible[input.In(0, 2)], 4);
  if (input.Byte() < 8) Put(infoHeader_, 8, kImpossible[input.In(0, 2)], 4);
  if (input.Byte() < 8) {
    Put(infoHeader_, 4, INT32_MAX, 4);
    Put(infoHeader_, 8, INT32_MAX, 4);
  }
  if (input.Byte() < 8) fileHeader_[input.In(0, 1) != 0 ? 1 : 0] = input.Byte();
  if (input.Byte() < 8 && image.bitsPerPixel > 4) Put(infoHeader_, 14, input.Flag() ? 4 : 0, 2);
  rec_ = {fileHeader_.data(), infoHeader_.data(), nullptr, bits_.data()};
  if (input.Byte() < 4) rec_.fileHeader = nullptr;
  if (input.Byte() < 4) rec_.infoHeader = nullptr;
  if (input.Byte() < 4) rec_.bits = nullptr;
}

void RequireSoundImage(const ImageRec& image) {
  Require(Imgbuf_Check(&image) == 0, "an image handed back passes the image library's check");
  const auto isInPlace = [&](int32_t y) {
    return image.rows[y] == image.pixels + static_cast<ptrdiff_t>(y) * image.lineBytes;
  };
  // Of very high images some rows speak for all.
  const int32_t step = 1 + image.height / 1024;
  for (int32_t y = 0; y < image.height; y += step) {
    Require(isInPlace(y), "the row table leads to the rows");
  }
  Require(isInPlace(image.height - 1), "the row table leads to the last row");
}

}  // namespace vorlanepic::fuzz
