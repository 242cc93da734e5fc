#include "engine/judge/content.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "engine/judge/page_axes.h"

namespace vorlane::judge {
namespace {

// Ink of fewer pixels in a row or column of the turned page is dust.
constexpr int32_t kLeastInk = 3;
// Kept around the print, as a share of the picture's longer side.
constexpr double kAround = 0.01;

// Ink counted along one direction of the turned page, a bin for each pixel of the reduced picture.
class InkProfile {
 public:
  bool Prepare(double extent) {
    middle_ = extent / 2;
    return counts_.Allocate(static_cast<size_t>(extent) + 2);
  }

  void Add(double place) {
    const double bin = std::clamp(place + middle_, 0.0, static_cast<double>(counts_.size() - 1));
    ++counts_[static_cast<size_t>(bin)];
  }

  // Where the print begins and ends; false where there is none.
  bool Ends(double* low, double* high) const {
    const auto isInk = [](int32_t count) { return count >= kLeastInk; };
    const auto counts = counts_.span();
    const auto first = std::find_if(counts.begin(), counts.end(), isInk);
    if (first == counts.end()) return false;
    const auto last = std::find_if(counts.rbegin(), counts.rend(), isInk).base();
    *low = static_cast<double>(first - counts.begin()) - middle_;
    *high = static_cast<double>(last - counts.begin()) - middle_;
    return true;
  }

 private:
  double middle_ = 0.0;
  vorlanepic::frame::ScratchArray<int32_t> counts_;
};

}  // namespace

bool NarrowToContent(const evidence::PageLevels& page, const evidence::InkPicture& ink,
                     double degrees, CutRect* cut) {
  const double scale = static_cast<double>(1 << page.reduced().shift);
  const PageAxes axes = PageAxes::Of(degrees, page.width(), page.height());
  InkProfile across;
  InkProfile down;
  const double extent = std::hypot(page.width(), page.height()) / scale;
  if (!across.Prepare(extent) || !down.Prepare(extent)) return false;
  for (int32_t y = 0; y < ink.height; ++y) {
    const uint8_t* row = ink.Row(y);
    for (int32_t x = 0; x < ink.width; ++x) {
      if (row[x] == 0) continue;
      const Point place = axes.ToPage({x * scale, y * scale});
      if (place.x < cut->left || place.x > cut->right) continue;
      if (place.y < cut->top || place.y > cut->bottom) continue;
      across.Add(place.x / scale);
      down.Add(place.y / scale);
    }
  }
  CutRect content;
  if (!across.Ends(&content.left, &content.right)) return false;
  if (!down.Ends(&content.top, &content.bottom)) return false;
  const double around = kAround * page.size();
  *cut = {std::max(cut->left, content.left * scale - around),
          std::max(cut->top, content.top * scale - around),
          std::min(cut->right, content.right * scale + around),
          std::min(cut->bottom, content.bottom * scale + around)};
  return true;
}

}  // namespace vorlane::judge
