#include "analysis/line_relations.h"

#include <cmath>

#include "analysis/border_line.h"
#include "frame/arithmetic.h"
#include "frame/trigonometry.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {
namespace {

constexpr double kRightAngle = 90.0;
constexpr double kSteep = 45.0;

bool HaveOneSign(double a, double b) { return (a >= 0 && b >= 0) || (a < 0 && b < 0); }

double YAt(const BorderLine& line, double x) {
  return line.kind == LineKind::kHorizontal ? line.intercept : line.slope * x + line.intercept;
}

}  // namespace

double AngleDifference(double a, double b) {
  const double difference = std::abs(a - b);
  const bool areSteep = std::abs(a) >= kSteep && std::abs(b) >= kSteep;
  return !HaveOneSign(a, b) && areSteep ? 180.0 - difference : difference;
}

double MeanAngle(double a, double b) {
  if (HaveOneSign(a, b) || std::abs(a) < kSteep || std::abs(b) < kSteep) return (a + b) * 0.5;
  const double offA = kRightAngle - std::abs(a);
  const double offB = kRightAngle - std::abs(b);
  const double off = (offA + offB) * 0.5;
  const bool positiveIsFarther = a >= 0 ? offA > offB : offB > offA;
  return positiveIsFarther ? kRightAngle - off : off - kRightAngle;
}

double OffPerpendicular(double a, double b) { return std::abs(std::abs(a - b) - kRightAngle); }

double TurnOfEdge(double degrees) {
  if (degrees <= -45.0) return 270.0 - degrees;
  if (degrees <= 0.0) return -degrees;
  if (degrees <= 45.0) return 360.0 - degrees;
  return 90.0 - degrees;
}

void TakeDirection(BorderLine* line, const BorderLine& from) {
  line->slope = from.slope;
  line->angle = from.angle;
  line->kind = from.kind;
}

void MakePerpendicular(BorderLine* line, const BorderLine& to) {
  switch (to.kind) {
    case LineKind::kHorizontal:
      line->kind = LineKind::kVertical;
      line->angle = kRightAngle;
      line->slope = 0.0;
      break;
    case LineKind::kVertical:
      line->kind = LineKind::kHorizontal;
      line->angle = 0.0;
      line->slope = 0.0;
      break;
    case LineKind::kGeneral:
      line->kind = LineKind::kGeneral;
      line->slope = -1.0 / to.slope;
      line->angle = frame::ArcTangent(line->slope) * frame::kDegreesPerRadian;
      break;
    default:
      break;
  }
}

void SetAngle(BorderLine* line, double angle) {
  line->angle = angle;
  if (angle == 0.0) {
    line->kind = LineKind::kHorizontal;
  } else if (angle == kRightAngle) {
    line->kind = LineKind::kVertical;
  } else {
    line->kind = LineKind::kGeneral;
    line->slope = frame::Tangent(angle * frame::kRadiansPerDegree);
  }
}

void Anchor(BorderLine* line, int32_t x, int32_t y) {
  if (line->angle == 0.0) {
    line->intercept = y;
  } else if (line->angle == kRightAngle) {
    line->intercept = x;
  } else {
    line->intercept = y - x * line->slope;
  }
}

int32_t Intersect(const BorderLine& a, const BorderLine& b, frame::PixelPoint* point) {
  if (!IsFitted(a) || !IsFitted(b)) return BAD_ARGUMENT;
  if (a.kind == b.kind && (a.kind != LineKind::kGeneral || a.slope == b.slope)) return BAD_ARGUMENT;

  double x = 0.0;
  double y = 0.0;
  if (a.kind == LineKind::kVertical || b.kind == LineKind::kVertical) {
    const BorderLine& upright = a.kind == LineKind::kVertical ? a : b;
    const BorderLine& other = a.kind == LineKind::kVertical ? b : a;
    x = upright.intercept;
    y = YAt(other, x);
  } else if (a.kind == LineKind::kHorizontal || b.kind == LineKind::kHorizontal) {
    const BorderLine& level = a.kind == LineKind::kHorizontal ? a : b;
    const BorderLine& other = a.kind == LineKind::kHorizontal ? b : a;
    y = level.intercept;
    x = (y - other.intercept) / other.slope;
  } else {
    x = (b.intercept - a.intercept) / (a.slope - b.slope);
    y = YAt(a, x);
  }
  *point = {frame::RoundToInt32(x), frame::RoundToInt32(y)};
  return STATUS_OK;
}

}  // namespace vorlanepic::analysis
