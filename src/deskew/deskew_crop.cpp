#include "deskew/deskew_crop.h"

#include <utility>

#include "analysis/border_scan.h"
#include "analysis/threshold.h"
#include "deskew/content_bounds.h"
#include "deskew/page_records.h"
#include "deskew/skew_vote.h"
#include "deskew/turn_and_cut.h"
#include "frame/settings.h"

namespace vorlanepic::deskew {
namespace {

int32_t ChooseThreshold(const ImageRec* image, int32_t given, PageRecords* page) {
  page->threshold = given;
  if (given == 0) {
    uint8_t estimate = 0;
    const int32_t status = analysis::EstimateThreshold(image, &estimate);
    if (status != STATUS_OK) return status;
    page->threshold = estimate;
  }
  page->levels = {static_cast<uint8_t>(page->threshold & 0xFF), 255};
  page->stage = PageStage::kThreshold;
  return STATUS_OK;
}

int32_t TraceBorders(const ImageRec* image, PageRecords* page) {
  int32_t status = analysis::FindBand(image, &page->band, page->levels.low);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kBand;

  analysis::BorderTraces& traces = page->traces;
  status = analysis::ScanRows(image, &page->band, page->levels, &traces.left, &traces.right,
                              &page->extremes);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kRowScan;

  status = analysis::ScanColumns(image, &page->band, page->levels, &traces.top, &traces.bottom,
                                 &page->extremes);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kColumnScan;
  return STATUS_OK;
}

int32_t VoteForTurn(PageRecords* page) {
  double borderAngle = 0.0;
  const int32_t status =
      EstimateSkewFromBorders(page->traces, frame::settings.SegmentLen, frame::settings.GroupAngle,
                              page->votes, &page->bestBorder, &borderAngle);
  if (status != STATUS_OK) return status;
  page->degrees = TurnOfBorder(borderAngle);
  page->stage = PageStage::kVote;
  return STATUS_OK;
}

int32_t FindSourceContent(const ImageRec* image, PageRecords* page) {
  page->content.top = page->band.top;
  page->content.bottom = page->band.bottom;
  const ContentSearch search{static_cast<uint32_t>(frame::settings.SearchLimitNum),
                             static_cast<uint32_t>(frame::settings.PixelNum), page->levels.low,
                             kSearchColumns};
  const int32_t status = FindContentBounds(image, search, &page->content);
  if (status == STATUS_OK) page->stage = PageStage::kContent;
  return status;
}

}  // namespace

double TurnOfBorder(double borderAngle) {
  if (borderAngle <= -45.0) return 270.0 - borderAngle;
  if (borderAngle <= 0.0) return -borderAngle;
  if (borderAngle <= 45.0) return 360.0 - borderAngle;
  return 90.0 - borderAngle;
}

int32_t DeskewCropPipeline(const ImageRec* images, const DeskewCropOptions& options,
                           double* angleOut, ImageRec* outImages) {
  PageRecords own;
  PageRecords& page = frame::settings.pageRecords != nullptr ? *frame::settings.pageRecords : own;
  page = {};
  int32_t status = ChooseThreshold(images, options.threshold, &page);
  if (status != STATUS_OK) return status;
  status = TraceBorders(images, &page);
  if (status != STATUS_OK) return status;

  if (outImages == nullptr || angleOut == nullptr) return BAD_ARGUMENT;
  status = VoteForTurn(&page);
  if (status != STATUS_OK) return status;
  const int32_t cropPixelFlag = std::exchange(frame::settings.CropPixelFlag, 0);
  status = FindSourceContent(images, &page);
  if (status != STATUS_OK) return status;

  *angleOut = page.degrees;
  if (frame::settings.AngleOnlyFlag == 1) return STATUS_OK;

  const auto count = static_cast<size_t>(std::exchange(frame::settings.ImageNum, 1));
  const TurnAndCut how{page.content, page.degrees,    options.interpolation,
                       options.fill, page.levels.low, cropPixelFlag};
  int32_t release = STATUS_OK;
  status = TurnAndCutSet({images, count}, how, {outImages, count}, &page, &release);
  return status != STATUS_OK ? status : release;
}

}  // namespace vorlanepic::deskew
