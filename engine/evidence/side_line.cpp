#include "engine/evidence/side_line.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <numbers>
#include <numeric>

#include "frame/scratch.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::ScratchArray;

// Points so near to the picture's own edge are the frame's, not the page's.
constexpr double kFramePixels = 5.0;
// Pairs of points that are tried for a line, and the points by which each is scored: with a third
// of the points on the side, one pair in nine is good. Below twice as many points all are scored.
constexpr size_t kPairs = 240;
constexpr size_t kScoredPoints = 250;
// Points of a pair lie apart by this share of the trace and by this many pixels.
constexpr double kPairShare = 0.06;
constexpr double kPairPixels = 16.0;
// Leaning more than 45 degrees, a side is one of the neighbouring sides.
constexpr double kSteepest = 1.0;
constexpr int32_t kRefinements = 4;
// A line lies clearly inside the picture from this share of its longer side on.
constexpr double kClearlyInside = 0.01;

// What a side has to have to be seen.
constexpr size_t kFewestPoints = 24;
constexpr double kShortest = 0.20;        // of the picture along the side
constexpr double kLeastFilled = 0.70;     // of the bins
constexpr double kLeastExplained = 0.30;  // length * filled, of the trace's span
constexpr size_t kBins = 24;
// Where a side begins, so many points of it follow within so many pixels: every second row or
// column has one, some are missing.
constexpr size_t kDensePoints = 6;
constexpr double kDensePixels = 36.0;

struct TracePoint {
  float along;
  float across;
};

struct Candidate {
  double offset = 0.0;
  double slope = 0.0;
  double DistanceTo(const TracePoint& point) const {
    return point.across - (offset + slope * point.along);
  }
};

// Knuth's linear congruential generator: the same pairs on every machine and every run.
class PairPicker {
 public:
  explicit PairPicker(size_t count) : count_(count) {}
  size_t Next() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<size_t>((state_ >> 33) * count_ >> 31);
  }

 private:
  uint64_t count_;
  uint64_t state_ = 0x9E3779B97F4A7C15U;
};

// Where the page's edge lies for a traced point. The walks stop one pixel behind the first page
// pixel from the left and from the right, and at it from the top and from the bottom.
double AcrossOf(Side side, vorlanepic::frame::PixelPoint point) {
  switch (side) {
    case Side::kTop:
      return point.y - 0.5;
    case Side::kRight:
      return point.x + 1.5;
    case Side::kBottom:
      return point.y + 0.5;
    default:
      return point.x - 1.5;
  }
}

bool IsAtFrame(double across, double extent) {
  return across < kFramePixels || across > extent - 1.0 - kFramePixels;
}

double SlopeDegrees(Side side, double slope) {
  const double degrees = std::atan(slope) * 180.0 / std::numbers::pi;
  return RunsAcross(side) ? degrees : -degrees;
}

// Scores lines by how near to each the points of a trace lie: several lines at a time, so that each
// line's own sum, whose order decides its last bits, need not be waited for.
class CandidateScores {
 public:
  // Of `points` every so many is looked at; those within `tolerance` count half at least.
  CandidateScores(std::span<const TracePoint> points, double tolerance)
      : scale_(static_cast<float>(0.5 / (tolerance * tolerance))) {
    const size_t step = std::max<size_t>(points.size() / kScoredPoints, 1);
    for (size_t i = 0; i < points.size(); i += step) points_[pointCount_++] = points[i];
  }

  void Add(const Candidate& candidate) {
    candidates_[count_] = candidate;
    offsets_[count_] = static_cast<float>(candidate.offset);
    slopes_[count_] = static_cast<float>(candidate.slope);
    ++count_;
  }

  // The first line of the highest score; false where no line has one.
  bool Best(Candidate* best) const {
    float bestScore = 0.0F;
    for (size_t first = 0; first < count_; first += kLanes) {
      const std::array<float, kLanes> scores = ScoresFrom(first);
      for (size_t i = 0; i < std::min(kLanes, count_ - first); ++i) {
        if (scores[i] > bestScore) {
          bestScore = scores[i];
          *best = candidates_[first + i];
        }
      }
    }
    return bestScore > 0.0F;
  }

