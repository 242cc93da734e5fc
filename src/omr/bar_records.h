// What the search for a mark sheet's reference bar found, for whoever draws or judges it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
#include "omr/edge_fitting.h"
#include "omr/sheet_area.h"

namespace vorlanepic::omr {

// What a reference bar has to measure, in pixels.
struct BarLimits {
  int32_t minLength;     // along the diagonal of its bounding box; its thickness is sampled every
                         // twentieth of that
  int32_t minThickness;  // of the mean thickness, both inclusive
  int32_t maxThickness;
};

// How far the search came; each stage was reached with all earlier ones done.
enum class BarStage : int32_t {
  kNothing,
  kSheet,   // the sheet's area is known
  kBar,     // a bar was chosen
  kTraced,  // its edges were sampled
  kFitted,  // both edges have a line
  kAngle,   // the lines agree
};

// Why a dark block that is long enough is not the reference bar: the first test that it failed.
enum class BarVerdict : int32_t {
  kChosen,
  kThickness,    // its mean thickness is out of bounds
  kMargin,       // it comes too near to the sheet's edge
  kUneven,       // its thickness varies too much
  kRatio,        // too thick for its length; tested when several bars qualify
  kNotThickest,  // another bar is at least as thick
};

// A dark block that is long enough. Lengths in pixels.
struct ExaminedBar {
  frame::PixelRect box;
  int32_t block;      // its place among the marked blocks
  int32_t length;     // along the diagonal of the bounding box
  int32_t thickness;  // mean
  int32_t thinnest;   // 1000 where nothing was measured
  int32_t thickest;   // 0 where nothing was measured
  BarVerdict verdict;
};

// The scratch of one search, the caller's.
struct BarRecords {
  BarStage stage = BarStage::kNothing;  // the last stage that succeeded
  frame::PixelRect sheet{};
  size_t barCount = 0;
  frame::ScratchArray<ExaminedBar> bars;  // the first barCount entries, in the order of the search
  bool isTall = false;                    // the bar runs down the sheet
  frame::ScratchArray<EdgeSample> samples;
  BarLines lines{};    // top and bottom, or left and right
  double angle = 0.0;  // radians
};

}  // namespace vorlanepic::omr
