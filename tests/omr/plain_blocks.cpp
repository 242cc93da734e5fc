#include "omr/plain_blocks.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "frame/arithmetic.h"

namespace vorlanepic::testing {

namespace {

struct PlainRun {
  int32_t start;
  int32_t end;  // inclusive
  int32_t y;
  int32_t label;
  uint32_t minValue;
  uint32_t maxValue;
};
using PlainRow = std::vector<PlainRun>;

PlainBlock& At(PlainSet* set, int32_t i) { return set->blocks[static_cast<size_t>(i)]; }

void AppendRunPoints(PlainBlock* block, const PlainRun& run) {
  const int32_t n = run.end - run.start + 1;
  BlockRec& rec = block->rec;
  if (rec.pointCount + n >= rec.pointCapacity) {
    rec.pointCapacity = std::max((rec.pointCapacity + n) * 2, 512);
  }
  for (int32_t x = run.start; x <= run.end; ++x) {
    block->points.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(run.y)});
  }
  rec.pointCount += n;
}

void AppendBlockPoints(PlainBlock* block, const PlainBlock& other) {
  BlockRec& rec = block->rec;
  const int32_t sum = rec.pointCount + other.rec.pointCount;
  if (sum >= rec.pointCapacity) rec.pointCapacity = sum + 1024;
  block->points.insert(block->points.end(), other.points.begin(), other.points.end());
  rec.pointCount = sum;
}

void GrowFull(PlainSet* set) {
  if (static_cast<int32_t>(set->blocks.size()) >= set->capacity) set->capacity += 100;
}

void AddSums(BlockRec* rec, const BlockRec& other) {
  rec->area += other.area;
  rec->centerX = frame::WrapAdd(rec->centerX, other.centerX);
  rec->centerY = frame::WrapAdd(rec->centerY, other.centerY);
  rec->minValue = std::min(rec->minValue, other.minValue);
  rec->maxValue = std::max(rec->maxValue, other.maxValue);
  rec->top = std::min(rec->top, other.top);
  rec->bottom = std::max(rec->bottom, other.bottom);
  rec->left = std::min(rec->left, other.left);
  rec->right = std::max(rec->right, other.right);
}

BlockRec RecordOf(const PlainRun& run) {
  BlockRec rec{};
  for (int32_t x = run.start; x <= run.end; ++x) {
    ++rec.area;
    rec.centerX = frame::WrapAdd(rec.centerX, x);
    rec.centerY = frame::WrapAdd(rec.centerY, run.y);
  }
  rec.left = run.start;
  rec.right = run.end;
  rec.top = rec.bottom = run.y;
  rec.state = BLOCK_GROWING;
  rec.reserved1 = rec.reserved2 = -1;
  rec.minValue = run.minValue;
  rec.maxValue = run.maxValue;
  return rec;
}

void OpenBlock(PlainRun* run, PlainSet* set) {
  GrowFull(set);
  PlainBlock block;
  block.rec = RecordOf(*run);
  block.rec.root = run->label = static_cast<int32_t>(set->blocks.size());
  AppendRunPoints(&block, *run);
  set->blocks.push_back(block);
}

void AddRun(const PlainRun& run, PlainSet* set) {
  GrowFull(set);
  PlainBlock& block = At(set, run.label);
  AddSums(&block.rec, RecordOf(run));
  AppendRunPoints(&block, run);
}

void AddUniqueIndex(std::vector<int32_t>* children, int32_t index) {
  if (std::find(children->begin(), children->end(), index) == children->end()) {
    children->push_back(index);
  }
}

void Reparent(PlainSet* set, int32_t from, int32_t to) {
  for (const int32_t k : At(set, from).children) {
    if (!At(set, k).children.empty()) Reparent(set, k, to);
    At(set, k).rec.root = to;
    AddUniqueIndex(&At(set, to).children, k);
  }
  At(set, from).children.clear();
}

void Merge(PlainSet* set, int32_t a, int32_t b) {
  if (a != b) {
    AddUniqueIndex(&At(set, a).children, b);
    Reparent(set, b, a);
    At(set, b).rec.state = BLOCK_MERGED;
  }
  At(set, b).rec.root = a;
}

int32_t RootOf(PlainSet* set, const PlainRun& run) { return At(set, run.label).rec.root; }

void FinishBlock(PlainSet* set, int32_t index, bool isRoot) {
  PlainBlock& block = At(set, index);
  for (const int32_t k : block.children) {
    if (!At(set, k).children.empty()) FinishBlock(set, k, false);
    if (At(set, k).rec.pointCount > 0) AppendBlockPoints(&block, At(set, k));
    AddSums(&block.rec, At(set, k).rec);
  }
  if (!isRoot) return;
  BlockRec& rec = block.rec;
  rec.state = BLOCK_FINISHED;
  rec.height = rec.bottom - rec.top + 1;
  rec.width = rec.right - rec.left + 1;
  const int32_t meanX = rec.centerX / rec.area;
  const int32_t meanY = rec.centerY / rec.area;
  rec.centerX = frame::RoundToInt32(meanX);
  rec.centerY = frame::RoundToInt32(meanY);
}

