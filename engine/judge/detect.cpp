#include "engine/judge/detect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "engine/evidence/form_bars.h"
#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/paper_sides.h"
#include "engine/evidence/print_skew.h"
#include "engine/judge/content.h"
#include "engine/judge/cut.h"
#include "engine/judge/decision.h"
#include "engine/judge/evidence_report.h"
#include "engine/judge/expected_share.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::judge {
namespace {

using evidence::FormBars;
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

// On fewer pixels neither sides nor print can be told.
constexpr int32_t kSmallestSide = 24;
// The page's own outline is no ink: the region of the print ends so far inside its sides.
constexpr double kInkInset = 0.012;
// The cut lies outside the sides by so many pixels, a picture of two levels being the rougher one.
constexpr double kOutwards = 2.0;
constexpr double kOutwardsOfBits = 3.0;
// Above this share of ink outside the cut, fewer than four sides are not sure.
constexpr double kMostInkOutside = 0.10;
// Groups at every threshold that lie so alike, of sides so straight, are a plain sheet's.
constexpr double kPlainDegrees = 0.25;
constexpr double kPlainStraight = 0.5;
// A side of which less lies on one line is curved or torn.
constexpr double kCurvedShare = 0.6;

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
  return picture.width > kLargestSide || picture.height > kLargestSide;
}

// What was looked for on a page.
struct PageEvidence {
  explicit PageEvidence(const PageLevels& levels) : page(levels) {}

  const PageLevels& page;
  PaperSides sides;
  InkPicture ink;
  PrintSkew print;
  FormBars bars;
  bool wasPrintLookedAt = false;
  bool wereBarsLookedAt = false;

  Evidence view() const { return {sides, print, bars}; }
};

// Whether the sides alone settle the matter where nothing lies under the sheet.
bool IsPlainSheet(const PaperSides& sides) {
  if (sides.groupCount == 0) return false;
  const SideGroup& best = sides.groups[0];
  size_t whole = 0;
  for (const SideGroup& group : sides.view()) {
    if (group.isRim || std::abs(group.degrees - best.degrees) > kPlainDegrees) return false;
    whole += group.count == 4 && group.straight >= kPlainStraight;
  }
  return whole == sides.thresholds.count;
}

// Print is looked for inside of this on one side of the page: the best group's line, else a rim's,
// whose own edge would pass for print, else the picture's edge, where streaks and halos lie.
HalfPlane BoundOfPrint(const PageLevels& page, const PaperSides& sides, Side side) {
  const auto groups = sides.view();
  const auto has = [side](const SideGroup& group) { return group.Has(side); };
  const auto rim = std::ranges::find_if(
      groups, [has](const SideGroup& group) { return group.isRim && has(group); });
  SideLine edge;
  if (side == Side::kRight) edge.offset = page.width() - 1.0;
  if (side == Side::kBottom) edge.offset = page.height() - 1.0;
  const auto lineOf = [&sides, side](const SideGroup& group) {
    return sides.SidesOf(group)[static_cast<size_t>(side)];
  };
  const SideLine line = has(groups[0])        ? lineOf(groups[0])
                        : rim != groups.end() ? lineOf(*rim)
                                              : edge;
  HalfPlane plane = evidence::InsideOf(line, side, kInkInset * page.size());
  plane.c /= 1 << page.reduced().shift;
  return plane;
}

bool FindPrint(PageEvidence* seen) {
  std::array<HalfPlane, kSides> region{};
  size_t planes = 0;
  const PageLevels& page = seen->page;
  if (seen->sides.groupCount > 0 && seen->sides.groups[0].count >= 2) {
    for (const Side side : kAllSides) region[planes++] = BoundOfPrint(page, seen->sides, side);
  }
  seen->wasPrintLookedAt = true;
  return evidence::FindInk(page.reduced(), std::span(region).first(planes), &seen->ink) &&
         evidence::FindPrintSkew(seen->ink, &seen->print);
}

// Status::kOutOfMemory or kOk.
Status LookAt(const DetectOptions& options, PageEvidence* seen) {
  if (evidence::FindPaperSides(seen->page, &seen->sides) != STATUS_OK) return Status::kOutOfMemory;
  const bool isSettled = options.hasNoMount && options.by == By::kAuto &&
                         options.crop != Crop::kContent && IsPlainSheet(seen->sides);
  if (!isSettled && !FindPrint(seen)) return Status::kOutOfMemory;
  if ((options.isForm || options.by == By::kBar) && seen->sides.thresholds.count > 0) {
    seen->bars = evidence::FindFormBars(seen->page, seen->sides.thresholds.levels[0]);
    seen->wereBarsLookedAt = true;
  }
  return Status::kOk;
}

void AddReason(ReasonReport reason, Finding* finding) {
  if (reason.reason == Reason::kNone || finding->reasonCount == kMostReasons) return;
  finding->reasons[finding->reasonCount++] = reason;
}

// What speaks against acting on the decision.
void Restrain(const DetectOptions& options, const PageEvidence& seen, Decision* decision,
              Finding* finding) {
  if (decision->confidence == Confidence::kRefused && seen.sides.thresholds.count == 0) {
    AddReason({Reason::kNoContrast, 0.0}, finding);
  }
  AddReason(decision->reason, finding);
  if (options.by != By::kAuto) AddReason({Reason::kAskedFor, 0.0}, finding);
  if (decision->group != nullptr && decision->group->straight < kCurvedShare) {
    AddReason({Reason::kCurvedSides, 0.0}, finding);
  }
  if (std::abs(decision->degrees) > options.maxAngleDegrees) {
    decision->confidence = std::min(decision->confidence, Confidence::kDoubtful);
    AddReason({Reason::kTooSteep, std::abs(decision->degrees)}, finding);
  }
  if (decision->confidence != Confidence::kRefused &&
      std::abs(decision->degrees) < options.minTurnDegrees) {
    AddReason({Reason::kNotTurned, std::abs(decision->degrees)}, finding);
    decision->degrees = 0.0;
  }
}

