// Brings a decoder's rows to the kinds that the services take.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/files/sample_layout.h"

namespace vorlane::files {

// Page images have 1 bit (a set bit is light), 8 bits or 24 bits (blue, green, red) a pixel. Bits,
// 8-bit grey and 24-bit colour stay what they are; palettes, other depths, inks and transparency
// are converted, and what that changed is told.
class RowConverter {
 public:
  RowConverter(SampleLayout layout, int32_t width);

  // Bits per pixel of the rows that come out.
  int32_t depth() const { return depth_; }

  // Whether a row may be converted where it stands.
  bool IsInPlace() const { return step_ != Step::kGeneral; }

  // Converts the row at `from` into the one at `to`, both of the width given.
  void Convert(const uint8_t* from, uint8_t* to);

  // After the last row: whether there is an alpha channel and all of it is opaque.
  bool IsOpaque() const { return layout_.alpha != AlphaKind::kNone && leastAlpha_ == 255; }

  // After the last row: what was changed, in words; empty when nothing was.
  std::string Note() const;

 private:
  enum class Step { kBits, kGrey, kRgb, kBgr, kGeneral };

  void ConvertBits(const uint8_t* from, uint8_t* to) const;
  void ExpandSamples(const uint8_t* from);
  void PutPixels(uint8_t* to);
  PaletteEntry PixelAt(const uint8_t* samples) const;
  std::string KindOfSource() const;

  SampleLayout layout_;
  size_t width_;
  int32_t depth_ = 8;
  Step step_ = Step::kGeneral;
  uint8_t leastAlpha_ = 255;
  std::vector<uint8_t> samples_;  // of one row, 8 bits each
};

}  // namespace vorlane::files
