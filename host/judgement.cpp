#include "host/judgement.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/page_geometry.h"

namespace vorlanepic::host {
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
bool IsLight(const ImageRec& image, const GreyBand& levels, int32_t x, int32_t y) {
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

LightCount CountLight(const ImageRec& image, const GreyBand& levels, const CutRect& cut) {
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

void JudgeSides(const TurnOutcome& outcome, const ImageRec& image, const CutRect& cut,
                Judging* judge) {
  int seen = 0;
  int agreeing = 0;
  std::string seenNames;
  double worst = 0;
  const char* worstName = "";
  for (const Side side : kSides) {
    const SideMeasure measure = MeasureSide(outcome, image, side);
    const bool isUpright = side == Side::kLeft || side == Side::kRight;
    const double whole = isUpright ? cut.bottom - cut.top : cut.right - cut.left;
    if (measure.points < kFewestPoints || measure.onFrameShare > kMostOnFrame ||
        measure.length < kShortestSeen * whole) {
      continue;
    }
    ++seen;
    seenNames += std::string(seenNames.empty() ? "" : ", ") + SideName(side);
    const double off = measure.leanDegrees + outcome.degrees;
    if (std::abs(off) <= kLean.likely) ++agreeing;
    if (std::abs(off) > std::abs(worst)) {
      worst = off;
      worstName = SideName(side);
    }
  }
  if (seen == 0) {
    judge->Below(seen, kSeenSides,
                 "no border of the page is seen: its sides run along the picture's edges");
  } else {
    judge->Below(seen, kSeenSides, "only the " + seenNames + " border is seen");
  }
  // A side may hang askew where two others bear the turn out: an open book, a torn sheet.
  const Limits lean = agreeing >= 2 ? Limits{kLean.likely, 45} : kLean;
  judge->Above(std::abs(worst), lean,
               std::string("the ") + worstName + " border leans " + Degrees(worst) +
                   " against the turned page");
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
  JudgeSides(outcome, image, cut, &judge);
  if (cut.isKnown) JudgeCut(outcome, image, cut, &judge);
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

}  // namespace vorlanepic::host
