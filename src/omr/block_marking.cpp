#include "omr/block_marking.h"

#include <algorithm>

#include "omr/block_growth.h"
#include "omr/row_runs.h"

namespace vorlanepic::omr {
namespace {

// How many pixels of a run, from its start on, count for its range of values. The pixel at the last
// column is taken into a run unseen, and so are the gap and the later runs that joining adds.
template <typename Foreground>
size_t SeenPixels(const Foreground& foreground, const uint8_t* row, const PixelRun& run,
                  int32_t lastColumn, bool joins) {
  int32_t end = std::max(std::min(run.end, lastColumn), run.start + 1);
  if (joins) {
    int32_t x = run.start + 1;
    while (x < end && foreground.Has(row[x])) ++x;
    end = x;
  }
  return static_cast<size_t>(end - run.start);
}

// Links the `count` runs of row `y` at growth->nextRuns().
template <typename Foreground>
void AddRow(const Foreground& foreground, const GreyView& image, int32_t y, int32_t lastColumn,
            bool joins, size_t count, BlockGrowth* growth) {
  const uint8_t* row = image.Row(y);
  ValueRange values;
  if (count > 0) {
    const PixelRun* runs = growth->nextRuns();
    const int32_t start = runs[0].start;
    values =
        RangeOfMarked(foreground, row + start, static_cast<size_t>(runs[count - 1].end - start));
  }
  // Runs have their own ranges to be found only where the row's marked pixels differ at all.
  const bool isUniform = values.lowest == values.highest;
  const size_t first = growth->RowStart(growth->rowCount());
  growth->LinkRow(count, isUniform ? values : ValueRange{});
  if (isUniform) return;
  for (size_t r = first; r < first + count; ++r) {
    const PixelRun& run = growth->run(r);
    const size_t seen = SeenPixels(foreground, row, run, lastColumn, joins);
    growth->WidenValues(r, RangeOf(row + run.start, seen, image.BytesFrom(run.start, y)));
  }
}

template <typename Foreground>
bool GrowBlocks(const Foreground& foreground, const GreyView& image, const BlockMarkParam& param,
                const frame::PixelRect& area, BlockHandBack* handBack) {
  BlockGrowth growth;
  const int32_t columns = area.right - area.left + 1;
  const int32_t rows = columns > 0 ? area.bottom - area.top + 1 : 0;
  if (!growth.Begin(area.top, static_cast<size_t>(std::max(rows, 0)))) return false;
  const bool joins = param.joinGap != 0;
  const bool filters = FiltersRuns(param);
  const auto handOver = [&] {
    growth.MarkOpen();
    return handBack->HandOver(&growth);
  };
  for (int32_t i = 0; i < rows; ++i) {
    // An empty row ends every block: they are handed over while their runs are still in the cache.
    const bool isRowEmpty = growth.lastRowStart() == growth.runCount();
    const bool isTime = growth.isFull() || (isRowEmpty && growth.runCount() > 0);
    if (isTime && !handOver()) return false;
    if (!growth.ReserveRow(MaxRuns(columns))) {
      static_cast<void>(handOver());  // what is finished by then stays in the set
      return false;
    }
    const int32_t y = area.top + i;
    PixelRun* runs = growth.nextRuns();
    size_t count = CutRow(foreground, image.Row(y), area.left, area.right, runs);
    if (filters) count = FilterRuns(param, runs, count);
    AddRow(foreground, image, y, area.right, joins, count, &growth);
  }
  return handBack->HandOver(&growth);
}

bool IsConsistent(const BlockSetRec& set) {
  return set.count >= 0 && set.count <= std::max(set.capacity, 0) &&
         (set.blocks != nullptr || set.count == 0);
}

}  // namespace

template <typename Foreground>
int32_t MarkBlocks(const Foreground& foreground, const GreyView& image, const BlockMarkParam& param,
                   const SearchRect& rect, int32_t shortestDiagonal, BlockSetRec* set) {
  frame::PixelRect area{};
  if (!ClipToImage(rect, image.width, image.height, &area)) return BAD_ARGUMENT;
  if (!IsConsistent(*set)) return kInconsistentSet;
  BlockHandBack handBack(shortestDiagonal, set);
  if (!GrowBlocks(foreground, image, param, area, &handBack)) return OUT_OF_MEMORY;
  return handBack.Finish() ? STATUS_OK : OUT_OF_MEMORY;
}

template int32_t MarkBlocks(const DarkPixels&, const GreyView&, const BlockMarkParam&,
                            const SearchRect&, int32_t, BlockSetRec*);
template int32_t MarkBlocks(const NonZeroPixels&, const GreyView&, const BlockMarkParam&,
                            const SearchRect&, int32_t, BlockSetRec*);

}  // namespace vorlanepic::omr
