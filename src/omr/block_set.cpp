#include "omr/block_set.h"

#include <cstdlib>

#include "frame/prefetch.h"

namespace vorlanepic::omr {
namespace {

constexpr int32_t kListsAhead = 8;

}  // namespace

void ReleaseBlocks(BlockSetRec* set) {
  if (set->blocks == nullptr) return;
  for (int32_t i = 0; i < set->count; ++i) {
    // The heap keeps its notes just before each list: out of the cache by now, so call them early.
    if (i + kListsAhead < set->count) frame::Prefetch(set->blocks[i + kListsAhead].points);
    std::free(set->blocks[i].children);
    std::free(set->blocks[i].points);
  }
  std::free(set->blocks);
  *set = {};
}

}  // namespace vorlanepic::omr
