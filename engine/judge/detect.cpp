#include "engine/judge/detect.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/paper_sides.h"
#include "engine/evidence/print_skew.h"
#include "engine/judge/cut.h"
#include "engine/judge/decision.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::judge {
namespace {

using evidence::HalfPlane;
using evidence::InkPicture;
using evidence::kAllSides;
using evidence::kSides;
using evidence::PageLevels;
using evidence::PaperSides;
using evidence::PrintSkew;
using evidence::Side;
using evidence::SideGroup;
using evidence::SideLine;

// The core's coordinates, and the sums over them, hold pictures up to this size.
constexpr int32_t kLargestSide = 32767;
// The page's own outline is no ink: the region of the print ends so far inside its sides.
constexpr double kInkInset = 0.012;
// The cut lies outside the sides by so many pixels, a picture of two levels being the rougher one.
constexpr double kOutwards = 2.0;
constexpr double kOutwardsOfBits = 3.0;
// Above this share of ink outside the cut, fewer than four sides are not sure.
constexpr double kMostInkOutside = 0.10;

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

bool IsTooLarge(const PictureView& picture) {
  return picture.width > kLargestSide || picture.height > kLargestSide ||
         int64_t{picture.width} * picture.height > INT32_MAX;
}

bool FindPrint(const PageLevels& page, const PaperSides& sides, InkPicture* ink, PrintSkew* print) {
  std::array<HalfPlane, kSides> region{};
  size_t planes = 0;
  if (sides.groupCount > 0 && sides.groups[0].count >= 2) {
    const SideGroup& group = sides.groups[0];
    for (const Side side : kAllSides) {
      if (!group.Has(side)) continue;
      HalfPlane plane = evidence::InsideOf(sides.SidesOf(group)[static_cast<size_t>(side)], side,
                                           kInkInset * page.size());
      plane.c /= 1 << page.reduced().shift;
      region[planes++] = plane;
    }
  }
  return evidence::FindInk(page.reduced(), std::span(region).first(planes), ink) &&
         evidence::FindPrintSkew(*ink, print);
}

void AddReason(ReasonReport reason, Finding* finding) {
  if (reason.reason == Reason::kNone || finding->reasonCount == kMostReasons) return;
  finding->reasons[finding->reasonCount++] = reason;
}

void WriteCut(const PictureView& picture, const DetectOptions& options, const Cut& cut,
              Finding* finding) {
  const bool isCut = cut.isBelieved && options.crop != Crop::kNone;
  finding->cutConfidence = cut.isBelieved ? finding->angleConfidence : Confidence::kDoubtful;
  finding->cut =
      isCut ? cut.rect : WholePicture(-finding->turnDegrees, picture.width, picture.height);
  finding->cut.left -= options.marginPixels;
  finding->cut.top -= options.marginPixels;
  finding->cut.right += options.marginPixels;
  finding->cut.bottom += options.marginPixels;
  finding->corners =
      CornersOfCut(finding->cut, finding->turnDegrees, picture.width, picture.height);
  if (!isCut) AddReason({Reason::kKeptWhole, 0.0}, finding);
}

}  // namespace

Status Detect(const PictureView& picture, const DetectOptions& options, Finding* finding) {
  if (finding == nullptr) return Status::kBadArgument;
  *finding = {};
  if (!IsUsable(picture) || !AreUsable(options)) return Status::kBadArgument;
  if (IsTooLarge(picture)) return Status::kTooLarge;

  PageLevels page;
  if (!page.Make(picture)) return Status::kOutOfMemory;
  PaperSides sides;
  if (evidence::FindPaperSides(page, &sides) != STATUS_OK) return Status::kOutOfMemory;
  InkPicture ink;
  PrintSkew print;
  if (!FindPrint(page, sides, &ink, &print)) return Status::kOutOfMemory;

  const Decision decision = Decide({sides, print});
  finding->angleConfidence = decision.confidence;
  AddReason(decision.reason, finding);
  if (decision.confidence == Confidence::kRefused) return Status::kOk;
  finding->turnDegrees = -decision.degrees;
  Cut cut;
  if (!FindCut(page, sides, ink, decision, picture.depth == 1 ? kOutwardsOfBits : kOutwards,
               &cut)) {
    return Status::kOutOfMemory;
  }
  if (decision.confidence == Confidence::kSure && cut.inkOutside > kMostInkOutside &&
      (decision.group == nullptr || decision.group->count < 4)) {
    finding->angleConfidence = Confidence::kLikely;
    AddReason({Reason::kPrintOutsideCut, cut.inkOutside}, finding);
  }
  WriteCut(picture, options, cut, finding);
  return Status::kOk;
}

}  // namespace vorlane::judge
