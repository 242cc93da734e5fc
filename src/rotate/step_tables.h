// The turn in integers: how far the source moves per step in the output.
#pragma once

#include <cstdint>

#include "frame/scratch.h"

namespace vorlanepic::rotate {

// Offsets in hundredths of a source pixel for k steps in the output, in either direction. Steps
// beyond the int32 range hold INT32_MIN.
class StepTables {
 public:
  // Fills tables for |k| < `size`, size >= 1, of a turn by `angle` radians and quarter turns on top
  // of it. False when there is no memory.
  [[nodiscard]] bool Build(double angle, size_t size, int32_t quarterTurns = 0);

  int32_t Cos(int32_t k) const { return cos_[IndexOf(k)]; }
  int32_t Sin(int32_t k) const { return sin_[IndexOf(k)]; }

 private:
  size_t IndexOf(int32_t k) const {
    const int32_t index = k + most_;
    return static_cast<size_t>(index);
  }

  int32_t most_ = 0;  // the largest k
  frame::ScratchArray<int32_t> cos_;
  frame::ScratchArray<int32_t> sin_;
};

}  // namespace vorlanepic::rotate
