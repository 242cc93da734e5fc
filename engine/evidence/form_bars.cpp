#include "engine/evidence/form_bars.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "omr/mark_sheet_angle.h"

namespace vorlane::evidence {
namespace {

// A bar is at least this long, as a share of the picture's longer side; thinner ones are rules of
// a table, thicker ones panels.
constexpr double kShortestShare = 0.12;
constexpr double kThickestShare = 0.03;
constexpr int32_t kThinnest = 4;

// Degrees off the nearer axis: a bar down the sheet tells the same as one across.
double FoldedDegrees(double radians) {
  const double degrees = radians * 180.0 / std::numbers::pi;
  return degrees - 90.0 * std::round(degrees / 90.0);
}

int32_t ThicknessOfChosen(const vorlanepic::omr::BarRecords& records) {
  const auto bars = records.bars.span().first(records.barCount);
  const auto chosen = std::ranges::find(bars, vorlanepic::omr::BarVerdict::kChosen,
                                        &vorlanepic::omr::ExaminedBar::verdict);
  return chosen == bars.end() ? 0 : chosen->thickness;
}

}  // namespace

FormBars FindFormBars(const PageLevels& page, uint8_t threshold) {
  const vorlanepic::omr::GreyView view{page.Row(0), page.height(), page.width(), page.lineBytes()};
  vorlanepic::omr::BarLimits limits{static_cast<int32_t>(kShortestShare * page.size()), kThinnest,
                                    static_cast<int32_t>(kThickestShare * page.size())};
  FormBars bars;
  double low = INFINITY;
  double high = -INFINITY;
  // The search gives the thickest bar: the next one is the thickest of the thinner ones.
  while (bars.count < kMostBars && limits.maxThickness >= limits.minThickness) {
    vorlanepic::omr::BarRecords records;
    double radians = 0.0;
    const int32_t status =
        vorlanepic::omr::MeasureBar(view, threshold - 1, limits, &records, &radians);
    if (status == vorlanepic::omr::BAR_FOUND) {
      const double degrees = FoldedDegrees(radians);
      if (bars.count == 0) bars.degrees = degrees;
      low = std::min(low, degrees);
      high = std::max(high, degrees);
      ++bars.count;
    }
    const int32_t thickness = ThicknessOfChosen(records);
    if (thickness <= 0) break;
    limits.maxThickness = thickness - 1;
  }
  if (bars.count > 0) bars.spread = high - low;
  return bars;
}

}  // namespace vorlane::evidence
