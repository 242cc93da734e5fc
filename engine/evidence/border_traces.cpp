#include "engine/evidence/border_traces.h"

#include "analysis/border_scan.h"
#include "frame/settings.h"

namespace vorlane::evidence {
namespace {

// Light pixels in a row that are more than dust.
constexpr int32_t kBorderPixels = 2;

}  // namespace

int32_t TraceBorders(const PageLevels& page, uint8_t threshold,
                     vorlanepic::analysis::BorderTraces* traces) {
  vorlanepic::frame::Settings settings{};
  settings.SearchBorderPixelNum = kBorderPixels;
  settings.BorderMethod = 2;
  settings.SegmentMaxGap = 1;
  settings.SegmentPointNum = 1;
  settings.SegmentMinPointNum = 1;

  const ImageRec& image = page.image();
  vorlanepic::frame::PixelRect band{};
  vorlanepic::analysis::ExtremePoints extremes{};
  const vorlanepic::analysis::GreyBand levels{threshold, 255};
  int32_t status = vorlanepic::analysis::FindBand(settings, image,
                                                  static_cast<uint8_t>(threshold - 1), &band);
  if (status != STATUS_OK) return status;
  status = vorlanepic::analysis::ScanRows(settings, image, band, levels, &traces->left,
                                          &traces->right, &extremes);
  if (status != STATUS_OK) return status;
  return vorlanepic::analysis::ScanColumns(settings, image, band, levels, &traces->top,
                                           &traces->bottom, &extremes);
}

}  // namespace vorlane::evidence
