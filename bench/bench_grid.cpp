#include "bench_grid.h"

#include <cstdio>
#include <memory>

namespace vorlanepic::bench {

using testing::TestImage;

namespace {

const char* NameOfInterpolation(int32_t interpolation) {
  switch (interpolation) {
    case INTERP_BICUBIC:
      return "bicubic";
    case INTERP_BILINEAR:
      return "bilinear";
    default:
      return "nearest";
  }
}

// The drawing asked for last: grey as drawn, and at the depth asked for.
class LastDrawing {
 public:
  explicit LastDrawing(TestImage (*draw)(const Frame&)) : draw_(draw) {}

  const TestImage& Get(const Frame& frame) {
    if (frame.megapixels != drawn_.megapixels || frame.degrees != drawn_.degrees) {
      image_.reset();
      grey_.reset();
      grey_ = std::make_unique<TestImage>(draw_(frame));
    }
    if (image_ == nullptr || frame.bitsPerPixel != drawn_.bitsPerPixel) {
      image_.reset();
      image_ = std::make_unique<TestImage>(AtDepth(*grey_, frame.bitsPerPixel));
    }
    drawn_ = frame;
    return *image_;
  }

 private:
  TestImage (*draw_)(const Frame&);
  Frame drawn_{};
  std::unique_ptr<TestImage> grey_;
  std::unique_ptr<TestImage> image_;
};

}  // namespace

std::string NameOf(const Frame& frame) {
  char name[48];
  std::snprintf(name, sizeof name, "%dbit/%gMP/%gdeg", frame.bitsPerPixel, frame.megapixels,
                frame.degrees);
  return name;
}

std::string NameOf(const Frame& frame, int32_t interpolation) {
  return std::string(NameOfInterpolation(interpolation)) + "/" + NameOf(frame);
}

void ForEachFrame(const std::function<void(const Frame&)>& add) {
  for (const double megapixels : kMegapixels) {
    for (const double degrees : kDegrees) {
      for (const int32_t bitsPerPixel : {1, 8, 24}) add({megapixels, degrees, bitsPerPixel});
    }
  }
}

void ForEachKind(const std::function<void(const Frame&, int32_t interpolation)>& add) {
  ForEachFrame([&](const Frame& frame) {
    add(frame, INTERP_NEAREST);
    if (frame.bitsPerPixel == 1) return;
    add(frame, INTERP_BILINEAR);
    add(frame, INTERP_BICUBIC);
  });
}

const TestImage& ScanOf(const Frame& frame) {
  static LastDrawing scans([](const Frame& wanted) {
    return DrawPage(ScannedPage(wanted.megapixels, wanted.degrees, 8));
  });
  return scans.Get(frame);
}

const TestImage& FormOf(const Frame& frame) {
  static LastDrawing forms([](const Frame& wanted) {
    return DrawBarSheet(ScannedForm(wanted.megapixels, wanted.degrees, 8));
  });
  return forms.Get(frame);
}

int32_t FormDotsPerInch(const Frame& frame) {
  // Bars of 600 pixels and more are looked for at 200 dots per inch; this one is a tenth longer.
  const double barLength = ScannedForm(frame.megapixels, frame.degrees, 8).barLength;
  return static_cast<int32_t>(barLength / 1.1 / 3);
}

}  // namespace vorlanepic::bench
