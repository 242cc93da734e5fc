#include "engine/apply/result_geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <utility>

#include "engine/judge/finding.h"

namespace vorlane::apply {
namespace {

using judge::CutRect;
using judge::Point;
using vorlanepic::rotate::Turn;

// Corners further out than this are no place on a page.
constexpr double kFarthest = 1e6;

// What of a pixel the cut must touch for the pixel to be kept: less is rounding.
constexpr double kLeastShare = 1.0 / 64;

// A slanted result has up to one pixel on either side that its cut does not reach, since the turn's
// centre is a whole pixel of the source.
constexpr int32_t kRoundingPixels = 4;

double Radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

bool IsPlace(const vorlane_point& point) {
  return std::abs(point.x) <= kFarthest && std::abs(point.y) <= kFarthest;
}

vorlane_status CheckFinding(const vorlane_image& page, const vorlane_finding& finding,
                            const vorlane_apply_options& options) {
  const bool isOfPage = finding.page_width == page.width && finding.page_height == page.height;
  if (!isOfPage || !(std::abs(finding.turn) <= 180.0)) return VORLANE_BAD_FINDING;
  if (!std::ranges::all_of(finding.corners, IsPlace)) return VORLANE_BAD_FINDING;
  if (finding.turn_confidence < options.min_confidence) return VORLANE_NOT_CONFIDENT;
  return std::abs(finding.turn) <= options.max_turn ? VORLANE_OK : VORLANE_TURN_TOO_LARGE;
}

CutRect WholePage(const vorlane_image& page, double degrees) {
  const double right = page.width - 0.5;
  const double bottom = page.height - 0.5;
  const std::array<Point, 4> corners = {
      Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}};
  return judge::CutAround(corners, degrees, page.width, page.height);
}

bool IsEmpty(const CutRect& cut) {
  return cut.right - cut.left < kLeastShare || cut.bottom - cut.top < kLeastShare;
}

// What is kept, in the page turned by `degrees`; empty when nothing is.
CutRect CutOf(const vorlane_image& page, const vorlane_finding& finding,
              const vorlane_apply_options& options, double degrees) {
  const CutRect whole = WholePage(page, degrees);
  const bool isCut = finding.cut_confidence >= options.min_confidence;
  if (!isCut || options.keep_whole != 0) return whole;
  std::array<Point, 4> corners{};
  std::ranges::transform(finding.corners, corners.begin(), [](const vorlane_point& corner) {
    return Point{corner.x, corner.y};
  });
  CutRect cut = judge::CutAround(corners, degrees, page.width, page.height);
  cut = {std::max(cut.left, whole.left), std::max(cut.top, whole.top),
         std::min(cut.right, whole.right), std::min(cut.bottom, whole.bottom)};
  if (IsEmpty(cut)) return cut;
  return {cut.left - options.margin, cut.top - options.margin, cut.right + options.margin,
          cut.bottom + options.margin};
}

// Pixels first..first + count - 1 of a row or column of `size` pixels.
struct Pixels {
  int32_t first;
  int32_t count;
};

// The pixels that the cut touches along one axis of a page that is not turned.
Pixels TouchedPixels(double from, double to, int32_t size) {
  const double middle = size / 2.0;
  const auto first = static_cast<int32_t>(std::floor(from + middle + kLeastShare));
  const auto end = static_cast<int32_t>(std::ceil(to + middle - kLeastShare));
  return {first, std::max(end - first, 1)};
}

// The source pixel of output pixel (x, y) when `columns` and `rows` are only given quarter turns.
SourcePixel PixelOf(const Pixels& columns, const Pixels& rows, int32_t quarterTurns, int32_t x,
                    int32_t y) {
  const int32_t right = columns.first + columns.count - 1;
  const int32_t bottom = rows.first + rows.count - 1;
  switch (quarterTurns) {
    case 1:
      return {columns.first + y, bottom - x};
    case 2:
      return {right - x, bottom - y};
    case 3:
      return {right - y, rows.first + x};
    default:
      return {columns.first + x, rows.first + y};
  }
}

Turn PlanStraight(const vorlane_image& page, const CutRect& cut, int32_t quarterTurns) {
  const Pixels columns = TouchedPixels(cut.left, cut.right, page.width);
  const Pixels rows = TouchedPixels(cut.top, cut.bottom, page.height);
  int32_t width = columns.count;
  int32_t height = rows.count;
  if (quarterTurns % 2 != 0) std::swap(width, height);
  const SourcePixel centre =
      PixelOf(columns, rows, quarterTurns, (width - 1) >> 1, (height - 1) >> 1);
  return {0.0, centre.x, centre.y, width, height, INTERP_NEAREST, quarterTurns};
}

// The odd number of pixels around `centre` that reaches from `from` to `to`.
int32_t PixelsAround(double centre, double from, double to) {
  const double reach = std::max(centre - from, to - centre);
  return 2 * static_cast<int32_t>(std::ceil(std::max(0.0, reach - 0.5 - kLeastShare))) + 1;
}

Turn PlanSlanted(const vorlane_image& page, const CutRect& cut, double degrees,
                 int32_t quarterTurns, int32_t interpolation) {
  const double angle = Radians(degrees);
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  const double middleX = (page.width - 1) / 2.0;
  const double middleY = (page.height - 1) / 2.0;
  // The whole pixel nearest to the cut's middle, and where the turn takes it.
  const double u = (cut.left + cut.right) / 2;
  const double v = (cut.top + cut.bottom) / 2;
  const double centerX = std::round(middleX + u * cosine + v * sine);
  const double centerY = std::round(middleY - u * sine + v * cosine);
  const double turnedX = (centerX - middleX) * cosine - (centerY - middleY) * sine;
  const double turnedY = (centerX - middleX) * sine + (centerY - middleY) * cosine;
  int32_t width = PixelsAround(turnedX, cut.left, cut.right);
  int32_t height = PixelsAround(turnedY, cut.top, cut.bottom);
  if (quarterTurns % 2 != 0) std::swap(width, height);
  return {angle,
          static_cast<int32_t>(centerX),
          static_cast<int32_t>(centerY),
          width,
          height,
          interpolation,
          quarterTurns};
}

int32_t CoreInterpolation(int32_t interpolation) {
  constexpr int32_t kOfCore[] = {INTERP_NEAREST, INTERP_BILINEAR, INTERP_BICUBIC};
  static_assert(VORLANE_NEAREST == 0 && VORLANE_BILINEAR == 1 && VORLANE_BICUBIC == 2);
  return kOfCore[interpolation];
}

// The longest that side a, with b at a right angle to it, gets by turns of up to `degrees`.
double LongestTurned(int32_t a, int32_t b, double degrees) {
  const double steepest = std::min(Radians(degrees), std::numbers::pi / 2);
  const double longest = std::min(std::atan2(b, a), steepest);
  return a * std::cos(longest) + b * std::sin(longest);
}

}  // namespace

