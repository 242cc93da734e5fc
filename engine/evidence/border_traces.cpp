#include "engine/evidence/border_traces.h"

#include "analysis/border_scan.h"
#include "frame/settings.h"

namespace vorlane::evidence {
namespace {

// Light pixels in a row that are more than dust.
constexpr int32_t kBorderPixels = 2;

}  // namespace

int32_t TraceBorders(const PageLevels& page, uint8_t threshold, vorlanepic::BorderTraces* traces) {
  vorlanepic::settings.SearchBorderPixelNum = kBorderPixels;
  vorlanepic::settings.BorderMethod = 2;
  vorlanepic::settings.SegmentMaxGap = 1;
  vorlanepic::settings.SegmentPointNum = 1;
  vorlanepic::settings.SegmentMinPointNum = 1;

  const ImageRec* image = &page.image();
  vorlanepic::ScanBand band{};
  vorlanepic::ExtremePoints extremes{};
  const vorlanepic::GreyBand levels{threshold, 255};
  int32_t status = vorlanepic::FindBand(image, &band, static_cast<uint8_t>(threshold - 1));
  if (status != STATUS_OK) return status;
  status = vorlanepic::ScanRows(image, &band, levels, &traces->left, &traces->right, &extremes);
  if (status != STATUS_OK) return status;
  return vorlanepic::ScanColumns(image, &band, levels, &traces->top, &traces->bottom, &extremes);
}

}  // namespace vorlane::evidence
