#include "engine/evidence/light_beyond.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::ScratchArray;

// Pixels looked at along the picture's longer side.
constexpr int32_t kSamples = 800;
// Light counts that is beyond a side for this share of the longer side.
constexpr double kLeastShare = 0.01;
// The soft edge of the page itself, in pixels.
constexpr double kSoftEdge = 2.0;

// A gap is this wide, in pixels, and at most this share of it is light: dust, and streaks that run
// across it. The page's corners, whose sides may be torn, are left out by this share of the longer
// side; places along the side are looked at this far apart.
constexpr int32_t kGapPixels = 4;
constexpr double kLightInGap = 0.02;
constexpr double kCornerShare = 0.03;
constexpr double kPlacesShare = 1.0 / 600;
constexpr int32_t kFewestPlaces = 20;

// Spreads from the page over the light around it, on a grid of pixels `step` apart.
class LightSpreader {
 public:
  LightSpreader(const PageLevels& page, uint8_t threshold,
                std::span<const HalfPlane, kSides> region)
      : page_(page),
        threshold_(threshold),
        region_(region),
        step_(std::max(1, (page.size() + kSamples - 1) / kSamples)),
        width_((page.width() + step_ - 1) / step_),
        height_((page.height() + step_ - 1) / step_),
        bins_(static_cast<size_t>(width_ + height_) * 2) {}

  bool Prepare() {
    const auto cells = static_cast<size_t>(width_) * static_cast<size_t>(height_);
    if (!inside_.Allocate(static_cast<size_t>(height_)) || !reached_.Allocate(cells)) return false;
    for (ScratchArray<float>& depths : depths_) {
      if (!depths.Allocate(bins_)) return false;
    }
    std::array<HalfPlane, kSides> grid{};
    for (size_t i = 0; i < kSides; ++i) {
      grid[i] = {region_[i].a * step_, region_[i].b * step_, region_[i].c};
    }
    for (int32_t y = 0; y < height_; ++y) {
      inside_[static_cast<size_t>(y)] = RowOfRegion(grid, y, width_);
    }
    return true;
  }

  // False when there is no memory.
  bool Spread() {
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) {
        if (IsInside(x, y)) {
          x = inside_[static_cast<size_t>(y)].to - 1;
        } else if (IsLight(x, y) && TouchesPage(x, y) && !SpreadFrom(x, y)) {
          return false;
        }
      }
    }
    return true;
  }

  // The depth that enough places along a side reach.
  double DepthOf(size_t side) {
    const auto places = static_cast<size_t>(std::max(3.0, kLeastShare * page_.size() / step_));
    if (places >= bins_) return 0.0;
    float* depths = depths_[side].data();
    std::nth_element(depths, depths + places, depths + bins_, std::greater<>());
    return depths[places];
  }

 private:
  struct Cell {
    int32_t x;
    int32_t y;
  };

  bool IsWithin(int32_t x, int32_t y) const {
    return x >= 0 && y >= 0 && x < width_ && y < height_;
  }
  bool IsInside(int32_t x, int32_t y) const {
    const ColumnSpan& span = inside_[static_cast<size_t>(y)];
    return x >= span.from && x < span.to;
  }
  bool IsLight(int32_t x, int32_t y) const { return page_.Row(y * step_)[x * step_] >= threshold_; }

  bool TouchesPage(int32_t x, int32_t y) const {
    constexpr Cell kNeighbours[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    return std::ranges::any_of(kNeighbours, [&](Cell by) {
      const int32_t nextX = x + by.x;
      const int32_t nextY = y + by.y;
      return IsWithin(nextX, nextY) && IsInside(nextX, nextY) && IsLight(nextX, nextY);
    });
  }

  bool SpreadFrom(int32_t x, int32_t y) {
    if (!Reach(x, y)) return false;
    while (used_ > 0) {
      const Cell cell = stack_[--used_];
      if (!Reach(cell.x - 1, cell.y) || !Reach(cell.x + 1, cell.y) || !Reach(cell.x, cell.y - 1) ||
          !Reach(cell.x, cell.y + 1)) {
        return false;
      }
    }
    return true;
  }

  bool Reach(int32_t x, int32_t y) {
    if (!IsWithin(x, y) || IsInside(x, y) || !IsLight(x, y)) return true;
    uint8_t& isReached =
        reached_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
    if (isReached != 0) return true;
    isReached = 1;
    Note(x, y);
    if (used_ == stack_.size() && !stack_.Grow(used_ + 4096)) return false;
    stack_[used_++] = {x, y};
    return true;
  }

  // Notes how deep beyond the side that it lies farthest beyond a place is.
  void Note(int32_t x, int32_t y) {
    const double pictureX = x * step_;
    const double pictureY = y * step_;
    size_t side = 0;
    double deepest = -INFINITY;
    for (size_t i = 0; i < kSides; ++i) {
      const double depth = -region_[i].Inside(pictureX, pictureY);
      if (depth > deepest) {
        deepest = depth;
        side = i;
      }
    }
    if (deepest <= kSoftEdge) return;
    const double along = (region_[side].a * pictureY - region_[side].b * pictureX) / step_;
    const auto bin = static_cast<size_t>(
        std::clamp(along + static_cast<double>(bins_) / 2, 0.0, static_cast<double>(bins_ - 1)));
    depths_[side][bin] = std::max(depths_[side][bin], static_cast<float>(deepest));
  }

  const PageLevels& page_;
  uint8_t threshold_;
  std::span<const HalfPlane, kSides> region_;
  int32_t step_;
  int32_t width_;
  int32_t height_;
  size_t bins_;                      // places along a side, a grid step each
  ScratchArray<ColumnSpan> inside_;  // of each row of the grid
  ScratchArray<uint8_t> reached_;
  std::array<ScratchArray<float>, kSides> depths_;
  ScratchArray<Cell> stack_;
  size_t used_ = 0;
};

