#include "engine/evidence/border_traces.h"

#include <array>
#include <cmath>

#include "analysis/border_scan.h"
#include "deskew/skew_vote.h"
#include "frame/settings.h"

namespace vorlane::evidence {
namespace {

// Light pixels in a row that are more than dust.
constexpr int32_t kBorderPixels = 2;

vorlanepic::frame::Settings ScanSettings() {
  vorlanepic::frame::Settings settings{};
  settings.SearchBorderPixelNum = kBorderPixels;
  settings.BorderMethod = 2;
  settings.SegmentMaxGap = 1;
  settings.SegmentPointNum = 1;
  settings.SegmentMinPointNum = 1;
  settings.SegmentLen = 10;
  settings.ToLineDistance = 8;
  settings.GroupAngle = 2.0;
  return settings;
}

// The walk from the bottom looks at every second row: where the row below the one it stopped at is
// light too, the border lies there.
void MoveDownByOne(const PageLevels& page, uint8_t threshold,
                   vorlanepic::analysis::SideTrace* bottom) {
  const auto count = static_cast<size_t>(bottom->pointCount);
  for (auto& point : bottom->points.span().first(count)) {
    const int32_t below = point.y + 1;
    if (below < page.height() && page.Row(below)[point.x] >= threshold) point.y = below;
  }
}

}  // namespace

int32_t TraceBorders(const PageLevels& page, uint8_t threshold,
                     vorlanepic::analysis::BorderTraces* traces) {
  const vorlanepic::frame::Settings settings = ScanSettings();
  const ImageRec& image = page.image();
  vorlanepic::frame::PixelRect band{};
  vorlanepic::analysis::ExtremePoints extremes{};
  const vorlanepic::analysis::GreyBand levels{threshold, 255};
  int32_t status =
      vorlanepic::analysis::FindBand(settings, image, static_cast<uint8_t>(threshold - 1), &band);
  if (status != STATUS_OK) return status;
  status = vorlanepic::analysis::ScanRows(settings, image, band, levels, &traces->left,
                                          &traces->right, &extremes);
  if (status != STATUS_OK) return status;
  status = vorlanepic::analysis::ScanColumns(settings, image, band, levels, &traces->top,
                                             &traces->bottom, &extremes);
  if (status == STATUS_OK) MoveDownByOne(page, threshold, &traces->bottom);
  return status;
}

int32_t LetBordersVote(const vorlanepic::analysis::BorderTraces& traces, double* degrees) {
  std::array<vorlanepic::deskew::BorderVote, 4> votes;
  int32_t best = 0;
  double angle = 0.0;
  const int32_t status =
      vorlanepic::deskew::EstimateSkewFromBorders(ScanSettings(), traces, votes, &best, &angle);
  // A border down the page tells the same as one across it.
  if (status == STATUS_OK) *degrees = angle - 90.0 * std::round(angle / 90.0);
  return status;
}

}  // namespace vorlane::evidence
