#include <algorithm>
#include <cmath>

#include <leptonica/allheaders.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "file_straighteners.h"
#include "straighteners.h"

namespace vorlanepic::bench {

using testing::TestImage;

namespace {

constexpr int32_t kReduction = 4;
constexpr int32_t kJoinedReduction = 8;
constexpr int32_t kLightFrom = 128;
constexpr float kRadiansPerDegree = 0.017453292F;

struct PixRelease {
  void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<PIX, PixRelease>;

struct BoxRelease {
  void operator()(BOX* box) const { boxDestroy(&box); }
};
using BoxPtr = std::unique_ptr<BOX, BoxRelease>;

// The scan as Leptonica keeps it: 32-bit words, the first pixel in the highest bits; 24 bits as 32.
PixPtr ToPix(const TestImage& scan) {
  const ImageRec& image = *scan.rec();
  const int32_t depth = image.bitsPerPixel == 24 ? 32 : image.bitsPerPixel;
  PixPtr pix(pixCreate(image.width, image.height, depth));
  for (int32_t y = 0; y < image.height; ++y) {
    l_uint32* line = pixGetData(pix.get()) + static_cast<ptrdiff_t>(y) * pixGetWpl(pix.get());
    for (int32_t x = 0; x < image.width; ++x) {
      const uint8_t* row = image.rows[y];
      if (depth == 1) {
        if (scan.Get(x, y) != 0) SET_DATA_BIT(line, x);
      } else if (depth == 8) {
        SET_DATA_BYTE(line, x, row[x]);
      } else {
        composeRGBPixel(row[3 * x + 2], row[3 * x + 1], row[3 * x], line + x);
      }
    }
  }
  return pix;
}

std::shared_ptr<TestImage> CopyOf(PIX* pix) {
  const int32_t depth = pixGetDepth(pix) == 32 ? 24 : pixGetDepth(pix);
  auto copy = std::make_shared<TestImage>(pixGetWidth(pix), pixGetHeight(pix), depth);
  for (int32_t y = 0; y < pixGetHeight(pix); ++y) {
    for (int32_t x = 0; x < pixGetWidth(pix); ++x) {
      l_uint32 value = 0;
      pixGetPixel(pix, x, y, &value);
      const l_uint32 grey = depth == 1 ? value * 255 : depth == 8 ? value : value >> 24;
      copy->Set(x, y, static_cast<uint8_t>(grey));
    }
  }
  return copy;
}

// What is light, reduced: set pixels are page.
PixPtr LightMask(PIX* scan, int32_t reduction) {
  switch (pixGetDepth(scan)) {
    case 1:
      return PixPtr(pixReduceRankBinaryCascade(scan, 3, 2, reduction == 8 ? 3 : 0, 0));
    case 8: {
      PixPtr dark(pixScaleGrayToBinaryFast(scan, reduction, kLightFrom));
      return PixPtr(pixInvert(dark.get(), dark.get()) != nullptr ? dark.release() : nullptr);
    }
    default: {
      PixPtr dark(pixScaleRGBToBinaryFast(scan, reduction, kLightFrom));
      return PixPtr(pixInvert(dark.get(), dark.get()) != nullptr ? dark.release() : nullptr);
    }
  }
}

// The part of `scan` that the set pixels of a reduced mask span.
PixPtr CutToMask(PIX* scan, PIX* mask, int32_t reduction) {
  BOX* found = nullptr;
  if (pixClipToForeground(mask, nullptr, &found) != 0) return nullptr;
  const BoxPtr small(found);
  const BoxPtr box(boxCreate(small->x * reduction, small->y * reduction, small->w * reduction,
                             small->h * reduction));
  return PixPtr(pixClipRectangle(scan, box.get(), nullptr));
}

using Rotate = PIX* (*)(PIX* scan, float radians);

PIX* RotateByAreas(PIX* scan, float radians) {
  return pixRotate(scan, radians, L_ROTATE_AREA_MAP, L_BRING_IN_BLACK, 0, 0);
}
PIX* RotateColourFast(PIX* scan, float radians) { return pixRotateAMColorFast(scan, radians, 0); }
// What comes in is 0, which 1-bit images call white and deeper ones black.
int32_t IncomingZero(PIX* scan) {
  return pixGetDepth(scan) == 1 ? L_BRING_IN_WHITE : L_BRING_IN_BLACK;
}
PIX* RotateBySampling(PIX* scan, float radians) {
  return pixRotateBySampling(scan, pixGetWidth(scan) / 2, pixGetHeight(scan) / 2, radians,
                             IncomingZero(scan));
}
PIX* RotateByShear(PIX* scan, float radians) {
  return pixRotateShear(scan, pixGetWidth(scan) / 2, pixGetHeight(scan) / 2, radians,
                        IncomingZero(scan));
}

// Leptonica's own way: the skew that makes the rows of a reduced mask differ most, a rotation of
// what the mask spans, and a cut to what the rotated mask spans.
bool StraightenPix(PIX* scan, Rotate rotate, StraightPage* check) {
  const PixPtr mask = LightMask(scan, kReduction);
  float degrees = 0;  // clockwise, to make the page upright
  float confidence = 0;
  if (pixFindSkewSweepAndSearch(mask.get(), &degrees, &confidence, 2, 1, 7, 1, 0.01F) != 0) {
    return false;
  }
  const PixPtr part = CutToMask(scan, mask.get(), kReduction);
  if (part == nullptr) return false;
  const PixPtr turned(rotate(part.get(), degrees * kRadiansPerDegree));
  const PixPtr turnedMask = LightMask(turned.get(), kReduction);
  const PixPtr upright = CutToMask(turned.get(), turnedMask.get(), kReduction);
  if (upright == nullptr) return false;
  if (check != nullptr) *check = {-degrees, CopyOf(upright.get())};
  return true;
}

// The rectangle around the set pixels of a small mask, sides within 45 degrees of upright.
cv::RotatedRect RectangleAround(PIX* mask) {
  cv::Mat bytes(pixGetHeight(mask), pixGetWidth(mask), CV_8UC1);
  for (int32_t y = 0; y < bytes.rows; ++y) {
    const l_uint32* line = pixGetData(mask) + static_cast<ptrdiff_t>(y) * pixGetWpl(mask);
    for (int32_t x = 0; x < bytes.cols; ++x) bytes.ptr(y)[x] = GET_DATA_BIT(line, x) ? 255 : 0;
  }
  std::vector<std::vector<cv::Point>> outlines;
  cv::findContours(bytes, outlines, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
  const auto page = std::max_element(
      outlines.begin(), outlines.end(),
      [](const auto& a, const auto& b) { return cv::contourArea(a) < cv::contourArea(b); });
  cv::RotatedRect box = cv::minAreaRect(*page);
  if (box.angle > 45) {
    box.angle -= 90;
    std::swap(box.size.width, box.size.height);
  }
  return box;
}

// The fastest way that two libraries give together: the outline of a reduced mask, then shears of
// what it spans, about its centre.
bool StraightenJoined(PIX* scan, StraightPage* check) {
  const PixPtr mask = LightMask(scan, kJoinedReduction);
  const cv::RotatedRect box = RectangleAround(mask.get());
  const PixPtr part = CutToMask(scan, mask.get(), kJoinedReduction);
  const PixPtr turned(RotateByShear(part.get(), -box.angle * kRadiansPerDegree));
  const auto length = [](float reduced) { return cvRound((reduced + 1) * kJoinedReduction); };
  const int32_t width = length(box.size.width);
  const int32_t height = length(box.size.height);
  const BoxPtr cut(boxCreate((pixGetWidth(turned.get()) - width) / 2,
                             (pixGetHeight(turned.get()) - height) / 2, width, height));
  const PixPtr upright(pixClipRectangle(turned.get(), cut.get(), nullptr));
  if (upright == nullptr) return false;
  if (check != nullptr) *check = {box.angle, CopyOf(upright.get())};
  return true;
}

struct NamedRotation {
  const char* name;
  Rotate rotate;
};

std::vector<NamedRotation> RotationsFor(int32_t bitsPerPixel, int32_t interpolation) {
  if (bitsPerPixel == 1 || interpolation == INTERP_NEAREST) {
    return {{"Leptonica, sampling", RotateBySampling}, {"Leptonica, shear", RotateByShear}};
  }
  if (interpolation == INTERP_BICUBIC) return {};
  if (bitsPerPixel == 8) return {{"Leptonica, area map", RotateByAreas}};
  return {{"Leptonica, area map", RotateByAreas}, {"Leptonica, fast colour", RotateColourFast}};
}

}  // namespace

bool StraightenFileByLeptonica(const std::string& from, const std::string& to) {
  const PixPtr scan(pixRead(from.c_str()));
  if (scan == nullptr) return false;
  const PixPtr mask = LightMask(scan.get(), kReduction);
  float degrees = 0;
  float confidence = 0;
  if (pixFindSkewSweepAndSearch(mask.get(), &degrees, &confidence, 2, 1, 7, 1, 0.01F) != 0) {
    return false;
  }
  const Rotate rotate = pixGetDepth(scan.get()) == 1 ? RotateBySampling : RotateByAreas;
  const PixPtr part = CutToMask(scan.get(), mask.get(), kReduction);
  const PixPtr upright(part == nullptr ? nullptr : rotate(part.get(), degrees * kRadiansPerDegree));
  if (upright == nullptr) return false;
  if (to.ends_with(".jpg")) return pixWriteJpeg(to.c_str(), upright.get(), 90, 0) == 0;
  if (to.ends_with(".png")) return pixWritePng(to.c_str(), upright.get(), 0) == 0;
  const int32_t format = pixGetDepth(upright.get()) == 1 ? IFF_TIFF_G4 : IFF_TIFF_LZW;
  return pixWriteTiff(to.c_str(), upright.get(), format, "w") == 0;
}

std::vector<Straightener> LeptonicaStraighteners(const TestImage& scan, int32_t interpolation) {
  const std::shared_ptr<PIX> pix = ToPix(scan);
  std::vector<Straightener> straighteners;
  for (const auto& [name, rotate] : RotationsFor(scan.rec()->bitsPerPixel, interpolation)) {
    straighteners.push_back({name, [pix, rotate = rotate](StraightPage* check) {
                               return StraightenPix(pix.get(), rotate, check);
                             }});
  }
  if (scan.rec()->bitsPerPixel == 1) {
    straighteners.push_back({"Leptonica, shear, joined by hand", [pix](StraightPage* check) {
                               return StraightenJoined(pix.get(), check);
                             }});
  }
  return straighteners;
}

std::vector<Straightener> LeptonicaRotations(const TestImage& scan, int32_t interpolation) {
  const std::shared_ptr<PIX> whole = ToPix(scan);
  const PixPtr mask = LightMask(whole.get(), kJoinedReduction);
  const std::shared_ptr<PIX> pix = CutToMask(whole.get(), mask.get(), kJoinedReduction);
  const float degrees = -RectangleAround(mask.get()).angle;
  std::vector<Straightener> rotations;
  for (const auto& [name, rotate] : RotationsFor(scan.rec()->bitsPerPixel, interpolation)) {
    rotations.push_back({name, [pix, degrees, rotate = rotate](StraightPage* check) {
                           const PixPtr turned(rotate(pix.get(), degrees * kRadiansPerDegree));
                           if (turned == nullptr) return false;
                           if (check != nullptr) *check = {-degrees, CopyOf(turned.get())};
                           return true;
                         }});
  }
  return rotations;
}

}  // namespace vorlanepic::bench
