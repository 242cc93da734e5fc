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
  Picture(int32_t width, int32_t height, int32_t format, Layout layout) : format_(format) {
    const auto row = static_cast<ptrdiff_t>(vorlane_row_bytes(format, width));
    distance_ = layout == Layout::kTight ? row : row + 5;
    bytes_.assign(static_cast<size_t>(distance_ * (height - 1) + row), kMark);
    const bool isBottomFirst = layout == Layout::kBottomFirst;
    size_ = {nullptr, isBottomFirst ? -distance_ : distance_, width, height};
    top_ = isBottomFirst ? distance_ * (height - 1) : 0;
  }

  vorlane_image image() const { return {Row(0), size_.stride, width(), height(), format_}; }
  vorlane_result result() { return {bytes_.data() + top_, size_.stride, width(), height()}; }
  int32_t width() const { return size_.width; }
  int32_t height() const { return size_.height; }

  void Draw(const std::function<Colour(int32_t x, int32_t y)>& colourOf) {
    for (int32_t y = 0; y < height(); ++y) {
      for (int32_t x = 0; x < width(); ++x)
        Set(x, bytes_.data() + (Row(y) - Row(0)) + top_, colourOf(x, y));
    }
  }

  Colour Get(int32_t x, int32_t y) const {
    const uint8_t* row = Row(y);
    if (IsBits()) {
      const bool isSet = (row[x / 8] >> (7 - x % 8) & 1) != 0;
      return Grey(isSet == (format_ == VORLANE_BIT_LIGHT) ? 255 : 0);
    }
    if (format_ == VORLANE_GREY8) return Grey(row[x]);
    const uint8_t* pixel = row + x * PixelBytes();
    return {pixel[2 - Blue()], pixel[1], pixel[Blue()]};
  }

  // Whether all bytes between the rows still hold the mark, and fourth bytes of pixels 255.
  bool IsCleanBetweenPixels() const {
    const auto row = static_cast<ptrdiff_t>(vorlane_row_bytes(format_, width()));
    for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(bytes_.size()); ++i) {
      const uint8_t byte = bytes_[static_cast<size_t>(i)];
      const ptrdiff_t column = i % distance_;
      if (column >= row && byte != kMark) return false;
      if (PixelBytes() == 4 && column < row && column % 4 == 3 && byte != 255) return false;
    }
    return true;
  }

  friend bool SamePixels(const Picture& a, const Picture& b) {
    bool isSame = a.width() == b.width() && a.height() == b.height();
    for (int32_t i = 0; isSame && i < a.width() * a.height(); ++i) {
      isSame = a.Get(i % a.width(), i / a.width()) == b.Get(i % a.width(), i / a.width());
    }
    return isSame;
  }

 private:
  static constexpr uint8_t kMark = 0xC9;

  static Colour Grey(uint8_t level) { return {level, level, level}; }
  bool IsBits() const { return format_ <= VORLANE_BIT_DARK; }
  int32_t PixelBytes() const {
    return format_ <= VORLANE_GREY8 ? 1 : format_ <= VORLANE_RGB24 ? 3 : 4;
  }
  size_t Blue() const { return format_ == VORLANE_RGB24 || format_ == VORLANE_RGBX32 ? 2 : 0; }
  const uint8_t* Row(int32_t y) const { return bytes_.data() + top_ + y * size_.stride; }

  void Set(int32_t x, uint8_t* row, const Colour& colour) const {
    if (IsBits()) {
      const auto bit = static_cast<uint8_t>(0x80 >> x % 8);
      const bool isSet = (colour[1] >= 128) == (format_ == VORLANE_BIT_LIGHT);
      row[x / 8] = static_cast<uint8_t>(isSet ? row[x / 8] | bit : row[x / 8] & ~bit);
    } else if (format_ == VORLANE_GREY8) {
      row[x] = colour[1];
    } else {
      uint8_t* pixel = row + x * PixelBytes();
      pixel[2 - Blue()] = colour[0];
      pixel[1] = colour[1];
      pixel[Blue()] = colour[2];
    }
  }

  int32_t format_;
  ptrdiff_t distance_;
  ptrdiff_t top_;
  vorlane_result size_;
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
