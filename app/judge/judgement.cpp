#include "app/judge/judgement.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/judge/page_geometry.h"

namespace vorlane::judging {
namespace {

// Collects reasons and keeps the worst confidence.
class Judging {
 public:
  void Lower(Confidence to, const std::string& reason) {
    verdict_.confidence = std::max(verdict_.confidence, to);
    verdict_.reasons.push_back(reason);
  }
  // Larger is worse.
  void Above(double value, const Limits& limits, const std::string& reason) {
    if (value > limits.doubtful) {
      Lower(Confidence::kDoubtful, reason);
    } else if (value > limits.likely) {
      Lower(Confidence::kLikely, reason);
    }
  }
  // Smaller is worse.
  void Below(double value, const Limits& limits, const std::string& reason) {
    Above(-value, {-limits.likely, -limits.doubtful}, reason);
  }
  Verdict verdict() const { return verdict_; }

 private:
  Verdict verdict_;
};

std::string Percent(double share) {
  char text[16];
  std::snprintf(text, sizeof(text), "%.0f %%", share * 100);
  return text;
}

std::string Degrees(double degrees) {
  char text[24];
  std::snprintf(text, sizeof(text), "%+.2f deg", degrees);
  return text;
}

// Whether the border scan takes a pixel for document.
bool IsLight(const ImageRec& image, const vorlanepic::analysis::GreyBand& levels, int32_t x,
             int32_t y) {
  const uint8_t* row = image.rows[y];
  switch (image.bitsPerPixel) {
    case 1:
      return (row[x / 8] & (0x80 >> (x % 8))) != 0;
    case 8:
      return row[x] >= levels.low && row[x] <= levels.high;
    default: {
      const uint8_t level = std::max({row[3 * x], row[3 * x + 1], row[3 * x + 2]});
      return level >= levels.low && level <= levels.high;
    }
  }
}

// Light and dark places in and outside the cut, counted on a grid of some 300 x 300.
struct LightCount {
  double lightInside = 0;
  double darkInside = 0;
  double lightOutside = 0;
};

LightCount CountLight(const ImageRec& image, const vorlanepic::analysis::GreyBand& levels,
                      const CutRect& cut) {
  LightCount count;
  const int32_t step = std::max(1, std::max(image.width, image.height) / 300);
  for (int32_t y = step / 2; y < image.height; y += step) {
    for (int32_t x = step / 2; x < image.width; x += step) {
      const Place p = cut.ToCut(x, y);
      const bool isInside =
          p.x >= cut.left && p.x <= cut.right && p.y >= cut.top && p.y <= cut.bottom;
      const bool isLight = IsLight(image, levels, x, y);
      if (isInside && isLight) ++count.lightInside;
      if (isInside && !isLight) ++count.darkInside;
      if (!isInside && isLight) ++count.lightOutside;
    }
  }
  return count;
}

// Share of the cut whose places lie beyond the picture.
double ShareBeyond(const ImageRec& image, const CutRect& cut) {
  constexpr int kGrid = 60;
  int beyond = 0;
  for (int i = 0; i < kGrid; ++i) {
    for (int j = 0; j < kGrid; ++j) {
      const Place p = cut.ToSource(cut.left + (cut.right - cut.left) * (i + 0.5) / kGrid,
                                   cut.top + (cut.bottom - cut.top) * (j + 0.5) / kGrid);
      if (p.x < -0.5 || p.y < -0.5 || p.x > image.width - 0.5 || p.y > image.height - 0.5) {
        ++beyond;
      }
    }
  }
  return static_cast<double>(beyond) / (kGrid * kGrid);
}

// The cut's size along and across a side.
double LengthAlong(const CutRect& cut, Side side) {
  const bool isUpright = side == Side::kLeft || side == Side::kRight;
  return isUpright ? cut.bottom - cut.top : cut.right - cut.left;
}
double LengthAcross(const CutRect& cut, Side side) {
  const bool isUpright = side == Side::kLeft || side == Side::kRight;
  return isUpright ? cut.right - cut.left : cut.bottom - cut.top;
}

double DistanceFromCut(const CutRect& cut, const SideMeasure& measure) {
  const Place middle = cut.ToCut(measure.middle.x, measure.middle.y);
  switch (measure.side) {
    case Side::kLeft:
      return std::abs(middle.x - cut.left);
    case Side::kRight:
      return std::abs(middle.x - cut.right);
    case Side::kTop:
      return std::abs(middle.y - cut.top);
    default:
      return std::abs(middle.y - cut.bottom);
  }
}

// The sides of which enough is seen to judge by.
std::vector<SideMeasure> SeenSides(const TurnOutcome& outcome, const ImageRec& image,
                                   const CutRect& cut) {
  std::vector<SideMeasure> seen;
  for (const Side side : kSides) {
    const SideMeasure measure = MeasureSide(outcome, image, side);
    const double shortest = cut.isKnown ? kShortestSeen * LengthAlong(cut, side) : 0;
    if (measure.points >= kFewestPoints && measure.onFrameShare <= kMostOnFrame &&
        measure.length >= shortest) {
      seen.push_back(measure);
    }
  }
  return seen;
}

void JudgeSeenCount(const std::vector<SideMeasure>& seen, Judging* judge) {
  std::string names;
  for (const SideMeasure& side : seen) {
    names += std::string(names.empty() ? "" : " and ") + SideName(side.side);
  }
  const auto count = static_cast<double>(seen.size());
  judge->Below(
      count, kSeenSides,
      seen.empty()
          ? "no border of the page is seen, its sides run along the picture's edges"
          : "only the " + names + (seen.size() == 1 ? " border is" : " borders are") + " seen");
}

void JudgeLean(const std::vector<SideMeasure>& seen, double turn, Judging* judge) {
  // Modulo a quarter turn: near 45 degrees a side may be folded to the other axis.
  const auto off = [turn](const SideMeasure& side) {
    return std::remainder(side.leanDegrees + turn, 90);
  };
  const SideMeasure* worst = nullptr;
  int agreeing = 0;
  for (const SideMeasure& side : seen) {
    if (std::abs(off(side)) <= kLean.likely) ++agreeing;
    if (worst == nullptr || std::abs(off(side)) > std::abs(off(*worst))) worst = &side;
  }
  if (worst == nullptr) return;
  judge->Above(std::abs(off(*worst)), agreeing >= 2 ? Limits{kLean.likely, 90} : kLean,
               std::string("the ") + SideName(worst->side) + " border leans " +
                   Degrees(off(*worst)) + " against the turned page");
}

void JudgeDistance(const std::vector<SideMeasure>& seen, const CutRect& cut, Judging* judge) {
  for (const SideMeasure& side : seen) {
    const double distance = DistanceFromCut(cut, side);
    judge->Above(distance / LengthAcross(cut, side.side), kApart,
                 std::string("the ") + SideName(side.side) + " border is seen " +
                     std::to_string(std::lround(distance)) + " pixels away from the cut's side");
  }
}

void JudgeCut(const TurnOutcome& outcome, const ImageRec& image, const CutRect& cut,
              Judging* judge) {
  const LightCount light = CountLight(image, outcome.page->levels, cut);
  const double allLight = light.lightInside + light.lightOutside;
  if (allLight > 0) {
    const double leftOut = light.lightOutside / allLight;
    judge->Above(leftOut, kLeftOut, Percent(leftOut) + " of what is light lies outside the cut");
  }
  const double inside = light.lightInside + light.darkInside;
  if (inside > 0) {
    const double dark = light.darkInside / inside;
    judge->Above(dark, kDark, Percent(dark) + " of the cut is dark");
  }
  const double beyond = ShareBeyond(image, cut);
  judge->Above(beyond, kBeyond, Percent(beyond) + " of the cut lies beyond the picture");
  const double share = cut.Area() / (static_cast<double>(image.width) * image.height);
  judge->Below(share, kSmall, "the cut takes only " + Percent(share) + " of the picture");
}

}  // namespace

Verdict Judge(const TurnOutcome& outcome, const ImageRec& image) {
  Judging judge;
  const CutRect cut = CutOf(outcome);
  if (outcome.kind == TurnKind::kBar) {
    judge.Above(std::abs(outcome.degrees), kBarTurn,
                "the bar lies " + Degrees(-outcome.degrees) + " off the page's axes");
    return judge.verdict();
  }
  judge.Above(std::abs(outcome.degrees), kSteep,
              "the page is turned steeply and may come out a quarter turn off");
  const std::vector<SideMeasure> seen = SeenSides(outcome, image, cut);
  JudgeSeenCount(seen, &judge);
  JudgeLean(seen, outcome.degrees, &judge);
  if (cut.isKnown) {
    JudgeDistance(seen, cut, &judge);
    JudgeCut(outcome, image, cut, &judge);
  }
  return judge.verdict();
}

bool IsBetter(const TurnOutcome& a, const TurnOutcome& b) {
  const bool aWorked = a.status == STATUS_OK;
  const bool bWorked = b.status == STATUS_OK;
  if (!aWorked || !bWorked) return aWorked && !bWorked;
  return a.verdict.confidence < b.verdict.confidence;
}

const char* ConfidenceName(Confidence confidence) {
  static constexpr const char* kNames[] = {"sure", "likely", "doubtful"};
  return kNames[static_cast<int>(confidence)];
}

}  // namespace vorlane::judging
