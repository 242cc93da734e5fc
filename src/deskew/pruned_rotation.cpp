#include "deskew/pruned_rotation.h"

#include <algorithm>

#include "analysis/corner_solver.h"
#include "analysis/edge_lines.h"
#include "analysis/threshold.h"
#include "deskew/border_tracing.h"
#include "frame/arithmetic.h"
#include "rotate/rotate_image.h"

namespace vorlanepic::deskew {
namespace {

// Estimates below this would take the noise of a dark background for the page.
constexpr int32_t kLeastEstimate = 80;

// With a background given, the page is what lies this near to the threshold, in grey levels.
constexpr int32_t kLevelTolerance = 9;

int32_t SettleThreshold(const ImageRec& source, int32_t given, int32_t* threshold) {
  *threshold = given;
  if (given != 0) return STATUS_OK;
  uint8_t estimate = 0;
  const int32_t status = analysis::EstimateThreshold(source, &estimate);
  if (status != STATUS_OK) return status;
  *threshold = std::max<int32_t>(estimate, kLeastEstimate);
  return STATUS_OK;
}

analysis::GreyBand DocumentLevels(int32_t threshold, int32_t background) {
  if (background == 0) return {static_cast<uint8_t>(threshold), 255};
  const int32_t low = std::max(frame::WrapSub(threshold, kLevelTolerance), 0);
  const int32_t high = std::min(frame::WrapAdd(threshold, kLevelTolerance), 255);
  return {static_cast<uint8_t>(low), static_cast<uint8_t>(high)};
}

// Runs the stages up to the geometry of the turn.
int32_t FindDocument(const frame::Settings& settings, const ImageRec& source,
                     const PrunedRotationOptions& options, double* angle, PageRecords* page) {
  int32_t status = SettleThreshold(source, options.threshold, &page->threshold);
  if (status != STATUS_OK) return status;
  page->levels = DocumentLevels(page->threshold, options.background);
  page->stage = PageStage::kThreshold;

  status = TraceBorders(settings, source, page);
  if (status != STATUS_OK) return status;
  status = analysis::BuildEdges(settings, source, page->extremes, page->traces, &page->edgeOrigin,
                                &page->edges);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kEdges;

  if (angle == nullptr) return BAD_ARGUMENT;
  page->geometry.angle = *angle;  // stays unless the solver comes that far
  status = analysis::SolveCorners(settings, source, options.cornerOption, page->extremes,
                                  page->edgeOrigin, &page->edges, &page->geometry);
  *angle = page->geometry.angle;
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kCorners;
  return STATUS_OK;
}

void ReleaseImages(std::span<ImageRec> images) {
  for (ImageRec& image : images) {
    if (image.pixels != nullptr) Imgbuf_Destory(&image);
    image = {};
  }
}

// Turns every source with the one geometry; all results or none.
int32_t TurnAll(std::span<const ImageRec> sources, const PrunedRotationOptions& options,
                const analysis::DocumentGeometry& geometry, std::span<ImageRec> results) {
  const rotate::Turn turn{geometry.angle,    geometry.center.x,  geometry.center.y,
                          geometry.outWidth, geometry.outHeight, options.mode};
  for (size_t i = 0; i < sources.size(); ++i) {
    const int32_t status =
        rotate::RotateImage(&sources[i], &results[i], &geometry.spans, turn, options.fill);
    if (status != STATUS_OK) {
      ReleaseImages(results.first(i));
      return status;
    }
  }
  return STATUS_OK;
}

bool HasShapeOf(const ImageRec& image, const ImageRec& first) {
  return image.width == first.width && image.height == first.height &&
         image.bitsPerPixel == first.bitsPerPixel;
}

}  // namespace

int32_t RunPrunedRotation(const frame::Settings& settings, std::span<const ImageRec> sources,
                          const PrunedRotationOptions& options, double* angle,
                          std::span<ImageRec> results, PageRecords* page) {
  int32_t status = FindDocument(settings, sources.front(), options, angle, page);
  if (status != STATUS_OK || settings.AngleOnlyFlag == 1) return status;
  status = TurnAll(sources, options, page->geometry, results);
  if (status == STATUS_OK) page->stage = PageStage::kTurned;
  return status;
}

int32_t RunCheckedPrunedRotation(const frame::Settings& settings, const ImageRec* sources,
                                 const PrunedRotationOptions& options, double* angle,
                                 ImageRec* results, size_t count, PageRecords* page) {
  if (sources == nullptr || results == nullptr) return BAD_ARGUMENT;
  const std::span all(sources, count);
  for (const ImageRec& image : all) {
    const int32_t status = Imgbuf_Check(&image);
    if (status != STATUS_OK) return status;
    if (!HasShapeOf(image, all.front())) return BAD_ARGUMENT;
  }
  PrunedRotationOptions checked = options;
  checked.background = 0;
  return RunPrunedRotation(settings, all, checked, angle, std::span(results, count), page);
}

}  // namespace vorlanepic::deskew