// The share of light on the line `depth` beyond a side, between the neighbouring sides; negative
// where too little of it is inside the picture.
double LightShareAt(const PageLevels& page, uint8_t threshold,
                    std::span<const HalfPlane, kSides> region, size_t side, double depth) {
  const HalfPlane& plane = region[side];
  const double startX = plane.a * (plane.c - depth);
  const double startY = plane.b * (plane.c - depth);
  double low = -2.0 * page.size();
  double high = 2.0 * page.size();
  for (const size_t next : {(side + 1) % kSides, (side + 3) % kSides}) {
    const double slope = region[next].b * plane.a - region[next].a * plane.b;
    const double place = (kCornerShare * page.size() - region[next].Inside(startX, startY)) / slope;
    if (slope > 0.0) {
      low = std::max(low, place);
    } else {
      high = std::min(high, place);
    }
  }
  int32_t looked = 0;
  int32_t light = 0;
  const double step = std::max(1.0, kPlacesShare * page.size());
  const auto places = static_cast<int32_t>(std::max(0.0, (high - low) / step + 1.0));
  for (int32_t i = 0; i < places; ++i) {
    const double t = low + i * step;
    const double x = std::round(startX - plane.b * t);
    const double y = std::round(startY + plane.a * t);
    if (x < 0.0 || y < 0.0 || x >= page.width() || y >= page.height()) continue;
    ++looked;
    light += page.Row(static_cast<int32_t>(y))[static_cast<size_t>(x)] >= threshold;
  }
  return looked >= kFewestPlaces ? static_cast<double>(light) / looked : -1.0;
}

}  // namespace

double FirstGapBeyond(const PageLevels& page, uint8_t threshold,
                      std::span<const HalfPlane, kSides> region, Side side) {
  int32_t dark = 0;
  for (int32_t depth = 0; depth < page.size(); ++depth) {
    const double share = LightShareAt(page, threshold, region, static_cast<size_t>(side), depth);
    if (share < 0.0) break;
    dark = share <= kLightInGap ? dark + 1 : 0;
    if (dark == kGapPixels) return depth - kGapPixels + 1.0;
  }
  return INFINITY;
}

bool MeasureLightBeyond(const PageLevels& page, uint8_t threshold,
                        std::span<const HalfPlane, kSides> region,
                        std::array<double, kSides>* depths) {
  LightSpreader spreader(page, threshold, region);
  if (!spreader.Prepare() || !spreader.Spread()) return false;
  for (size_t i = 0; i < kSides; ++i) (*depths)[i] = spreader.DepthOf(i);
  return true;
}

}  // namespace vorlane::evidence