void LinkRows(const PlainRow& above, PlainRow* row, PlainSet* set) {
  size_t i = 0;
  size_t j = 0;
  while (i < above.size() && j < row->size()) {
    PlainRun& run = (*row)[j];
    const PlainRun& upper = above[i];
    if (run.start <= upper.end + 1 && run.end >= upper.start - 1) {
      if (run.label < 0) {
        run.label = upper.label;
        AddRun(run, set);
      }
      if (j + 1 < row->size() && (*row)[j + 1].start <= upper.end + 1) {
        ++j;
      } else if (i + 1 < above.size() && above[i + 1].start <= run.end + 1) {
        ++i;
        Merge(set, RootOf(set, run), RootOf(set, above[i]));
      } else {
        ++i;
        ++j;
      }
    } else if (run.start > upper.end) {
      ++i;
    } else {
      OpenBlock(&run, set);
      ++j;
    }
  }
  for (PlainRun& run : *row) {
    if (run.label < 0) OpenBlock(&run, set);
  }
  for (const PlainRun& upper : above) {
    const int32_t root = RootOf(set, upper);
    const bool goesOn = std::any_of(row->begin(), row->end(),
                                    [&](const PlainRun& run) { return RootOf(set, run) == root; });
    if (At(set, root).rec.state == BLOCK_GROWING && !goesOn) FinishBlock(set, root, true);
  }
}

void TakeRun(const PlainRun& run, const BlockMarkParam& param, PlainRow* row) {
  const bool isLimited = param.minRunLen != 0 && param.maxRunLen != 0;
  const int32_t length = run.end - run.start + 1;
  if (isLimited && (length < param.minRunLen || length > param.maxRunLen)) return;
  if (param.joinGap != 0 && !row->empty() && run.start - row->back().end <= param.joinGap) {
    row->back().end = run.end;
    const int32_t joined = run.end - row->back().start + 1;
    if (isLimited && joined >= param.maxRunLen) row->pop_back();
    return;
  }
  row->push_back(run);
}

template <typename IsMarked>
PlainRow CutRow(const uint8_t* pixels, int32_t y, int32_t first, int32_t last,
                const BlockMarkParam& param, IsMarked isMarked) {
  PlainRow row;
  for (int32_t x = first; x <= last; ++x) {
    if (!isMarked(pixels[x])) continue;
    PlainRun run{x, x, y, -1, pixels[x], pixels[x]};
    for (++x; x < last && isMarked(pixels[x]); ++x) {
      run.minValue = std::min<uint32_t>(run.minValue, pixels[x]);
      run.maxValue = std::max<uint32_t>(run.maxValue, pixels[x]);
    }
    run.end = x >= last ? last : x - 1;
    TakeRun(run, param, &row);
  }
  return row;
}

// First and last place that a rectangle covers along one axis; false when it begins beyond `size`.
bool Clip(int64_t origin, int64_t extent, int64_t size, int64_t* first, int64_t* last) {
  *first = extent < 0 ? origin + extent : origin;
  if (*first >= size) return false;
  *first = std::max<int64_t>(*first, 0);
  *last = *first + std::abs(extent);
  if (*last >= size) *last = size - 1;
  return true;
}

}  // namespace

bool IsDark(uint8_t value, uint8_t threshold) { return value <= threshold; }
bool IsNonZero(uint8_t value, uint8_t /*threshold*/) { return value != 0; }

int32_t MarkPlainly(const uint8_t* image, int32_t height, int32_t width,
                    const BlockMarkParam& param, const BlockRect& rect,
                    bool (*isMarked)(uint8_t value, uint8_t threshold), PlainSet* set) {
  int64_t left = 0;
  int64_t right = 0;
  int64_t top = 0;
  int64_t bottom = 0;
  if (!Clip(rect.x, rect.w, width, &left, &right)) return BAD_ARGUMENT;
  if (!Clip(rect.y, rect.h, height, &top, &bottom)) return BAD_ARGUMENT;
  PlainRow above;
  for (int64_t y = top; y <= bottom; ++y) {
    const auto test = [&](uint8_t value) { return isMarked(value, param.threshold); };
    PlainRow row = CutRow(image + y * width, static_cast<int32_t>(y), static_cast<int32_t>(left),
                          static_cast<int32_t>(right), param, test);
    LinkRows(above, &row, set);
    above = std::move(row);
  }
  std::vector<PlainBlock> finished;
  for (int32_t i = 0; i < static_cast<int32_t>(set->blocks.size()); ++i) {
    if (At(set, i).rec.state == BLOCK_GROWING) FinishBlock(set, i, true);
    if (At(set, i).rec.state != BLOCK_FINISHED) continue;
    At(set, i).rec.root = static_cast<int32_t>(finished.size());
    finished.push_back(std::move(At(set, i)));
  }
  set->blocks = std::move(finished);
  return STATUS_OK;
}

}  // namespace vorlanepic::testing
