#include "deskew/skew_vote.h"

#include <algorithm>
#include <cmath>

#include "analysis/border_line.h"
#include "deskew/border_directions.h"
#include "frame/arithmetic.h"
#include "frame/scratch.h"
#include "frame/settings.h"
#include "frame/trigonometry.h"

namespace vorlanepic::deskew {
namespace {

constexpr int32_t kMaxSegmentLen = 50;
constexpr double kMaxGroupAngle = 5.0;

// Points nearer to a line than this are kept when the line is already closer than ToLineDistance on
// the mean.
constexpr uint32_t kNearPixels = 6;
// A line through fewer points is no border.
constexpr size_t kFewestPoints = 5;
// Opposite borders whose angles differ by more do not agree.
constexpr double kAgreeingDegrees = 1.5;

analysis::EdgePoint MeanOf(std::span<const analysis::EdgePoint> points) {
  uint32_t sumX = 0;
  uint32_t sumY = 0;
  for (const analysis::EdgePoint& point : points) {
    sumX += static_cast<uint32_t>(point.x);
    sumY += static_cast<uint32_t>(point.y);
  }
  const auto count = static_cast<uint32_t>(points.size());
  return {static_cast<int32_t>(sumX / count), static_cast<int32_t>(sumY / count)};
}

// |distance| of every point from `line`.
void MeasureDistances(const analysis::BorderLine& line, std::span<const analysis::EdgePoint> points,
                      std::span<uint32_t> distances) {
  const analysis::LineDistance distance(line);
  for (size_t i = 0; i < points.size(); ++i) {
    distances[i] = static_cast<uint32_t>(frame::WrapAbs(distance.Of(points[i])));
  }
}

size_t CountBelow(std::span<const uint32_t> distances, uint32_t limit) {
  return static_cast<size_t>(std::count_if(
      distances.begin(), distances.end(), [limit](uint32_t distance) { return distance < limit; }));
}

// Moves the points nearer than `cut` to the front and returns how many they are.
size_t KeepNear(std::span<const uint32_t> distances, uint32_t cut,
                std::span<analysis::EdgePoint> points) {
  size_t kept = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    if (distances[i] < cut) points[kept++] = points[i];
  }
  return kept;
}

// Fits `line` to `points`, drops those far from it and fits again, until all are near. `points` is
// reordered; `distances` has as many entries.
int32_t RefineLine(std::span<analysis::EdgePoint> points, std::span<uint32_t> distances,
                   analysis::BorderLine* line) {
  const auto inlierLimit = static_cast<uint32_t>(frame::settings.ToLineDistance);
  for (;;) {
    if (FitLineByHalves(line, points) != STATUS_OK) return ANGLE_NOT_FOUND;
    distances = distances.first(points.size());
    MeasureDistances(*line, points, distances);
    if (CountBelow(distances, inlierLimit) == points.size()) return STATUS_OK;

    uint32_t sum = 0;
    for (const uint32_t distance : distances) sum += distance;
    const uint32_t mean = sum / static_cast<uint32_t>(points.size());
    const size_t kept = KeepNear(distances, mean >= inlierLimit ? mean : kNearPixels, points);
    if (kept < kFewestPoints) return ANGLE_NOT_FOUND;
    // The same points would give the same line for ever.
    if (kept == points.size()) return STATUS_OK;
    points = points.first(kept);
  }
}

// The means of the segments in `chunks`, chunk after chunk.
void GatherPoints(std::span<const analysis::BorderSegment> segments,
                  std::span<const int32_t> chunks, size_t chunkLength,
                  std::span<analysis::EdgePoint> points) {
  size_t filled = 0;
  for (const int32_t chunk : chunks) {
    for (const analysis::BorderSegment& segment :
         segments.subspan(static_cast<size_t>(chunk) * chunkLength, chunkLength)) {
      points[filled++] = {segment.meanX, segment.meanY};
    }
  }
}

// The partner of a border in its pair of opposite borders: left and right, top and bottom.
int32_t OppositeOf(int32_t border) { return border ^ 1; }

bool Agree(const BorderVote& a, const BorderVote& b) {
  if (!a.hasAngle || !b.hasAngle) return false;
  const bool sameSign = (a.angle >= 0.0 && b.angle >= 0.0) || (a.angle <= 0.0 && b.angle <= 0.0);
  return sameSign && std::abs(a.angle - b.angle) <= kAgreeingDegrees;
}

int32_t BestOf(std::span<const BorderVote, 4> votes) {
  int32_t best = -1;
  int32_t most = -1;
  for (int32_t i = 0; i < 4; ++i) {
    const BorderVote& vote = votes[static_cast<size_t>(i)];
    if (!vote.hasAngle || vote.votes <= most) continue;
    best = i;
    most = vote.votes;
  }
  return best;
}

}  // namespace

