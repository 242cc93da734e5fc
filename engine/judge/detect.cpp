#include "engine/judge/detect.h"

#include <cmath>
#include <cstdlib>

namespace vorlane::judge {
namespace {

// The core's coordinates, and the sums over them, hold pictures up to this size.
constexpr int32_t kLargestSide = 32767;

bool IsUsable(const PictureView& picture) {
  if (picture.pixels == nullptr || picture.width < 1 || picture.height < 1) return false;
  if (picture.depth != 1 && picture.depth != 8 && picture.depth != 24 && picture.depth != 32) {
    return false;
  }
  const int64_t rowBytes = (int64_t{picture.width} * picture.depth + 7) / 8;
  return std::abs(static_cast<int64_t>(picture.strideBytes)) >= rowBytes || picture.height == 1;
}

bool AreUsable(const DetectOptions& options) {
  return options.maxAngleDegrees >= 0.0 && options.maxAngleDegrees <= 45.0 &&
         options.minTurnDegrees >= 0.0 && options.minTurnDegrees <= 45.0 &&
         std::isfinite(options.marginPixels);
}

}  // namespace

Status Detect(const PictureView& picture, const DetectOptions& options, Finding* finding) {
  if (finding == nullptr) return Status::kBadArgument;
  *finding = {};
  if (!IsUsable(picture) || !AreUsable(options)) return Status::kBadArgument;
  if (picture.width > kLargestSide || picture.height > kLargestSide) return Status::kTooLarge;

  finding->reasons[0] = {Reason::kNothingSeen, 0.0};
  finding->reasonCount = 1;
  return Status::kOk;
}

}  // namespace vorlane::judge
