// The turn in integers: how far the source moves per step in the output.
#pragma once

#include <cstdint>

#include "frame/arithmetic.h"
#include "frame/scratch.h"

namespace vorlanepic {

// Offsets in hundredths of a source pixel for k steps in the output, k = 0 .. size - 1. Steps
// beyond the int32 range hold INT32_MIN.
class StepTables {
 public:
  // Fills tables of `size` entries for a turn by `angle` radians. False when there is no memory.
  [[nodiscard]] bool Build(double angle, size_t size);

  // Offsets for k steps in either direction, |k| < size.
  int32_t Cos(int32_t k) const { return Signed(cos_, k); }
  int32_t Sin(int32_t k) const { return Signed(sin_, k); }

 private:
  static int32_t Signed(const ScratchArray<int32_t>& table, int32_t k) {
    return k >= 0 ? table[static_cast<size_t>(k)] : WrapSub(0, table[static_cast<size_t>(-k)]);
  }

  ScratchArray<int32_t> cos_;
  ScratchArray<int32_t> sin_;
};

}  // namespace vorlanepic
