// ImageDeskewCropWithLine.
#include "deskew/content_bounds.h"
#include "deskew/deskew_settings.h"
#include "deskew/dib_set.h"
#include "deskew/page_records.h"
#include "deskew/turn_and_cut.h"
#include "frame/arithmetic.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {
namespace {

// Unlike elsewhere in this library, with the exact pi.
constexpr double kDegreesPerBarRadian = 57.29577951308232;

// The resolution for which the bar's limits stand, and which images have that do not tell theirs.
constexpr int32_t kUsualDotsPerInch = 200;
// The limits where scaling leaves nothing.
constexpr BarLimits kFallbackLimits{300, 4, 20};

int32_t DotsPerInch(const DibRec& image) {
  const int32_t dotsPerThousandInches = frame::TruncToInt32(DibPixelsPerMetre(image) * 25.4);
  const int32_t dotsPerInch = dotsPerThousandInches / 1000;
  return dotsPerInch != 0 ? dotsPerInch : kUsualDotsPerInch;
}

int32_t ScaleLimit(int32_t limit, int32_t dotsPerInch, int32_t fallback) {
  const int32_t scaled = frame::WrapMul(dotsPerInch, limit) / kUsualDotsPerInch;
  return scaled > 0 ? scaled : fallback;
}

BarLimits ScaleLimits(const BarLimits& limits, int32_t dotsPerInch) {
  return {ScaleLimit(limits.minLength, dotsPerInch, kFallbackLimits.minLength),
          ScaleLimit(limits.minThickness, dotsPerInch, kFallbackLimits.minThickness),
          ScaleLimit(limits.maxThickness, dotsPerInch, kFallbackLimits.maxThickness)};
}

int32_t FindFormContent(const ImageRec& form, uint8_t threshold, PageRecords* page) {
  const ContentSearch search{static_cast<uint32_t>(frame::settings.SearchLimitNum),
                             static_cast<uint32_t>(frame::settings.PixelNum), threshold,
                             kSearchRowsAndColumns};
  const int32_t status = FindContentBounds(&form, search, &page->content);
  if (status == STATUS_OK) page->stage = PageStage::kContent;
  return status;
}

}  // namespace
}  // namespace vorlanepic::deskew

using namespace vorlanepic;
using namespace vorlanepic::deskew;

int32_t VORLANEPIC_STDCALL ImageDeskewCropWithLine(const DibRec* inImages, int32_t interpolation,
                                                   int32_t threshold, int32_t /*background*/,
                                                   int32_t /*cornerOption*/, const uint8_t* fill,
                                                   double* angleOut, DibRec* outImages,
                                                   DeskewCropParam param, int32_t /*spare1*/,
                                                   int32_t /*spare2*/, int32_t /*spare3*/,
                                                   int32_t /*spare4*/, int32_t imageNum) noexcept {
  PageRecords own;
  PageRecords& page = frame::settings.pageRecords != nullptr ? *frame::settings.pageRecords : own;
  page = {};
  int32_t status = ImgbufCheck(inImages);
  if (status != STATUS_OK) return status;
  const BarLimits limits = ScaleLimits(AssignLineGuidedSettings(param), DotsPerInch(*inImages));
  DibSet set;
  status = set.Wrap(inImages, imageNum);
  if (status != STATUS_OK) return status;

  double radians = 0.0;
  status = GetAngleOMR(inImages, threshold, limits.minLength, limits.minThickness,
                       limits.maxThickness, &radians);
  if (status != STATUS_OK) return status;
  page.threshold = threshold;
  const auto greyThreshold = static_cast<uint8_t>(threshold & 0xFF);
  status = FindFormContent(set.sources()[0], greyThreshold, &page);
  if (status != STATUS_OK) return status;

  if (angleOut == nullptr) return BAD_ARGUMENT;
  page.degrees = radians * kDegreesPerBarRadian;
  *angleOut = page.degrees;
  if (frame::settings.AngleOnlyFlag == 1) return STATUS_OK;

  frame::settings.ImageNum = 1;
  const TurnAndCut how{page.content, page.degrees,  interpolation,
                       fill,         greyThreshold, frame::settings.CropPixelFlag};
  int32_t release = STATUS_OK;  // not of interest here
  status = TurnAndCutSet(set.sources(), how, set.results(), &page, &release);
  if (status != STATUS_OK) return status;
  return set.CopyResults(outImages);
}
