#include "omr/early_points.h"

#include <algorithm>
#include <cstring>

#include "omr/block_points.h"

namespace vorlanepic::omr {
namespace {

// Room for `needed` elements, with a share more than before each time, so that the cost of moving
// them stays in proportion to their number and little is left empty.
template <typename T>
bool Grow(uint64_t needed, frame::ScratchArray<T>* array) {
  constexpr size_t kShare = 8;
  if (needed <= array->size()) return true;
  if (needed > SIZE_MAX / sizeof(T)) return false;
  const size_t size = std::max(static_cast<size_t>(needed), array->size() / kShare * (kShare + 1));
  return array->Grow(size - array->size());
}

}  // namespace

bool EarlyPoints::Reserve(uint64_t more) { return Grow(pointCount + more + kSparePoints, &points); }

bool EarlyPoints::Append(const EarlyPoints& next) {
  if (!Reserve(next.pointCount) || !Grow(areaCount + 1 + next.areaCount, &areas)) return false;
  if (next.pointCount > 0) {
    std::memcpy(&points[pointCount], next.points.data(), next.pointCount * sizeof(BlockPoint));
  }
  pointCount += next.pointCount;
  areas[areaCount++] = static_cast<uint32_t>(next.own.area);
  std::copy_n(next.areas.data(), next.areaCount, areas.data() + areaCount);
  areaCount += next.areaCount;
  Fold(next.own, &merged);
  Fold(next.merged, &merged);
  return true;
}

BlockTotal EarlyPoints::Total() const {
  BlockTotal total = own;
  for (size_t i = 0; i < areaCount; ++i) {
    ReserveMerged(areas[i], &total);
    total.area += areas[i];
  }
  const int64_t area = total.area;
  Fold(merged, &total);
  total.area = area;
  return total;
}

}  // namespace vorlanepic::omr
