#include "deskew/line_deskew.h"

#include "deskew/content_bounds.h"
#include "deskew/dib_set.h"
#include "deskew/turn_and_cut.h"
#include "frame/arithmetic.h"
#include "frame/dib_header.h"
#include "omr/mark_sheet_angle.h"

namespace vorlanepic::deskew {
namespace {

// Unlike elsewhere in this library, with the exact pi.
constexpr double kDegreesPerBarRadian = 57.29577951308232;

// The resolution for which the bar's limits stand, and which images have that do not tell theirs.
constexpr int32_t kUsualDotsPerInch = 200;
// The limits where scaling leaves nothing.
constexpr omr::BarLimits kFallbackLimits{300, 4, 20};

int32_t DotsPerInch(const DibRec& image) {
  const int32_t dotsPerThousandInches =
      frame::TruncToInt32(frame::ShapeOfDib(image.infoHeader).pixelsPerMetre * 25.4);
  const int32_t dotsPerInch = dotsPerThousandInches / 1000;
  return dotsPerInch != 0 ? dotsPerInch : kUsualDotsPerInch;
}

int32_t ScaleLimit(int32_t limit, int32_t dotsPerInch, int32_t fallback) {
  const int32_t scaled = frame::WrapMul(dotsPerInch, limit) / kUsualDotsPerInch;
  return scaled > 0 ? scaled : fallback;
}

omr::BarLimits ScaleLimits(const omr::BarLimits& limits, int32_t dotsPerInch) {
  return {ScaleLimit(limits.minLength, dotsPerInch, kFallbackLimits.minLength),
          ScaleLimit(limits.minThickness, dotsPerInch, kFallbackLimits.minThickness),
          ScaleLimit(limits.maxThickness, dotsPerInch, kFallbackLimits.maxThickness)};
}

int32_t FindFormContent(const frame::Settings& settings, const ImageRec& form, uint8_t threshold,
                        PageRecords* page) {
  const ContentSearch search{static_cast<uint32_t>(settings.SearchLimitNum),
                             static_cast<uint32_t>(settings.PixelNum), threshold,
                             kSearchRowsAndColumns, settings.CropPixelFlag == 1};
  const int32_t status = FindContentBounds(form, search, &page->content);
  if (status == STATUS_OK) page->stage = PageStage::kContent;
  return status;
}

}  // namespace

int32_t RunLineDeskew(const frame::Settings& settings, const DibRec* inImages, int32_t imageNum,
                      const omr::BarLimits& limits, const LineDeskewOptions& options,
                      double* angleOut, DibRec* outImages, PageRecords* page,
                      omr::BarRecords* bar) {
  DibSet set;
  int32_t status = set.Wrap(inImages, imageNum);
  if (status != STATUS_OK) return status;

  double radians = 0.0;
  status = omr::MeasureBarOfDib(inImages, options.threshold,
                                ScaleLimits(limits, DotsPerInch(*inImages)), bar, &radians);
  if (status != STATUS_OK) return status;
  page->threshold = options.threshold;
  const auto greyThreshold = static_cast<uint8_t>(options.threshold & 0xFF);
  status = FindFormContent(settings, set.sources()[0], greyThreshold, page);
  if (status != STATUS_OK) return status;

  if (angleOut == nullptr) return BAD_ARGUMENT;
  page->degrees = radians * kDegreesPerBarRadian;
  *angleOut = page->degrees;
  if (settings.AngleOnlyFlag == 1) return STATUS_OK;

  const TurnAndCut how{page->content, page->degrees, options.interpolation, options.fill,
                       greyThreshold};
  int32_t release = STATUS_OK;  // not of interest here
  status = TurnAndCutSet(settings, set.sources(), how, set.results(), page, &release);
  if (status != STATUS_OK) return status;
  return set.CopyResults(outImages);
}

}  // namespace vorlanepic::deskew
