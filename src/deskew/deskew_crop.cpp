#include "deskew/deskew_crop.h"

#include "analysis/line_relations.h"
#include "analysis/threshold.h"
#include "deskew/border_tracing.h"
#include "deskew/content_bounds.h"
#include "deskew/skew_vote.h"
#include "deskew/turn_and_cut.h"

namespace vorlanepic::deskew {
namespace {

int32_t ChooseThreshold(const ImageRec& image, int32_t given, PageRecords* page) {
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

int32_t VoteForTurn(const frame::Settings& settings, PageRecords* page) {
  double borderAngle = 0.0;
  const int32_t status =
      EstimateSkewFromBorders(settings, page->traces, page->votes, &page->bestBorder, &borderAngle);
  if (status != STATUS_OK) return status;
  page->degrees = analysis::TurnOfEdge(borderAngle);
  page->stage = PageStage::kVote;
  return STATUS_OK;
}

int32_t FindSourceContent(const frame::Settings& settings, const ImageRec& image,
                          PageRecords* page) {
  page->content.top = page->band.top;
  page->content.bottom = page->band.bottom;
  const ContentSearch search{static_cast<uint32_t>(settings.SearchLimitNum),
                             static_cast<uint32_t>(settings.PixelNum), page->levels.low,
                             kSearchColumns};
  const int32_t status = FindContentBounds(image, search, &page->content);
  if (status == STATUS_OK) page->stage = PageStage::kContent;
  return status;
}

}  // namespace

int32_t DeskewCropPipeline(const frame::Settings& settings, const ImageRec* images, size_t count,
                           const DeskewCropOptions& options, double* angleOut, ImageRec* outImages,
                           PageRecords* page) {
  if (images == nullptr) return BAD_ARGUMENT;
  int32_t status = ChooseThreshold(*images, options.threshold, page);
  if (status != STATUS_OK) return status;
  status = TraceBorders(settings, *images, page);
  if (status != STATUS_OK) return status;

  if (outImages == nullptr || angleOut == nullptr) return BAD_ARGUMENT;
  status = VoteForTurn(settings, page);
  if (status != STATUS_OK) return status;
  status = FindSourceContent(settings, *images, page);
  if (status != STATUS_OK) return status;

  *angleOut = page->degrees;
  if (settings.AngleOnlyFlag == 1) return STATUS_OK;

  const TurnAndCut how{page->content, page->degrees, options.interpolation, options.fill,
                       page->levels.low};
  int32_t release = STATUS_OK;
  status = TurnAndCutSet(settings, {images, count}, how, {outImages, count}, page, &release);
  return status != STATUS_OK ? status : release;
}

}  // namespace vorlanepic::deskew
