#include <algorithm>
#include <stdexcept>

#include "found_page.h"
#include "frame/scratch.h"
#include "frame/trigonometry.h"
#include "rotate/rotate_image.h"
#include "straighteners.h"

namespace vorlanepic::bench {

using testing::TestImage;

namespace {

std::shared_ptr<TestImage> CopyOf(const ImageRec& image) {
  auto copy = std::make_shared<TestImage>(image.width, image.height, image.bitsPerPixel);
  for (int32_t y = 0; y < image.height; ++y) {
    std::copy_n(image.rows[y], copy->rec()->lineBytes, copy->row(y));
  }
  return copy;
}

// The angle by which we turn is the one by which the page lies turned the other way.
double ClockwiseDegrees(double turnRadians) {
  const double turned = turnRadians * frame::kDegreesPerRadian;
  return turned > 180 ? 360 - turned : -turned;
}

}  // namespace

Straightener Ours(const TestImage& scan, int32_t interpolation) {
  const ImageRec* source = scan.rec();
  return {"VorlanePic", [source, interpolation](StraightPage* check) {
            double angle = 0;
            frame::ScratchImage upright;
            const int32_t status =
                ImageVorlaneEx(source, interpolation, 0, 0, &angle, upright.rec());
            if (status != STATUS_OK) return false;
            if (check != nullptr) *check = {ClockwiseDegrees(angle), CopyOf(*upright.rec())};
            return true;
          }};
}

Straightener OurRotation(const TestImage& scan, int32_t interpolation) {
  const ImageRec* source = scan.rec();
  auto records = std::make_shared<deskew::PageRecords>(FindPage(*source));
  if (records->stage != deskew::PageStage::kCorners) {
    throw std::runtime_error("no page found on the drawn scan");
  }

  return {"VorlanePic", [source, interpolation, records](StraightPage* check) {
            const analysis::DocumentGeometry& geometry = records->geometry;
            const rotate::Turn turn{geometry.angle,    geometry.center.x,  geometry.center.y,
                                    geometry.outWidth, geometry.outHeight, interpolation};
            constexpr uint8_t kBlack[3] = {0, 0, 0};
            frame::ScratchImage turned;
            const int32_t status =
                rotate::RotateImage(source, turned.rec(), &geometry.spans, turn, kBlack);
            if (status != STATUS_OK) return false;
            if (check != nullptr) *check = {ClockwiseDegrees(turn.angle), CopyOf(*turned.rec())};
            return true;
          }};
}

}  // namespace vorlanepic::bench