 private:
  static constexpr size_t kLanes = 16;
  static_assert(kPairs % kLanes == 0);

  std::array<float, kLanes> ScoresFrom(size_t first) const {
    std::array<float, kLanes> scores{};
    for (const TracePoint& point : std::span(points_).first(pointCount_)) {
      for (size_t i = 0; i < kLanes; ++i) {
        const float line = offsets_[first + i] + slopes_[first + i] * point.along;
        const float distance = point.across - line;
        const float score = 1.0F - distance * distance * scale_;
        scores[i] += score > 0.0F ? score : 0.0F;
      }
    }
    return scores;
  }

  float scale_;
  std::array<TracePoint, 2 * kScoredPoints> points_;
  size_t pointCount_ = 0;
  std::array<Candidate, kPairs> candidates_;
  std::array<float, kPairs> offsets_{};
  std::array<float, kPairs> slopes_{};
  size_t count_ = 0;
};

class SideFitter {
 public:
  SideFitter(Side side, int32_t width, int32_t height)
      : side_(side),
        alongExtent_(RunsAcross(side) ? width : height),
        acrossExtent_(RunsAcross(side) ? height : width) {}

  int32_t Fit(const vorlanepic::analysis::SideTrace& trace, SideLine* line) {
    if (!Gather(trace, line)) return OUT_OF_MEMORY;
    if (points_.size() < kFewestPoints) return STATUS_OK;
    tolerance_ = 1.3 + 0.0003 * span_;
    Candidate best;
    if (!PickBest(&best)) return STATUS_OK;
    for (int32_t i = 0; i < kRefinements; ++i) Refine(&best);
    Measure(best, line);
    MeasureContradiction(trace, line);
    return STATUS_OK;
  }

 private:
  // The trace's points that are not the frame's, in the order along the side.
  bool Gather(const vorlanepic::analysis::SideTrace& trace, SideLine* line) {
    const auto traced = static_cast<size_t>(trace.pointCount);
    if (!storage_.Allocate(traced)) return false;
    size_t kept = 0;
    for (const vorlanepic::frame::PixelPoint& point : trace.points.span().first(traced)) {
      const double across = AcrossOf(side_, point);
      if (IsAtFrame(across, acrossExtent_)) continue;
      storage_[kept++] = {static_cast<float>(RunsAcross(side_) ? point.x : point.y),
                          static_cast<float>(across)};
    }
    points_ = storage_.span().first(kept);
    if (traced > 0) line->onFrame = 1.0 - static_cast<double>(kept) / static_cast<double>(traced);
    if (kept == 0) return true;
    const auto [low, high] = std::ranges::minmax_element(points_, {}, &TracePoint::along);
    span_ = high->along - low->along;
    return true;
  }

  // RANSAC: the line through two points that most of the others lie near to, of equals the first.
  bool PickBest(Candidate* best) {
    CandidateScores scores(points_, tolerance_);
    PairPicker picker(points_.size());
    const double apart = std::max(kPairPixels, kPairShare * span_);
    for (size_t i = 0; i < kPairs; ++i) {
      const TracePoint a = points_[picker.Next()];
      const TracePoint b = points_[picker.Next()];
      const double along = b.along - a.along;
      if (std::abs(along) < apart) continue;
      const double slope = (b.across - a.across) / along;
      if (std::abs(slope) <= kSteepest) scores.Add({a.across - slope * a.along, slope});
    }
    return scores.Best(best);
  }

  bool IsOn(const Candidate& line, const TracePoint& point) const {
    return std::abs(line.DistanceTo(point)) <= tolerance_;
  }

  // Least squares over the points near the line.
  void Refine(Candidate* line) const {
    double n = 0.0;
    double sumAlong = 0.0;
    double sumAcross = 0.0;
    double sumSquares = 0.0;
    double sumProducts = 0.0;
    for (const TracePoint& point : points_) {
      if (!IsOn(*line, point)) continue;
      const double along = point.along;
      n += 1.0;
      sumAlong += along;
      sumAcross += point.across;
      sumSquares += along * along;
      sumProducts += along * point.across;
    }
    const double spread = n * sumSquares - sumAlong * sumAlong;
    if (n < 2.0 || spread <= 0.0) return;
    line->slope = (n * sumProducts - sumAlong * sumAcross) / spread;
    line->offset = (sumAcross - line->slope * sumAlong) / n;
  }

