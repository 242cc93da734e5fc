#include "omr/selection_order.h"

#include <algorithm>
#include <span>
#include <utility>

#include "frame/scratch.h"

namespace vorlanepic::omr {
namespace {

// Orders by key, then by record.
uint64_t Ranked(int32_t key, uint32_t record) {
  return static_cast<uint64_t>(static_cast<uint32_t>(key) ^ 0x80000000U) << 32 | record;
}

uint32_t KeyOf(uint64_t ranked) { return static_cast<uint32_t>(ranked >> 32); }

// Which record stands at each place, and the place of each record. A record is named by the place
// at which it stood at first.
class Standing {
 public:
  [[nodiscard]] bool Begin(size_t count) {
    if (!records_.Allocate(count) || !places_.Allocate(count)) return false;
    for (size_t i = 0; i < count; ++i) records_[i] = places_[i] = static_cast<uint32_t>(i);
    return true;
  }

  uint32_t PlaceOf(uint32_t record) const { return places_[record]; }
  std::span<uint32_t> records() { return records_.span(); }

  void Exchange(size_t place, size_t other) {
    std::swap(records_[place], records_[other]);
    places_[records_[place]] = static_cast<uint32_t>(place);
    places_[records_[other]] = static_cast<uint32_t>(other);
  }

 private:
  frame::ScratchArray<uint32_t> records_;
  frame::ScratchArray<uint32_t> places_;
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
  frame::ScratchArray<uint64_t> ranked;
  Standing standing;
  if (!ranked.Allocate(size) || !standing.Begin(size)) {
    SelectionSortPlain(blocks, count, key);
    return;
  }
  for (size_t i = 0; i < size; ++i) {
    ranked[i] = Ranked(blocks[i].*key, static_cast<uint32_t>(i));
  }
  std::sort(ranked.data(), ranked.data() + size);

  for (size_t first = 0; first < size;) {
    const uint32_t equalKey = KeyOf(ranked[first]);
    size_t end = first;
    for (; end < size && KeyOf(ranked[end]) == equalKey; ++end) {
      // Where exchanges for smaller keys have put the record by now.
      ranked[end] = standing.PlaceOf(static_cast<uint32_t>(ranked[end]));
    }
    // The records of this key stand still while they are chosen, so that they come in this order.
    std::sort(ranked.data() + first, ranked.data() + end);
    for (; first < end; ++first) standing.Exchange(first, static_cast<uint32_t>(ranked[first]));
  }
  Permute(blocks, standing.records());
}

void SelectionSortPlain(BlockRec* blocks, int32_t count, int32_t BlockRec::*key) {
  for (int32_t i = 0; i + 1 < count; ++i) {
    const BlockRec* found =
        std::min_element(blocks + i, blocks + count,
                         [key](const BlockRec& a, const BlockRec& b) { return a.*key < b.*key; });
    if (found != blocks + i) std::swap(blocks[i], blocks[found - blocks]);
  }
}

}  // namespace vorlanepic::omr
