// What the benchmarks are run over: sizes, angles, depths and interpolations, and the pages drawn
// for them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "sample_pages.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::bench {

inline constexpr double kMegapixels[] = {2, 8, 33};
inline constexpr double kDegrees[] = {0.5, 2, 10, 40};

// A frame to measure on.
struct Frame {
  double megapixels;
  double degrees;
  int32_t bitsPerPixel;
};

// "8bit/2MP/0.5deg"
std::string NameOf(const Frame& frame);
std::string NameOf(const Frame& frame, int32_t interpolation);

// Calls `add` for every size, angle and depth, the last fastest, so that each page is drawn once.
void ForEachFrame(const std::function<void(const Frame&)>& add);

// Calls `add` for every frame with every interpolation that makes a difference at its depth.
void ForEachKind(const std::function<void(const Frame&, int32_t interpolation)>& add);

// The scanned page and the form of a frame. Drawn when first asked for; the reference holds until
// another frame is asked for.
const testing::TestImage& ScanOf(const Frame& frame);
const testing::TestImage& FormOf(const Frame& frame);

// The resolution at which the bar of FormOf is of the usual length.
int32_t FormDotsPerInch(const Frame& frame);

}  // namespace vorlanepic::bench
