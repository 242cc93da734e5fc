// From a scanned page in memory to the upright, cut-out page in memory: ours, and what a careful
// engineer would write with OpenCV or Leptonica.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::bench {

// What a straightener made of a page. `page` is copied out for checking, with the grey levels that
// TestImage::Get gives.
struct StraightPage {
  double degrees;  // by which the page was found turned clockwise
  std::shared_ptr<testing::TestImage> page;
};

// Does the whole job and gives back all it took. With `check` it also leaves the result there,
// outside of what a measurement sees. Returns false on failure.
using Straighten = std::function<bool(StraightPage* check)>;

struct Straightener {
  std::string name;
  Straighten run;
};

// `scan` outlives what is returned; copies of it in a peer's own layout are made beforehand.
// `interpolation` is one of INTERP_BICUBIC, INTERP_BILINEAR and INTERP_NEAREST.
Straightener Ours(const testing::TestImage& scan, int32_t interpolation);
std::vector<Straightener> OpenCvStraighteners(const testing::TestImage& scan,
                                              int32_t interpolation);
// The page engine, and what a script does with OpenCV: an outline of the scan at its full size.
std::vector<Straightener> EngineStraighteners(const testing::TestImage& scan,
                                              int32_t interpolation);
Straightener OpenCvOutline(const testing::TestImage& scan, int32_t interpolation);
// None for bicubic sampling, which Leptonica does not have.
std::vector<Straightener> LeptonicaStraighteners(const testing::TestImage& scan,
                                                 int32_t interpolation);

// The turn alone, with the geometry known beforehand.
Straightener OurRotation(const testing::TestImage& scan, int32_t interpolation);
Straightener OpenCvRotation(const testing::TestImage& scan, int32_t interpolation);
std::vector<Straightener> LeptonicaRotations(const testing::TestImage& scan, int32_t interpolation);

// How many threads OpenCV may use; the others have no such choice.
void SetOpenCvThreads(int32_t count);

}  // namespace vorlanepic::bench
