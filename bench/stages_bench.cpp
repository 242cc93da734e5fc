// Every stage by itself, on what the stages before it found.
#include "stages_bench.h"

#include <benchmark/benchmark.h>

#include "analysis/border_scan.h"
#include "analysis/corner_solver.h"
#include "analysis/edge_lines.h"
#include "analysis/threshold.h"
#include "bench_grid.h"
#include "deskew/content_bounds.h"
#include "deskew/image_region.h"
#include "deskew/page_records.h"
#include "deskew/skew_vote.h"
#include "found_page.h"
#include "frame/scratch.h"
#include "rotate/rotate_image.h"

namespace vorlanepic::bench {
namespace {

// A stage: returns its status.
using Stage = int32_t (*)(const ImageRec* source, deskew::PageRecords& found);

void Measure(benchmark::State& state, const Frame& frame, Stage stage) {
  const ImageRec* source = ScanOf(frame).rec();
  deskew::PageRecords found = FindPage(*source);
  while (state.KeepRunning()) {
    const int32_t status = stage(source, found);
    if (status != STATUS_OK) {
      state.SkipWithError(("status " + std::to_string(status)).c_str());
      return;
    }
  }
}

int32_t Threshold(const ImageRec* source, deskew::PageRecords&) {
  uint8_t threshold = 0;
  return analysis::EstimateThreshold(*source, &threshold);
}

int32_t Band(const ImageRec* source, deskew::PageRecords& found) {
  frame::PixelRect band{};
  return analysis::FindBand(PageSettings(), *source, found.levels.low, &band);
}

int32_t RowScan(const ImageRec* source, deskew::PageRecords& found) {
  analysis::SideTrace left;
  analysis::SideTrace right;
  analysis::ExtremePoints extremes = found.extremes;
  return analysis::ScanRows(PageSettings(), *source, found.band, found.levels, &left, &right,
                            &extremes);
}

int32_t ColumnScan(const ImageRec* source, deskew::PageRecords& found) {
  analysis::SideTrace top;
  analysis::SideTrace bottom;
  analysis::ExtremePoints extremes = found.extremes;
  return analysis::ScanColumns(PageSettings(), *source, found.band, found.levels, &top, &bottom,
                               &extremes);
}

int32_t Edges(const ImageRec* source, deskew::PageRecords& found) {
  analysis::DocumentEdges edges;
  analysis::EdgeOrigin origin;
  return analysis::BuildEdges(PageSettings(), *source, found.extremes, found.traces, &origin,
                              &edges);
}

int32_t Corners(const ImageRec* source, deskew::PageRecords& found) {
  analysis::DocumentGeometry geometry;
  return analysis::SolveCorners(PageSettings(), *source, 0, found.extremes, found.edgeOrigin,
                                &found.edges, &geometry);
}

int32_t SkewVote(const ImageRec*, deskew::PageRecords& found) {
  deskew::BorderVote votes[4];
  int32_t bestBorder = -1;
  double degrees = 0;
  frame::Settings settings{};
  settings.SegmentLen = 10;
  settings.GroupAngle = 2.0;
  settings.ToLineDistance = 8;
  return deskew::EstimateSkewFromBorders(settings, found.traces, votes, &bestBorder, &degrees);
}

// The first search of method 2: columns, in the rows of the band.
int32_t ContentColumns(const ImageRec* source, deskew::PageRecords& found) {
  const auto threshold = static_cast<uint8_t>(found.threshold);
  frame::PixelRect bounds{0, 0, found.band.top, found.band.bottom};
  return deskew::FindContentBounds(*source, {3, 5, threshold, deskew::kSearchColumns}, &bounds);
}

// The second search of method 2: rows and columns.
int32_t ContentRowsAndColumns(const ImageRec* source, deskew::PageRecords& found) {
  const auto threshold = static_cast<uint8_t>(found.threshold);
  frame::PixelRect bounds{};
  return deskew::FindContentBounds(*source, {3, 8, threshold, deskew::kSearchRowsAndColumns},
                                   &bounds);
}

// The content of method 2, cut out without a turn.
int32_t Cut(const ImageRec* source, deskew::PageRecords& found) {
  const frame::PixelPoint& center = found.geometry.center;
  const int32_t left = center.x - source->width * 2 / 5;
  const int32_t top = center.y - source->height * 2 / 5;
  frame::ScratchImage cut;
  return deskew::CopyImageRegion(
      source, cut.rec(),
      {left, left + source->width * 4 / 5 - 1, top, top + source->height * 4 / 5 - 1});
}

template <int32_t kInterpolation>
int32_t Rotation(const ImageRec* source, deskew::PageRecords& found) {
  const analysis::DocumentGeometry& geometry = found.geometry;
  const rotate::Turn turn{geometry.angle,    geometry.center.x,  geometry.center.y,
                          geometry.outWidth, geometry.outHeight, kInterpolation};
  constexpr uint8_t kBlack[3] = {0, 0, 0};
  frame::ScratchImage turned;
  return rotate::RotateImage(source, turned.rec(), &geometry.spans, turn, kBlack);
}

void Register(const std::string& name, const Frame& frame, Stage stage) {
  benchmark::RegisterBenchmark(("Stage/" + name + "/" + NameOf(frame)).c_str(),
                               [=](benchmark::State& state) { Measure(state, frame, stage); })
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

}  // namespace

void RegisterStages() {
  ForEachFrame([](const Frame& frame) {
    Register("Threshold", frame, Threshold);
    Register("Band", frame, Band);
    Register("RowScan", frame, RowScan);
    Register("ColumnScan", frame, ColumnScan);
    Register("Edges", frame, Edges);
    Register("Corners", frame, Corners);
    Register("SkewVote", frame, SkewVote);
    Register("ContentColumns", frame, ContentColumns);
    Register("ContentRowsAndColumns", frame, ContentRowsAndColumns);
    Register("Cut", frame, Cut);
    Register("Rotation/nearest", frame, Rotation<INTERP_NEAREST>);
    if (frame.bitsPerPixel == 1) return;
    Register("Rotation/bilinear", frame, Rotation<INTERP_BILINEAR>);
    Register("Rotation/bicubic", frame, Rotation<INTERP_BICUBIC>);
  });
}

}  // namespace vorlanepic::bench
