#include "omr/selection_order.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "frame/scratch.h"

namespace vorlanepic {
namespace {

// The smallest of the keys at each place, and of equal ones the first: a binary tree whose leaves
// are the places and whose inner nodes hold the smaller of their two children.
class FirstSmallest {
 public:
  [[nodiscard]] bool Build(const BlockRec* blocks, size_t count, int32_t BlockRec::*key) {
    leaves_ = std::bit_ceil(count);
    if (!nodes_.Allocate(2 * leaves_)) return false;
    for (size_t i = 0; i < leaves_; ++i) {
      nodes_[leaves_ + i] = i < count ? Ranked(blocks[i].*key, i) : kTaken;
    }
    for (size_t node = leaves_ - 1; node > 0; --node) Settle(node);
    return true;
  }

  size_t Place() const { return static_cast<size_t>(nodes_[1] & UINT32_MAX); }

  // Takes place `from` out; the key that stood there now stands at `to`.
  void Move(size_t from, size_t to) {
    const uint64_t moved = nodes_[leaves_ + from];
    Set(from, kTaken);
    if (from != to) Set(to, (moved & ~uint64_t{UINT32_MAX}) | to);
  }

 private:
  static constexpr uint64_t kTaken = UINT64_MAX;

  // Orders by key, then by place.
  static uint64_t Ranked(int32_t key, size_t place) {
    return static_cast<uint64_t>(static_cast<uint32_t>(key) ^ 0x80000000U) << 32 | place;
  }

  void Settle(size_t node) { nodes_[node] = std::min(nodes_[2 * node], nodes_[2 * node + 1]); }

  void Set(size_t place, uint64_t value) {
    size_t node = leaves_ + place;
    nodes_[node] = value;
    while ((node /= 2) > 0) Settle(node);
  }

  ScratchArray<uint64_t> nodes_;
  size_t leaves_ = 0;
};

// Moves each record to its place: places[i] is where the record for place i stands. Uses up
// `places`.
void Permute(BlockRec* blocks, std::span<uint32_t> places) {
  for (size_t first = 0; first < places.size(); ++first) {
    if (places[first] == first) continue;
    const BlockRec held = blocks[first];
    size_t to = first;
    while (places[to] != first) {
      const size_t from = std::exchange(places[to], static_cast<uint32_t>(to));
      blocks[to] = blocks[from];
      to = from;
    }
    places[to] = static_cast<uint32_t>(to);
    blocks[to] = held;
  }
}

}  // namespace

void SelectionSort(BlockRec* blocks, int32_t count, int32_t BlockRec::*key) {
  if (count < 2) return;
  const auto size = static_cast<size_t>(count);
  FirstSmallest smallest;
  ScratchArray<uint32_t> places;
  if (!places.Allocate(size) || !smallest.Build(blocks, size, key)) {
    SelectionSortPlain(blocks, count, key);
    return;
  }
  for (size_t i = 0; i < size; ++i) places[i] = static_cast<uint32_t>(i);
  for (size_t i = 0; i < size; ++i) {
    const size_t found = smallest.Place();
    smallest.Move(i, found);
    std::swap(places[i], places[found]);
  }
  Permute(blocks, places.span());
}

void SelectionSortPlain(BlockRec* blocks, int32_t count, int32_t BlockRec::*key) {
  for (int32_t i = 0; i + 1 < count; ++i) {
    const BlockRec* found =
        std::min_element(blocks + i, blocks + count,
                         [key](const BlockRec& a, const BlockRec& b) { return a.*key < b.*key; });
    if (found != blocks + i) std::swap(blocks[i], blocks[found - blocks]);
  }
}

}  // namespace vorlanepic
