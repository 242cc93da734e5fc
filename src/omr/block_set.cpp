#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "frame/arithmetic.h"
#include "frame/prefetch.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;

int32_t VORLANEPIC_CDECL overlap_len(int32_t a1, int32_t a2, int32_t b1, int32_t b2) noexcept {
  if (a1 > a2 || b1 > b2) return 0;
  const int32_t first = std::max(a1, b1);
  const int32_t last = std::min(a2, b2);
  return first <= last ? frame::WrapAdd(frame::WrapSub(last, first), 1) : 0;
}

double VORLANEPIC_CDECL block_distance(const BlockRec* blockA, const BlockRec* blockB) noexcept {
  if (blockA == nullptr || blockB == nullptr) return 0.0;
  const int32_t columns = overlap_len(blockA->left, blockA->right, blockB->left, blockB->right);
  const int32_t rows = overlap_len(blockA->top, blockA->bottom, blockB->top, blockB->bottom);
  return std::sqrt(static_cast<double>(
      frame::WrapAdd(frame::WrapMul(columns, columns), frame::WrapMul(rows, rows))));
}

namespace {
constexpr int32_t kListsAhead = 8;
}  // namespace

int32_t VORLANEPIC_CDECL DestoryBlockSetRec(BlockSetRec* set) noexcept {
  if (set == nullptr) return BAD_ARGUMENT;
  if (set->blocks == nullptr) return STATUS_OK;
  for (int32_t i = 0; i < set->count; ++i) {
    // The heap keeps its notes just before each list: out of the cache by now, so call them early.
    if (i + kListsAhead < set->count) frame::Prefetch(set->blocks[i + kListsAhead].points);
    std::free(set->blocks[i].children);
    std::free(set->blocks[i].points);
  }
  std::free(set->blocks);
  *set = {};
  return STATUS_OK;
}
