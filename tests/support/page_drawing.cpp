#include "support/page_drawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <random>

namespace vorlanepic::testing {

TestImage::TestImage(int32_t width, int32_t height, int32_t bitsPerPixel, int32_t extraLineBytes) {
  const int32_t lineBytes = (width * bitsPerPixel + 31) / 32 * 4 + extraLineBytes;
  pixels_.resize(static_cast<size_t>(lineBytes) * static_cast<size_t>(height));
  rows_.resize(static_cast<size_t>(height));
  for (int32_t y = 0; y < height; ++y) {
    rows_[static_cast<size_t>(y)] = pixels_.data() + static_cast<ptrdiff_t>(y) * lineBytes;
  }
  rec_ = {width, height, bitsPerPixel, lineBytes * height, lineBytes, rows_.data(), pixels_.data()};
}

TestImage::TestImage(const TestImage& other)
    : TestImage(other.rec_.width, other.rec_.height, other.rec_.bitsPerPixel,
                other.rec_.lineBytes - (other.rec_.width * other.rec_.bitsPerPixel + 31) / 32 * 4) {
  std::copy(other.pixels_.begin(), other.pixels_.end(), pixels_.begin());
}

uint8_t TestImage::Get(int32_t x, int32_t y) const {
  const uint8_t* pixels = row(y);
  switch (rec_.bitsPerPixel) {
    case 1:
      return (pixels[x / 8] & (0x80 >> (x % 8))) != 0 ? 255 : 0;
    case 8:
      return pixels[x];
    default:
      return std::max({pixels[3 * x], pixels[3 * x + 1], pixels[3 * x + 2]});
  }
}

void TestImage::Set(int32_t x, int32_t y, uint8_t grey) {
  uint8_t* pixels = row(y);
  const auto bit = static_cast<uint8_t>(0x80 >> (x % 8));
  switch (rec_.bitsPerPixel) {
    case 1:
      pixels[x / 8] = static_cast<uint8_t>(grey > 127 ? pixels[x / 8] | bit : pixels[x / 8] & ~bit);
      break;
    case 8:
      pixels[x] = grey;
      break;
    default:
      std::memset(pixels + 3 * x, grey, 3);
  }
}

void TestImage::Fill(uint8_t grey) {
  FillRectangle(this, 0, 0, rec_.width - 1, rec_.height - 1, grey);
}

void FillRectangle(TestImage* image, int32_t left, int32_t top, int32_t right, int32_t bottom,
                   uint8_t grey) {
  for (int32_t y = top; y <= bottom; ++y) {
    for (int32_t x = left; x <= right; ++x) image->Set(x, y, grey);
  }
}

TestImage DrawNoise(int32_t width, int32_t height, int32_t bitsPerPixel, uint32_t seed) {
  TestImage image(width, height, bitsPerPixel);
  std::mt19937 random(seed);
  std::generate_n(image.rec()->pixels, image.rec()->imageBytes,
                  [&random] { return static_cast<uint8_t>(random()); });
  return image;
}

bool SamePixels(const ImageRec& a, const ImageRec& b) {
  if (a.width != b.width || a.height != b.height || a.bitsPerPixel != b.bitsPerPixel) return false;
  const int32_t bits = a.width * a.bitsPerPixel;
  for (int32_t y = 0; y < a.height; ++y) {
    if (std::memcmp(a.rows[y], b.rows[y], static_cast<size_t>(bits / 8)) != 0) return false;
    const int mask = 0xFF00 >> (bits % 8) & 0xFF;
    if (bits % 8 != 0 && ((a.rows[y][bits / 8] ^ b.rows[y][bits / 8]) & mask) != 0) return false;
  }
  return true;
}

namespace {

// The page's own axes: u to the right and v down as seen on the upright page, from its centre.
struct PagePoint {
  double u;
  double v;
};

class PageFrame {
 public:
  explicit PageFrame(const DrawnPage& page)
      : page_(page),
        cosine_(std::cos(page.degrees * 0.017453292519943295)),
        sine_(std::sin(page.degrees * 0.017453292519943295)) {}

