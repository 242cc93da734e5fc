// The binary interface of the records on 32-bit targets, where hosts in other languages declare
// them by byte offsets. With 64-bit pointers the same records are wider and nothing is asked.
#include <cstddef>

#include "vorlanepic/vorlanepic.h"

namespace {

constexpr bool kWidePointers = sizeof(void*) != 4;

// Whether a size or an offset is the published one.
constexpr bool Is(size_t actual, size_t published) { return kWidePointers || actual == published; }

static_assert(Is(sizeof(ImageRec), 28));
static_assert(Is(offsetof(ImageRec, width), 0));
static_assert(Is(offsetof(ImageRec, height), 4));
static_assert(Is(offsetof(ImageRec, bitsPerPixel), 8));
static_assert(Is(offsetof(ImageRec, imageBytes), 12));
static_assert(Is(offsetof(ImageRec, lineBytes), 16));
static_assert(Is(offsetof(ImageRec, rows), 20));
static_assert(Is(offsetof(ImageRec, pixels), 24));

static_assert(Is(sizeof(DibRec), 16));
static_assert(Is(offsetof(DibRec, fileHeader), 0));
static_assert(Is(offsetof(DibRec, infoHeader), 4));
static_assert(Is(offsetof(DibRec, reserved), 8));
static_assert(Is(offsetof(DibRec, bits), 12));

static_assert(Is(sizeof(DeskewCropParam), 64));
static_assert(Is(offsetof(DeskewCropParam, profilePath), 0));
static_assert(Is(offsetof(DeskewCropParam, useProfile), 4));
static_assert(Is(offsetof(DeskewCropParam, DeskewMethod), 8));
static_assert(Is(offsetof(DeskewCropParam, SearchBorderPixelNum), 12));
static_assert(Is(offsetof(DeskewCropParam, ToLineDistance), 16));
static_assert(Is(offsetof(DeskewCropParam, ToLineMixDis), 20));
static_assert(Is(offsetof(DeskewCropParam, parallel), 24));
static_assert(Is(offsetof(DeskewCropParam, perpendicular), 32));
static_assert(Is(offsetof(DeskewCropParam, SegmentLen), 40));
static_assert(Is(offsetof(DeskewCropParam, SearchLimitNum), 44));
static_assert(Is(offsetof(DeskewCropParam, PixelNum), 48));
static_assert(Is(offsetof(DeskewCropParam, CropPixelNum), 52));
static_assert(Is(offsetof(DeskewCropParam, GroupAngle), 56));

static_assert(Is(sizeof(BlockRec), 84));
static_assert(Is(offsetof(BlockRec, area), 0));
static_assert(Is(offsetof(BlockRec, centerX), 4));
static_assert(Is(offsetof(BlockRec, centerY), 8));
static_assert(Is(offsetof(BlockRec, width), 12));
static_assert(Is(offsetof(BlockRec, left), 16));
static_assert(Is(offsetof(BlockRec, right), 20));
static_assert(Is(offsetof(BlockRec, height), 24));
static_assert(Is(offsetof(BlockRec, bottom), 28));
static_assert(Is(offsetof(BlockRec, top), 32));
static_assert(Is(offsetof(BlockRec, state), 36));
static_assert(Is(offsetof(BlockRec, reserved1), 40));
static_assert(Is(offsetof(BlockRec, reserved2), 44));
static_assert(Is(offsetof(BlockRec, childCount), 48));
static_assert(Is(offsetof(BlockRec, childCapacity), 52));
static_assert(Is(offsetof(BlockRec, children), 56));
static_assert(Is(offsetof(BlockRec, root), 60));
static_assert(Is(offsetof(BlockRec, minValue), 64));
static_assert(Is(offsetof(BlockRec, maxValue), 68));
static_assert(Is(offsetof(BlockRec, pointCount), 72));
static_assert(Is(offsetof(BlockRec, pointCapacity), 76));
static_assert(Is(offsetof(BlockRec, points), 80));

static_assert(Is(sizeof(BlockSetRec), 16));
static_assert(Is(offsetof(BlockSetRec, blocks), 0));
static_assert(Is(offsetof(BlockSetRec, capacity), 4));
static_assert(Is(offsetof(BlockSetRec, count), 8));
static_assert(Is(offsetof(BlockSetRec, reserved), 12));

// Records without pointers are the same on every target.
static_assert(sizeof(BlockMarkParam) == 8);
static_assert(offsetof(BlockMarkParam, minRunLen) == 0);
static_assert(offsetof(BlockMarkParam, maxRunLen) == 2);
static_assert(offsetof(BlockMarkParam, joinGap) == 4);
static_assert(offsetof(BlockMarkParam, threshold) == 6);

static_assert(sizeof(BlockRect) == 16);
static_assert(offsetof(BlockRect, x) == 0);
static_assert(offsetof(BlockRect, y) == 4);
static_assert(offsetof(BlockRect, w) == 8);
static_assert(offsetof(BlockRect, h) == 12);

static_assert(sizeof(LabelArea) == 16);
static_assert(offsetof(LabelArea, top) == 0);
static_assert(offsetof(LabelArea, bottom) == 4);
static_assert(offsetof(LabelArea, left) == 8);
static_assert(offsetof(LabelArea, right) == 12);

static_assert(sizeof(BlockPoint) == 4);
static_assert(offsetof(BlockPoint, x) == 0);
static_assert(offsetof(BlockPoint, y) == 2);

}  // namespace
