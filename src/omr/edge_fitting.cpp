#include "omr/edge_fitting.h"

#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"
#include "omr/bar_segments.h"

namespace vorlanepic::omr {
namespace {

// Samples beyond which a bar is refused.
constexpr size_t kMostSamples = 4999;

// across = slope * along + offset, fitted by least squares.
struct EdgeLine {
  double slope;
  double offset;
};

// At least two points with different `along`; fewer give infinities or no numbers.
EdgeLine FitAcrossOnAlong(std::span<const BarPoint> points, const EdgeAxes& axes) {
  double sumAlong = 0.0;
  double sumAcross = 0.0;
  double sumSquares = 0.0;
  double sumProducts = 0.0;
  for (const BarPoint& point : points) {
    const double along = point.*axes.along;
    const double across = point.*axes.across;
    sumAlong += along;
    sumAcross += across;
    sumSquares += along * along;
    sumProducts += along * across;
  }
  const auto count = static_cast<double>(points.size());
  const double divisor = count * sumSquares - sumAlong * sumAlong;
  return {(count * sumProducts - sumAlong * sumAcross) / divisor,
          (sumSquares * sumAcross - sumAlong * sumProducts) / divisor};
}

BarLine FitLineYOnX(std::span<const BarPoint> points) {
  const EdgeLine line = FitAcrossOnAlong(points, kWideBar);
  return {static_cast<float>(line.slope), static_cast<float>(line.offset), 1.0F};
}

BarLine FitLineXOnY(std::span<const BarPoint> points) {
  const EdgeLine line = FitAcrossOnAlong(points, kTallBar);
  return {static_cast<float>(1.0 / line.slope), static_cast<float>(-line.offset / line.slope),
          1.0F};
}

// The points of the samples around each step that is at most one away from the mode. Each sample
// stands for one point at most, so `points` has room for as many.
size_t KeepUsualSteps(std::span<const EdgeSample> samples, int32_t EdgeSample::*edge, int32_t mode,
                      const EdgeAxes& axes, std::span<BarPoint> points) {
  size_t count = 0;
  const auto add = [&](const EdgeSample& sample) {
    BarPoint& point = points[count++];
    point.*axes.along = sample.position;
    point.*axes.across = sample.*edge;
  };
  bool followsAccepted = false;
  for (size_t i = 0; i + 1 < samples.size(); ++i) {
    const int32_t step = samples[i].*edge - samples[i + 1].*edge;
    const bool isAccepted = mode - 1 <= step && step <= mode + 1;
    if (isAccepted && !followsAccepted) add(samples[i]);
    if (isAccepted) add(samples[i + 1]);
    followsAccepted = isAccepted;
  }
  return count;
}

// The points of one edge that the line is fitted to, at the front of `points`.
bool KeepMainEdge(std::span<const EdgeSample> samples, int32_t EdgeSample::*edge,
                  const EdgeAxes& axes, frame::ScratchArray<BarPoint>* points, size_t* kept) {
  frame::ScratchArray<int32_t> steps;
  if (!steps.Allocate(samples.size() - 1) || !points->Allocate(samples.size())) return false;
  for (size_t i = 0; i + 1 < samples.size(); ++i) {
    steps[i] = samples[i].*edge - samples[i + 1].*edge;
  }
  const int32_t mode = ModeOf(steps.span());
  const size_t count = KeepUsualSteps(samples, edge, mode, axes, points->span());
  return count > 0 && KeepMainSegments(points->span().first(count), axes, mode - 1, mode + 1, kept);
}

template <typename Fit>
bool FitEdges(std::span<const EdgeSample> samples, const EdgeAxes& axes, Fit fit, BarLines* lines) {
  if (samples.size() < 2 || samples.size() > kMostSamples) return false;
  frame::ScratchArray<BarPoint> points;
  size_t kept = 0;
  if (!KeepMainEdge(samples, &EdgeSample::first, axes, &points, &kept)) return false;
  lines->first = fit(points.span().first(kept));
  if (!KeepMainEdge(samples, &EdgeSample::last, axes, &points, &kept)) return false;
  lines->second = fit(points.span().first(kept));
  return true;
}

}  // namespace

int32_t ModeOf(std::span<int32_t> values) {
  std::sort(values.begin(), values.end());
  int32_t mode = values[0];
  size_t most = 0;
  for (size_t first = 0; first < values.size();) {
    size_t end = first + 1;
    while (end < values.size() && values[end] == values[first]) ++end;
    if (end - first > most) {
      most = end - first;
      mode = values[first];
    }
    first = end;
  }
  return mode;
}

bool FitWideBarEdges(std::span<const EdgeSample> samples, BarLines* lines) {
  return FitEdges(samples, kWideBar, FitLineYOnX, lines);
}

bool FitTallBarEdges(std::span<const EdgeSample> samples, BarLines* lines) {
  return FitEdges(samples, kTallBar, FitLineXOnY, lines);
}

}  // namespace vorlanepic::omr
