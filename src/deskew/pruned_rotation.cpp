#include "deskew/pruned_rotation.h"

#include <algorithm>

#include "analysis/border_scan.h"
#include "analysis/corner_solver.h"
#include "analysis/edge_lines.h"
#include "analysis/threshold.h"
#include "deskew/page_records.h"
#include "frame/arithmetic.h"
#include "frame/settings.h"
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
  const int32_t status = analysis::EstimateThreshold(&source, &estimate);
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
int32_t FindDocument(const ImageRec& source, const PrunedRotationOptions& options, double* angle,
                     PageRecords* records) {
  const auto reach = [&](PageStage stage) { records->stage = stage; };
  int32_t status = SettleThreshold(source, options.threshold, &records->threshold);
  if (status != STATUS_OK) return status;
  records->levels = DocumentLevels(records->threshold, options.background);
  reach(PageStage::kThreshold);

  status = analysis::FindBand(&source, &records->band, records->levels.low);
  if (status != STATUS_OK) return status;
  reach(PageStage::kBand);

  analysis::BorderTraces& traces = records->traces;
  status = analysis::ScanRows(&source, &records->band, records->levels, &traces.left, &traces.right,
                              &records->extremes);
  if (status != STATUS_OK) return status;
  reach(PageStage::kRowScan);

  status = analysis::ScanColumns(&source, &records->band, records->levels, &traces.top,
                                 &traces.bottom, &records->extremes);
  if (status != STATUS_OK) return status;
  reach(PageStage::kColumnScan);

  status = analysis::BuildEdges(&source, &records->extremes, &records->straightness, &traces,
                                &records->edges);
  if (status != STATUS_OK) return status;
  reach(PageStage::kEdges);

  if (angle == nullptr) return BAD_ARGUMENT;
  records->geometry.angle = *angle;  // stays unless the solver comes that far
  status = analysis::SolveCorners(&source, options.cornerOption, &records->extremes,
                                  records->straightness, &records->edges, &records->geometry);
  *angle = records->geometry.angle;
  if (status != STATUS_OK) return status;
  reach(PageStage::kCorners);
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
  return Imgbuf_Check(&image) == STATUS_OK && image.width == first.width &&
         image.height == first.height && image.bitsPerPixel == first.bitsPerPixel;
}

}  // namespace

int32_t RunPrunedRotation(std::span<const ImageRec> sources, const PrunedRotationOptions& options,
                          double* angle, std::span<ImageRec> results) {
  ForgetPageRecords();
  PageRecords own;
  PageRecords& records =
      frame::settings.pageRecords != nullptr ? *frame::settings.pageRecords : own;

  int32_t status = FindDocument(sources.front(), options, angle, &records);
  if (status != STATUS_OK || frame::settings.AngleOnlyFlag == 1) return status;
  status = TurnAll(sources, options, records.geometry, results);
  if (status == STATUS_OK) records.stage = PageStage::kTurned;
  return status;
}

int32_t RunCheckedPrunedRotation(const ImageRec* sources, const PrunedRotationOptions& options,
                                 double* angle, ImageRec* results, int32_t count) {
  if (sources == nullptr || results == nullptr) return BAD_ARGUMENT;
  const int32_t status = Imgbuf_Check(sources);
  if (status != STATUS_OK) return status;

  const std::span all(sources, static_cast<size_t>(count));
  const bool areAlike = std::ranges::all_of(
      all.subspan(1), [&](const ImageRec& image) { return HasShapeOf(image, *sources); });
  if (!areAlike) return BAD_ARGUMENT;

  PrunedRotationOptions checked = options;
  checked.background = 0;
  return RunPrunedRotation(all, checked, angle, std::span(results, all.size()));
}

}  // namespace vorlanepic::deskew
