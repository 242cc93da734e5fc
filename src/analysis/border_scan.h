// Finds the page's border: the band of rows that holds the page and the traces of its four sides.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Finds the rows of `image` that hold the page. A row belongs to it when more than 85 of its pixels
// (1 unless BorderMethod is 1) are lighter than `low`; every eighth row is looked at.
//
// Returns STATUS_OK; BORDER_NOT_FOUND; BAD_ARGUMENT for another depth than 1, 8 and 24; or the
// image library's code.
int32_t FindBand(const frame::Settings& settings, const ImageRec& image, uint8_t low,
                 frame::PixelRect* band);

// Traces the left and the right side on every second row of `band`, and sets leftmost and rightmost
// of `extremes` with their segments.
//
//   left, right  empty; on success they hold at least one point and one segment each
//
// Returns STATUS_OK; BORDER_NOT_FOUND; OUT_OF_MEMORY; BAD_ARGUMENT for another depth, a band
// outside the image or a point at a negative column; or the image library's code. Both traces stay
// empty on failure; `extremes` may have been written.
int32_t ScanRows(const frame::Settings& settings, const ImageRec& image,
                 const frame::PixelRect& band, GreyBand levels, SideTrace* left, SideTrace* right,
                 ExtremePoints* extremes);

// Traces the top and the bottom side on every second column from rightmost to leftmost of
// `extremes`, and sets its topmost and bottommost with their segments.
// Arguments and results are those of ScanRows.
int32_t ScanColumns(const frame::Settings& settings, const ImageRec& image,
                    const frame::PixelRect& band, GreyBand levels, SideTrace* top,
                    SideTrace* bottom, ExtremePoints* extremes);

}  // namespace vorlanepic::analysis
