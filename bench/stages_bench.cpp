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
#include "frame/scratch.h"
#include "frame/settings.h"
#include "rotate/rotate_image.h"

namespace vorlanepic::bench {
namespace {

// What a whole call found on a frame; the settings are left as that call left them.
PageRecords FindPage(const Frame& frame) {
  PageRecords records;
  double angle = 0;
  ScratchImage upright;
  settings.pageRecords = &records;
  ImageVorlaneEx(ScanOf(frame).rec(), INTERP_NEAREST, 0, 0, &angle, upright.rec());
  settings.pageRecords = nullptr;
  return records;
}

// A stage: returns its status.
using Stage = int32_t (*)(const ImageRec* source, PageRecords& found);

void Measure(benchmark::State& state, const Frame& frame, Stage stage) {
  const ImageRec* source = ScanOf(frame).rec();
  PageRecords found = FindPage(frame);
  while (state.KeepRunning()) {
    const int32_t status = stage(source, found);
    if (status != STATUS_OK) {
      state.SkipWithError(("status " + std::to_string(status)).c_str());
      return;
    }
  }
}

int32_t Threshold(const ImageRec* source, PageRecords&) {
  uint8_t threshold = 0;
  return EstimateThreshold(source, &threshold);
}

int32_t Band(const ImageRec* source, PageRecords& found) {
  ScanBand band{};
  return FindBand(source, &band, found.levels.low);
}

int32_t RowScan(const ImageRec* source, PageRecords& found) {
  SideTrace left;
  SideTrace right;
  ExtremePoints extremes = found.extremes;
  return ScanRows(source, &found.band, found.levels, &left, &right, &extremes);
}

int32_t ColumnScan(const ImageRec* source, PageRecords& found) {
  SideTrace top;
  SideTrace bottom;
  ExtremePoints extremes = found.extremes;
  return ScanColumns(source, &found.band, found.levels, &top, &bottom, &extremes);
}

int32_t Edges(const ImageRec* source, PageRecords& found) {
  DocumentEdges edges;
  int32_t straightness = 1;
  return BuildEdges(source, &found.extremes, &straightness, &found.traces, &edges);
}

int32_t Corners(const ImageRec* source, PageRecords& found) {
  DocumentGeometry geometry;
  return SolveCorners(source, 0, &found.extremes, found.straightness, &found.edges, &geometry);
}

int32_t SkewVote(const ImageRec*, PageRecords& found) {
  BorderVote votes[4];
  int32_t bestBorder = -1;
  double degrees = 0;
  return EstimateSkewFromBorders(found.traces, 10, 2.0, votes, &bestBorder, &degrees);
}

// The first search of method 2: columns, in the rows of the band.
int32_t ContentColumns(const ImageRec* source, PageRecords& found) {
  const auto threshold = static_cast<uint8_t>(found.threshold);
  ContentBounds bounds{0, 0, found.band.top, found.band.bottom};
  return FindContentBounds(source, {3, 5, threshold, kSearchColumns}, &bounds);
}

// The second search of method 2: rows and columns.
int32_t ContentRowsAndColumns(const ImageRec* source, PageRecords& found) {
  const auto threshold = static_cast<uint8_t>(found.threshold);
  ContentBounds bounds{};
  return FindContentBounds(source, {3, 8, threshold, kSearchRowsAndColumns}, &bounds);
}

// The content of method 2, cut out without a turn.
int32_t Cut(const ImageRec* source, PageRecords& found) {
  const EdgePoint& center = found.geometry.center;
  const int32_t width = source->width * 4 / 5;
  const int32_t height = source->height * 4 / 5;
  ScratchImage cut;
  return CopyImageRegion(source, cut.rec(),
                         {center.x - width / 2, center.y - height / 2, width, height});
}

template <int32_t kInterpolation>
int32_t Rotation(const ImageRec* source, PageRecords& found) {
  const DocumentGeometry& geometry = found.geometry;
  const Turn turn{geometry.angle,    geometry.center.x,  geometry.center.y,
                  geometry.outWidth, geometry.outHeight, kInterpolation};
  constexpr uint8_t kBlack[3] = {0, 0, 0};
  ScratchImage turned;
  return RotateImage(source, turned.rec(), &geometry.spans, turn, kBlack);
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
