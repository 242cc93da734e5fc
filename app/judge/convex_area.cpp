#include "app/judge/convex_area.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vorlane::judging {
namespace {

// Twice the area of from, to, p; positive where p lies on the right of the way as seen.
double Turned(Place from, Place to, Place p) {
  return (to.x - from.x) * (p.y - from.y) - (to.y - from.y) * (p.x - from.x);
}

// The part of an outline on the right of a line: one step of Sutherland and Hodgman's clipping.
std::vector<Place> RightOf(const std::vector<Place>& outline, Place from, Place to) {
  std::vector<Place> kept;
  for (size_t i = 0; i < outline.size(); ++i) {
    const Place p = outline[i];
    const Place q = outline[(i + 1) % outline.size()];
    const double atP = Turned(from, to, p);
    const double atQ = Turned(from, to, q);
    if (atP >= 0) kept.push_back(p);
    if ((atP < 0) == (atQ < 0)) continue;
    const double share = atP / (atP - atQ);
    kept.push_back({p.x + (q.x - p.x) * share, p.y + (q.y - p.y) * share});
  }
  return kept;
}

}  // namespace

double Area(const std::vector<Place>& outline) {
  double twice = 0;
  for (size_t i = 2; i < outline.size(); ++i)
    twice += Turned(outline[0], outline[i - 1], outline[i]);
  return twice / 2;
}

std::vector<Place> Common(std::vector<Place> a, const std::vector<Place>& b) {
  for (size_t i = 0; i < b.size(); ++i) a = RightOf(a, b[i], b[(i + 1) % b.size()]);
  return a;
}

std::vector<Place> MovedOut(const std::vector<Place>& rectangle, double pixels) {
  std::vector<Place> moved = rectangle;
  for (size_t i = 0; i < moved.size(); ++i) {
    // A corner moves along both of the sides that meet in it, away from their other ends.
    for (const size_t other : {(i + 1) % 4, (i + 3) % 4}) {
      const double dx = rectangle[i].x - rectangle[other].x;
      const double dy = rectangle[i].y - rectangle[other].y;
      const double length = std::hypot(dx, dy);
      if (!(length > 0)) continue;
      const double step = std::max(pixels, -length / 2) / length;
      moved[i].x += dx * step;
      moved[i].y += dy * step;
    }
  }
  return moved;
}

}  // namespace vorlane::judging
