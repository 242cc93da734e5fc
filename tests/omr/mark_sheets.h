// Drawn mark sheets: a light sheet on a dark scanner background, with dark bars.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

// 800 x 500 pixels; the sheet covers columns 40..760 and rows 30..469, so that the column and the
// row behind those where it is found are still light.
class MarkSheet {
 public:
  static constexpr int32_t kWidth = 800;
  static constexpr int32_t kHeight = 500;

  MarkSheet() : pixels_(kWidth * kHeight, 20) { Fill(40, 30, 760, 469, 230); }

  // Columns and rows are inclusive.
  void Fill(int32_t left, int32_t top, int32_t right, int32_t bottom, uint8_t grey) {
    for (int32_t y = top; y <= bottom; ++y) {
      for (int32_t x = left; x <= right; ++x) At(x, y) = grey;
    }
  }

  // A bar whose edges go down by `descent` rows over its length; `thickness` may depend on the
  // column, counted from the bar's left.
  void DrawWideBar(int32_t left, int32_t top, int32_t length, double descent,
                   const std::function<int32_t(int32_t)>& thickness) {
    for (int32_t i = 0; i < length; ++i) {
      const auto y = top + static_cast<int32_t>(descent * i / length);
      Fill(left + i, y, left + i, y + thickness(i) - 1, 10);
    }
  }
  void DrawWideBar(int32_t left, int32_t top, int32_t length, double descent, int32_t thickness) {
    DrawWideBar(left, top, length, descent, [=](int32_t) { return thickness; });
  }

  uint8_t& At(int32_t x, int32_t y) {
    return pixels_[static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)];
  }
  uint8_t* pixels() { return pixels_.data(); }

  // Limits of 300 pixels and 4..20 of thickness unless told otherwise.
  int32_t Angle(double* angle, int32_t threshold = 128, int32_t minLength = 300,
                int32_t minThickness = 4, int32_t maxThickness = 20) {
    return get_angle_omr(pixels_.data(), kHeight, kWidth, threshold, minLength, minThickness,
                         maxThickness, angle);
  }

 private:
  std::vector<uint8_t> pixels_;
};

}  // namespace vorlanepic::testing