  void Measure(const Candidate& best, SideLine* line) const {
    line->offset = best.offset;
    line->slope = best.slope;
    line->degrees = SlopeDegrees(side_, best.slope);
    const size_t on = FindEnds(best, line);
    if (on < kFewestPoints || line->length() <= 0.0) return;
    MeasureBins(best, line);
    line->isSeen = std::abs(best.slope) <= kSteepest &&
                   line->length() >= kShortest * alongExtent_ && line->filled >= kLeastFilled &&
                   line->weight() >= kLeastExplained * span_;
  }

  // Finds where the points on the line begin and end, but for stray ones, and counts those between.
  size_t FindEnds(const Candidate& best, SideLine* line) const {
    std::array<float, kDensePoints> recent{};
    size_t on = 0;
    line->from = INFINITY;
    line->to = -INFINITY;
    for (const TracePoint& point : points_) {
      if (!IsOn(best, point)) continue;
      float& oldest = recent[on % kDensePoints];
      ++on;
      if (on > kDensePoints && std::abs(point.along - oldest) <= kDensePixels) {
        line->from = std::min<double>(line->from, std::min(point.along, oldest));
        line->to = std::max<double>(line->to, std::max(point.along, oldest));
      }
      oldest = point.along;
    }
    return on;
  }

  // A page that ends at the line does not reach the picture's edge beside it.
  void MeasureContradiction(const vorlanepic::analysis::SideTrace& trace, SideLine* line) const {
    const auto traced = static_cast<size_t>(trace.pointCount);
    const double inside = kFramePixels + kClearlyInside * std::max(alongExtent_, acrossExtent_);
    size_t contradicting = 0;
    for (const vorlanepic::frame::PixelPoint& point : trace.points.span().first(traced)) {
      const double across = line->At(RunsAcross(side_) ? point.x : point.y);
      const bool isInside = across > inside && across < acrossExtent_ - 1.0 - inside;
      contradicting += isInside && IsAtFrame(AcrossOf(side_, point), acrossExtent_);
    }
    line->contradicted = static_cast<double>(contradicting) / static_cast<double>(traced);
  }

  void MeasureBins(const Candidate& best, SideLine* line) const {
    std::bitset<kBins> bins;
    size_t within = 0;
    size_t onWithin = 0;
    for (const TracePoint& point : points_) {
      if (point.along < line->from || point.along > line->to) continue;
      ++within;
      if (!IsOn(best, point)) continue;
      ++onWithin;
      const double bin = (point.along - line->from) * kBins / (line->length() + 1.0);
      bins.set(static_cast<size_t>(bin));
    }
    line->filled = static_cast<double>(bins.count()) / kBins;
    line->straight = static_cast<double>(onWithin) / static_cast<double>(within);
  }

  Side side_;
  double alongExtent_;
  double acrossExtent_;
  double span_ = 0.0;
  double tolerance_ = 0.0;
  ScratchArray<TracePoint> storage_;
  std::span<const TracePoint> points_;
};

}  // namespace

HalfPlane InsideOf(const SideLine& line, Side side, double inset) {
  const double sign = side == Side::kTop || side == Side::kLeft ? 1.0 : -1.0;
  const double scale = sign / std::sqrt(1.0 + line.slope * line.slope);
  const double c = line.offset * scale + inset;
  return RunsAcross(side) ? HalfPlane{-line.slope * scale, scale, c}
                          : HalfPlane{scale, -line.slope * scale, c};
}

int32_t FitSide(const vorlanepic::analysis::SideTrace& trace, Side side, int32_t width,
                int32_t height, SideLine* line) {
  *line = {};
  return SideFitter(side, width, height).Fit(trace, line);
}

}  // namespace vorlane::evidence
