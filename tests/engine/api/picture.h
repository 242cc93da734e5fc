// Pictures for the page engine's functions, in every format and with rows laid out in every way.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include "vorlane/vorlane.h"

namespace vorlane::testing {

inline constexpr int32_t kFormats[] = {VORLANE_BIT_LIGHT, VORLANE_BIT_DARK, VORLANE_GREY8,
                                       VORLANE_BGR24,     VORLANE_RGB24,    VORLANE_BGRX32,
                                       VORLANE_RGBX32};

enum class Layout { kTight, kPadded, kBottomFirst };
inline constexpr Layout kLayouts[] = {Layout::kTight, Layout::kPadded, Layout::kBottomFirst};

// Red, green and blue of a pixel; three equal levels where there is no colour.
using Colour = std::array<uint8_t, 3>;

// A picture in a block of the exact size, whose bytes between the rows hold a mark.
class Picture {
 public:
  static constexpr uint8_t kMark = 0xC9;

  Picture(int32_t width, int32_t height, int32_t format, Layout layout)
      : width_(width), height_(height), format_(format) {
    const auto row = static_cast<ptrdiff_t>(vorlane_row_bytes(format, width));
    stride_ = layout == Layout::kTight ? row : row + 5;
    bytes_.assign(static_cast<size_t>(stride_ * (height - 1) + row), kMark);
    if (layout == Layout::kBottomFirst) {
      top_ = stride_ * (height - 1);
      stride_ = -stride_;
    }
  }

  vorlane_image image() const { return {&bytes_[Top()], stride_, width_, height_, format_}; }
  vorlane_result result() { return {&bytes_[Top()], stride_, width_, height_}; }
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }

  void Draw(const std::function<Colour(int32_t x, int32_t y)>& colourOf) {
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) Set(x, y, colourOf(x, y));
    }
  }

  Colour Get(int32_t x, int32_t y) const {
    const uint8_t* row = &bytes_[Top()] + y * stride_;
    if (IsBits()) {
      const bool isSet = (row[x / 8] >> (7 - x % 8) & 1) != 0;
      const uint8_t level = isSet == (format_ == VORLANE_BIT_LIGHT) ? 255 : 0;
      return {level, level, level};
    }
    if (format_ == VORLANE_GREY8) return {row[x], row[x], row[x]};
    const uint8_t* pixel = row + x * PixelBytes();
    return IsRedFirst() ? Colour{pixel[0], pixel[1], pixel[2]}
                        : Colour{pixel[2], pixel[1], pixel[0]};
  }

  // Whether all bytes between the rows still hold the mark, and fourth bytes of pixels 255.
  bool IsCleanBetweenPixels() const {
    const auto row = static_cast<ptrdiff_t>(vorlane_row_bytes(format_, width_));
    const ptrdiff_t distance = std::abs(stride_);
    for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(bytes_.size()); ++i) {
      const uint8_t byte = bytes_[static_cast<size_t>(i)];
      if (i % distance >= row && byte != kMark) return false;
      const bool isFourth = PixelBytes() == 4 && i % distance < row && i % distance % 4 == 3;
      if (isFourth && byte != 255) return false;
    }
    return true;
  }

  friend bool SamePixels(const Picture& a, const Picture& b) {
    if (a.width_ != b.width_ || a.height_ != b.height_) return false;
    for (int32_t y = 0; y < a.height_; ++y) {
      for (int32_t x = 0; x < a.width_; ++x) {
        if (a.Get(x, y) != b.Get(x, y)) return false;
      }
    }
    return true;
  }

 private:
  size_t Top() const { return static_cast<size_t>(top_); }
  bool IsBits() const { return format_ == VORLANE_BIT_LIGHT || format_ == VORLANE_BIT_DARK; }
  bool IsRedFirst() const { return format_ == VORLANE_RGB24 || format_ == VORLANE_RGBX32; }
  ptrdiff_t PixelBytes() const {
    return format_ <= VORLANE_GREY8 ? 1 : format_ <= VORLANE_RGB24 ? 3 : 4;
  }

  void Set(int32_t x, int32_t y, const Colour& colour) {
    uint8_t* row = &bytes_[Top()] + y * stride_;
    if (IsBits()) {
      const auto bit = static_cast<uint8_t>(0x80 >> x % 8);
      const bool isSet = (colour[1] >= 128) == (format_ == VORLANE_BIT_LIGHT);
      row[x / 8] = static_cast<uint8_t>(isSet ? row[x / 8] | bit : row[x / 8] & ~bit);
      return;
    }
    if (format_ == VORLANE_GREY8) {
      row[x] = colour[1];
      return;
    }
    uint8_t* pixel = row + x * PixelBytes();
    pixel[IsRedFirst() ? 0 : 2] = colour[0];
    pixel[1] = colour[1];
    pixel[IsRedFirst() ? 2 : 0] = colour[2];
  }

  int32_t width_;
  int32_t height_;
  int32_t format_;
  ptrdiff_t stride_;
  ptrdiff_t top_ = 0;
  std::vector<uint8_t> bytes_;
};

// A context for the length of a test.
class Context {
 public:
  Context() { vorlane_context_new(&context_); }
  ~Context() { vorlane_context_free(context_); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  vorlane_context* get() const { return context_; }

 private:
  vorlane_context* context_ = nullptr;
};

inline vorlane_finding EmptyFinding() {
  vorlane_finding finding;
  vorlane_finding_init(&finding, sizeof finding);
  return finding;
}

inline vorlane_apply_options ApplyOptions() {
  vorlane_apply_options options;
  vorlane_apply_options_init(&options, sizeof options);
  return options;
}

}  // namespace vorlane::testing
