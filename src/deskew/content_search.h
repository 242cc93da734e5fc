// The content-bound search, whatever finds out whether a line is bright.
#pragma once

#include <algorithm>
#include <cstdint>

#include "deskew/content_bounds.h"
#include "frame/arithmetic.h"

namespace vorlanepic::deskew {

// The search probes every eighth line of a dark margin and stays this far outside a run of bright
// ones, so that a ragged border is not cut off.
inline constexpr int32_t kProbeStep = 8;
inline constexpr int32_t kContentMargin = 11;

// The share of a line's pixels that makes it bright where a share is asked for.
inline constexpr double kBrightShare = 0.3;
inline constexpr double kBrightShareOfBitRow = 0.4;

// The first of lines 0..length - 1 that belongs to content.
template <typename IsBright>
int32_t FirstContentLine(int32_t length, uint32_t searchLimit, IsBright isBright) {
  int64_t start = 0;
  uint32_t hits = 0;
  for (int64_t line = 0; line < length;) {
    const bool bright = isBright(static_cast<int32_t>(line));
    hits = bright ? hits + 1 : 0;
    if (hits > searchLimit) {
      start = line - hits - kContentMargin;
      break;
    }
    line += bright ? 1 : kProbeStep;
  }
  const auto first = static_cast<int32_t>(std::max<int64_t>(start, 0));
  for (int32_t line = first; line < length; ++line) {
    if (isBright(line)) return line;
  }
  return first;
}

// The last of lines 0..length - 1 that belongs to content, above `floor`, whose own brightness is
// not looked at.
template <typename IsBright>
int32_t LastContentLine(int32_t floor, int32_t length, uint32_t searchLimit, IsBright isBright) {
  int64_t start = int64_t{length} - 1;
  uint32_t hits = 0;
  for (int32_t line = length - 1; line > floor;) {
    const bool bright = isBright(line);
    hits = bright ? hits + 1 : 0;
    if (hits > searchLimit) {
      start = int64_t{line} + hits + kContentMargin;
      break;
    }
    line -= bright ? 1 : kProbeStep;
  }
  const auto last = static_cast<int32_t>(std::min<int64_t>(start, int64_t{length} - 1));
  for (int32_t line = last; line > floor; --line) {
    if (isBright(line)) return line;
  }
  return last;
}

// A share of a line's pixels, as a count to exceed.
inline uint32_t ShareOfLine(int32_t length, double share) {
  return static_cast<uint32_t>(frame::TruncToInt32(length * share));
}

// Runs the search on the lines of an image of width x height pixels.
//
//   lines     has IsBrightRow(row, pixelCount), SelectRows(top, bottom) and, for the rows selected,
//             IsBrightColumn(column, pixelCount)
//   rowShare  0.0, or the share of a row's pixels that makes it bright in place of
//             search.pixelCount; columns then take kBrightShare
template <typename Lines>
void SearchContent(Lines& lines, int32_t width, int32_t height, const ContentSearch& search,
                   double rowShare, frame::PixelRect* bounds) {
  uint32_t pixelCount = search.pixelCount;
  if (search.searchMode == kSearchRowsAndColumns) {
    if (rowShare > 0.0) pixelCount = ShareOfLine(width, rowShare);
    const auto isBrightRow = [&](int32_t y) { return lines.IsBrightRow(y, pixelCount); };
    bounds->top = FirstContentLine(height, search.searchLimit, isBrightRow);
    bounds->bottom = LastContentLine(bounds->top, height, search.searchLimit, isBrightRow);
  }
  if (rowShare > 0.0) {
    pixelCount = ShareOfLine(bounds->bottom - bounds->top + 1, kBrightShare);
  }
  lines.SelectRows(bounds->top, bounds->bottom);
  const auto isBrightColumn = [&](int32_t x) { return lines.IsBrightColumn(x, pixelCount); };
  bounds->left = FirstContentLine(width, search.searchLimit, isBrightColumn);
  bounds->right = LastContentLine(0, width, search.searchLimit, isBrightColumn);
}

}  // namespace vorlanepic::deskew