void AddCutReasons(const Cut& cut, Finding* finding) {
  if (cut.sidesUnseen > 0) {
    AddReason({Reason::kSideUnseen, static_cast<double>(cut.sidesUnseen)}, finding);
  }
  if (cut.sidesOffFrame > 0) {
    AddReason({Reason::kSideRunsOffFrame, static_cast<double>(cut.sidesOffFrame)}, finding);
  }
  if (cut.widened > 0.0) AddReason({Reason::kCutWidened, cut.widened}, finding);
  if (cut.lightOutside > 0.0) AddReason({Reason::kLightOutsideCut, cut.lightOutside}, finding);
}

void WriteCut(const DetectOptions& options, const PageEvidence& seen, const Cut& cut,
              const Decision& decision, Finding* finding) {
  const PageLevels& page = seen.page;
  CutRect rect =
      cut.isBelieved ? cut.rect : WholePicture(decision.degrees, page.width(), page.height());
  bool isCut = cut.isBelieved;
  finding->cutConfidence = Confidence::kDoubtful;
  if (cut.isBelieved) {
    finding->cutConfidence = cut.sidesUnseen > 0 || cut.widened > 0.0
                                 ? std::min(finding->angleConfidence, Confidence::kLikely)
                                 : finding->angleConfidence;
  }
  if (options.crop == Crop::kContent && NarrowToContent(page, seen.ink, decision.degrees, &rect)) {
    finding->cutConfidence = std::min(finding->angleConfidence, Confidence::kLikely);
    isCut = true;
  }
  if (options.crop == Crop::kNone) {
    rect = WholePicture(decision.degrees, page.width(), page.height());
  } else if (isCut) {
    const double margin = options.marginPixels;
    rect = {rect.left - margin, rect.top - margin, rect.right + margin, rect.bottom + margin};
    AddCutReasons(cut, finding);
  } else {
    AddReason({Reason::kKeptWhole, 0.0}, finding);
  }
  finding->cut = rect;
  finding->corners = CornersOfCut(rect, finding->turnDegrees, page.width(), page.height());
}

// Takes back what is less sure than was asked for.
void Refuse(const DetectOptions& options, const PageLevels& page, Finding* finding) {
  if (finding->angleConfidence >= options.minConfidence) return;
  if (finding->angleConfidence != Confidence::kRefused) {
    AddReason({Reason::kBelowConfidence, 0.0}, finding);
  }
  finding->angleConfidence = Confidence::kRefused;
  finding->cutConfidence = Confidence::kRefused;
  finding->turnDegrees = 0.0;
  finding->cut = WholePicture(0.0, page.width(), page.height());
  finding->corners = CornersOfCut(finding->cut, 0.0, page.width(), page.height());
  finding->by = 0;
  finding->expected = 0.0;
}

// Status::kOutOfMemory or kOk.
Status JudgePage(const PictureView& picture, const DetectOptions& options, const PageEvidence& seen,
                 Finding* finding) {
  Decision decision = Decide(seen.view(), options.by);
  Restrain(options, seen, &decision, finding);
  finding->angleConfidence = decision.confidence;
  finding->turnDegrees = 0.0 - decision.degrees;
  ReportEvidence(seen.view(), decision, seen.wasPrintLookedAt, seen.wereBarsLookedAt, finding);
  if (decision.confidence != Confidence::kRefused) {
    const double outwards = picture.depth == 1 ? kOutwardsOfBits : kOutwards;
    Cut cut;
    if (!FindCut(seen.page, seen.sides, seen.ink, decision, outwards, &cut)) {
      return Status::kOutOfMemory;
    }
    if (decision.confidence == Confidence::kSure && cut.inkOutside > kMostInkOutside &&
        (decision.group == nullptr || decision.group->count < 4)) {
      finding->angleConfidence = Confidence::kLikely;
      AddReason({Reason::kPrintOutsideCut, cut.inkOutside}, finding);
    }
    WriteCut(options, seen, cut, decision, finding);
    finding->expected = ExpectedShare(finding->by, finding->angleConfidence);
  }
  Refuse(options, seen.page, finding);
  return Status::kOk;
}

}  // namespace

Status Detect(const PictureView& picture, const DetectOptions& options, PageLevels& levels,
              Finding* finding) {
  if (finding == nullptr) return Status::kBadArgument;
  *finding = {};
  if (!IsUsable(picture) || !AreUsable(options)) return Status::kBadArgument;
  if (IsTooLarge(picture)) return Status::kTooLarge;

  if (std::min(picture.width, picture.height) < kSmallestSide) {
    AddReason({Reason::kTooSmall, 0.0}, finding);
    finding->cut = WholePicture(0.0, picture.width, picture.height);
    finding->corners = CornersOfCut(finding->cut, 0.0, picture.width, picture.height);
    return Status::kOk;
  }
  if (!levels.Make(picture)) return Status::kOutOfMemory;
  PageEvidence seen(levels);
  Status status = LookAt(options, &seen);
  if (status == Status::kOk) status = JudgePage(picture, options, seen, finding);
  if (status != Status::kOk) *finding = {};
  return status;
}

}  // namespace vorlane::judge