vorlane_status PlanResult(const vorlane_image& page, const vorlane_finding& finding,
                          const vorlane_apply_options& options, Turn* turn) {
  const vorlane_status status = CheckFinding(page, finding, options);
  if (status != VORLANE_OK) return status;
  const bool isTurned = std::abs(finding.turn) >= options.min_turn && finding.turn != 0.0;
  const double degrees = isTurned ? finding.turn : 0.0;
  const CutRect cut = CutOf(page, finding, options, degrees);
  if (IsEmpty(cut)) return VORLANE_BAD_FINDING;

  *turn = isTurned ? PlanSlanted(page, cut, degrees, options.quarter_turns,
                                 CoreInterpolation(options.interpolation))
                   : PlanStraight(page, cut, options.quarter_turns);
  const bool isCentred = turn->centerX >= 0 && turn->centerX < page.width && turn->centerY >= 0 &&
                         turn->centerY < page.height;
  if (!isCentred) return VORLANE_BAD_FINDING;
  const double pixels = static_cast<double>(page.width) * page.height;
  const double resultPixels = static_cast<double>(turn->outWidth) * turn->outHeight;
  return resultPixels <= pixels * options.max_growth ? VORLANE_OK : VORLANE_RESULT_TOO_LARGE;
}

ResultSize MostResultSize(const vorlane_image& page, const vorlane_apply_options& options) {
  const double more = 2 * std::max(options.margin, 0.0) + kRoundingPixels;
  ResultSize most{
      static_cast<int32_t>(LongestTurned(page.width, page.height, options.max_turn) + more),
      static_cast<int32_t>(LongestTurned(page.height, page.width, options.max_turn) + more)};
  if (options.quarter_turns % 2 != 0) std::swap(most.width, most.height);
  return most;
}

SourcePixel PixelBelowCentre(const Turn& turn, int32_t rowsBelow) {
  constexpr SourcePixel kSteps[] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
  const SourcePixel step = kSteps[turn.quarterTurns];
  return {turn.centerX + step.x * rowsBelow, turn.centerY + step.y * rowsBelow};
}

}  // namespace vorlane::apply