int32_t FitLineByHalves(analysis::BorderLine* line, std::span<const analysis::EdgePoint> points) {
  if (points.size() < 2) return BAD_ARGUMENT;
  const analysis::EdgePoint first = MeanOf(points.first(points.size() / 2));
  const analysis::EdgePoint second = MeanOf(points.subspan(points.size() / 2));
  const int32_t dx = frame::WrapSub(second.x, first.x);
  const int32_t dy = frame::WrapSub(second.y, first.y);
  if (dx == 0 && dy == 0) return ANGLE_NOT_FOUND;

  *line = {};
  if (dx == 0) {
    line->kind = analysis::kLineVertical;
    line->intercept = first.x;
    line->angle = 90.0;
  } else if (dy == 0) {
    line->kind = analysis::kLineHorizontal;
    line->intercept = first.y;
  } else {
    line->kind = analysis::kLineGeneral;
    line->slope = static_cast<double>(dy) / dx;
    line->intercept = first.y - first.x * line->slope;
    line->angle = frame::ArcTangent(line->slope) * frame::kDegreesPerRadian;
  }
  return STATUS_OK;
}

int32_t EstimateBorderAngle(std::span<const analysis::BorderSegment> segments, int32_t segmentLen,
                            double groupAngle, BorderVote* vote) {
  const int32_t length = segmentLen & 0xFFFF;
  if (vote == nullptr || length == 0 || length > kMaxSegmentLen) return BAD_ARGUMENT;
  if (!(groupAngle >= 0.0 && groupAngle <= kMaxGroupAngle)) return BAD_ARGUMENT;
  *vote = {};

  frame::ScratchArray<double> degrees;
  frame::ScratchArray<int32_t> chunks;
  if (!MeasureDirections(segments, length, &degrees)) return OUT_OF_MEMORY;
  if (!PickLargestGroup(degrees.span(), groupAngle, &chunks)) return OUT_OF_MEMORY;
  if (chunks.size() == 0) return ANGLE_NOT_FOUND;

  const size_t count = chunks.size() * static_cast<size_t>(length);
  frame::ScratchArray<analysis::EdgePoint> points;
  frame::ScratchArray<analysis::EdgePoint> working;
  frame::ScratchArray<uint32_t> distances;
  if (!points.Allocate(count) || !working.Allocate(count) || !distances.Allocate(count)) {
    return OUT_OF_MEMORY;
  }
  GatherPoints(segments, chunks.span(), static_cast<size_t>(length), points.span());
  std::copy(points.span().begin(), points.span().end(), working.span().begin());

  analysis::BorderLine line;
  const int32_t status = RefineLine(working.span(), distances.span(), &line);
  if (status != STATUS_OK) return status;
  MeasureDistances(line, points.span(), distances.span());
  const auto inlierLimit = static_cast<uint32_t>(frame::settings.ToLineDistance);
  const auto votes = static_cast<int32_t>(CountBelow(distances.span(), inlierLimit));
  *vote = {line.angle, line, votes, true};
  return STATUS_OK;
}

int32_t EstimateSkewFromBorders(const analysis::BorderTraces& traces, int32_t segmentLen,
                                double groupAngle, std::span<BorderVote, 4> votes,
                                int32_t* bestBorder, double* degrees) {
  const analysis::SideTrace* const sides[] = {&traces.left, &traces.right, &traces.top,
                                              &traces.bottom};
  for (size_t i = 0; i < votes.size(); ++i) {
    const int32_t status =
        EstimateBorderAngle(sides[i]->list.view(), segmentLen, groupAngle, &votes[i]);
    if (status != STATUS_OK && status != ANGLE_NOT_FOUND) return status;
  }
  *bestBorder = BestOf(votes);
  if (*bestBorder < 0) return ANGLE_NOT_FOUND;

  const BorderVote& best = votes[static_cast<size_t>(*bestBorder)];
  const BorderVote& opposite = votes[static_cast<size_t>(OppositeOf(*bestBorder))];
  const bool isMeanAsked = frame::settings.AngleMode != 0;
  *degrees =
      isMeanAsked && Agree(best, opposite) ? (best.angle + opposite.angle) * 0.5 : best.angle;
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