  PagePoint At(int32_t x, int32_t y) const {
    const double dx = x - page_.centerX;
    const double dy = y - page_.centerY;
    return {dx * cosine_ + dy * sine_, dy * cosine_ - dx * sine_};
  }

 private:
  const DrawnPage& page_;
  double cosine_;
  double sine_;
};

// How far the edges cut into the page at a place along them.
class EdgeProfile {
 public:
  explicit EdgeProfile(const DrawnPage& page) : page_(page), teeth_(4096) {
    std::mt19937 random(page.seed);
    std::uniform_real_distribution<double> depth(0, page.edgeDepth);
    for (double& tooth : teeth_) tooth = depth(random);
  }

  double CutAt(double along, double length, int side) const {
    switch (page_.edges) {
      case EdgeShape::kTorn: {
        const int tooth = side * 1024 + (static_cast<int>(along + 4096) & 1023);
        return teeth_[static_cast<size_t>(tooth)];
      }
      case EdgeShape::kCurved:
        return page_.edgeDepth * (0.5 + 0.5 * std::cos(along / length * 6.283185307179586));
      default:
        return 0;
    }
  }

 private:
  const DrawnPage& page_;
  std::vector<double> teeth_;
};

bool IsOnPage(const DrawnPage& page, const EdgeProfile& profile, PagePoint p) {
  const double halfWidth = page.pageWidth / 2;
  const double halfHeight = page.pageHeight / 2;
  return p.u >= -halfWidth + profile.CutAt(p.v, page.pageHeight, 0) &&
         p.u <= halfWidth - profile.CutAt(p.v, page.pageHeight, 1) &&
         p.v >= -halfHeight + profile.CutAt(p.u, page.pageWidth, 2) &&
         p.v <= halfHeight - profile.CutAt(p.u, page.pageWidth, 3);
}

// Print: lines 24 pixels apart, 10 high, broken into words, well inside the page.
bool IsPrint(const DrawnPage& page, PagePoint p) {
  if (std::abs(p.u) > page.pageWidth / 2 - 40) return false;
  if (std::abs(p.v) > page.pageHeight / 2 - 40) return false;
  const double line = std::fmod(p.v + 4800, 24);
  const double word = std::fmod(p.u + 4800 + 7 * std::floor((p.v + 4800) / 24), 52);
  return line < 10 && word < 40 && std::fmod(p.u + 4800, 6) < 3.5;
}

template <typename Ink>
TestImage Draw(const DrawnPage& page, Ink isInk) {
  TestImage image(page.imageWidth, page.imageHeight, page.bitsPerPixel);
  const PageFrame frame(page);
  const EdgeProfile profile(page);
  std::mt19937 random(page.seed + 1);
  std::uniform_int_distribution<int32_t> noise(-page.noise, page.noise);
  for (int32_t y = 0; y < page.imageHeight; ++y) {
    for (int32_t x = 0; x < page.imageWidth; ++x) {
      const PagePoint p = frame.At(x, y);
      int32_t grey = page.background;
      if (IsOnPage(page, profile, p)) grey = isInk(p) ? page.background : page.paper;
      if (page.noise > 0) grey = std::clamp(grey + noise(random), 0, 255);
      image.Set(x, y, static_cast<uint8_t>(grey));
    }
  }
  return image;
}

}  // namespace

TestImage DrawPage(const DrawnPage& page) {
  return Draw(page, [&](PagePoint p) { return page.text && IsPrint(page, p); });
}

TestImage DrawBarSheet(const DrawnBarSheet& sheet) {
  const double halfU = (sheet.tall ? sheet.barThickness : sheet.barLength) / 2;
  const double halfV = (sheet.tall ? sheet.barLength : sheet.barThickness) / 2;
  return Draw(sheet.page, [&](PagePoint p) {
    return std::abs(p.u - sheet.barX) <= halfU && std::abs(p.v - sheet.barY) <= halfV;
  });
}

}  // namespace vorlanepic::testing
