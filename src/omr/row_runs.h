// Cuts a row of pixels into the runs that block marking works on.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "omr/foreground.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Marked pixels of one row, in columns start .. end - 1. The runs of a row go from left to right
// and are at least one column apart. Cutting leaves `block` and `next` to those who link runs.
struct PixelRun {
  int32_t start;
  int32_t end;
  int32_t block;  // the block that the run was added to
  int32_t next;   // the run that was added to that block after this one; -1: none
};

// At most INT32_MAX: columns are not negative.
inline int32_t Length(const PixelRun& run) { return run.end - run.start; }

// Most runs in a row of `columns` columns.
constexpr size_t MaxRuns(int32_t columns) { return static_cast<size_t>(columns) / 2 + 1; }

// Writes the runs of marked pixels among columns first..last of `row` to `runs`, which has room for
// MaxRuns of them, and returns how many there are. A run that comes up to the last column includes
// it, whatever that pixel is.
template <typename Foreground>
size_t CutRow(const Foreground& foreground, const uint8_t* row, int32_t first, int32_t last,
              PixelRun* runs) {
  constexpr int32_t kWord = 64;
  PixelRun* run = runs;
  bool isOpen = false;
  for (int32_t x = first; x <= last; x += kWord) {
    const int32_t left = last - x + 1;
    uint64_t bits = 0;
    if (left >= kWord) {
      bits = MarkedBits64(foreground, row + x);
    } else {
      uint8_t tail[kWord] = {};
      std::memcpy(tail, row + x, static_cast<size_t>(left));
      bits = MarkedBits64(foreground, tail) & ((uint64_t{1} << left) - 1);
    }
    // A set bit wherever a pixel differs from the one before it: starts and ends in turn.
    uint64_t changes = bits ^ (bits << 1 | static_cast<uint64_t>(isOpen));
    for (; changes != 0; changes &= changes - 1) {
      const int32_t change = x + std::countr_zero(changes);
      if (isOpen) {
        run++->end = change;
      } else {
        run->start = change;
      }
      isOpen = !isOpen;
    }
    if (left <= kWord) break;  // x + kWord may pass the largest column there is
  }
  if (isOpen) run++->end = last + 1;
  if (run != runs && run[-1].end == last) run[-1].end = last + 1;
  return static_cast<size_t>(run - runs);
}

// Whether FilterRuns does anything with these parameters.
inline bool FiltersRuns(const BlockMarkParam& param) {
  return param.joinGap != 0 || (param.minRunLen != 0 && param.maxRunLen != 0);
}

// Drops the runs whose length `param` rules out and joins those that are near enough, in place, and
// returns how many remain. A joined run counts its gaps as marked.
size_t FilterRuns(const BlockMarkParam& param, PixelRun* runs, size_t count);

}  // namespace vorlanepic::omr
