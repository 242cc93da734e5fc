// The values through which entry points tune the stages.
#pragma once

#include <cstdint>

namespace vorlanepic::frame {

// Fields carry the names of their profile keys. Stages read them and write none. Between calls of
// the exported functions the values persist: what an entry point does not assign keeps what the
// call before left.
struct Settings {
  int32_t SearchBorderPixelNum;  // document pixels in a row that mark a border crossing
  int32_t SegmentMaxGap;         // largest step in x or y between points of one border segment
  int32_t SegmentPointNum;       // points at which a border segment is closed and counts as full
  int32_t SegmentMinPointNum;    // fewest points of a segment that is kept
  int32_t BorderMethod;          // variant of the border analysis: 1 or 3
  double ExtremeAnchorFlag;      // 1.0: edge lines pass through the extreme points; left so after a
                                 // page of which two opposite edges could not be fitted
  int32_t ToLineMixDis;          // range-checked only
  int32_t ToLineDistance;        // pixels: nearer segments are inliers of the border vote
  double parallel;               // degrees: opposite edges nearer than this are parallel
  double perpendicular;    // degrees off a right angle up to which an edge lends its direction
  int32_t SegmentLen;      // segments in a chunk of the border vote
  int32_t SearchLimitNum;  // bright lines to exceed before the content search takes a run
  int32_t PixelNum;        // bright pixels to exceed in a line of the source image
  int32_t CropPixelNum;    // the same for the turned image
  int32_t CropPixelFlag;   // 1: the content search in the turned image, and that in a form, takes a
                           // share of the line length instead
  int32_t AngleMode;       // non-zero: the vote averages opposite borders that agree
  double GroupAngle;       // degrees between neighbouring directions of one group
  int32_t ImageNum;        // images in the caller's arrays; 1 after the turning began
  int32_t AngleOnlyFlag;   // 1: the drivers stop after the angle and make no output

  // What the last call's border scan found: indices into a side's segment list. The next call
  // begins with them.
  int32_t LeftExtremeSegFirst;
  int32_t LeftExtremeSegLast;
  int32_t RightExtremeSegFirst;
  int32_t RightExtremeSegLast;
  int32_t TopExtremeSegFirst;
  int32_t TopExtremeSegLast;
  int32_t BottomExtremeSegFirst;
  int32_t BottomExtremeSegLast;
  int32_t EdgeArrangement;  // 1 or 2, the way the last document that was decided on was turned
};

}  // namespace vorlanepic::frame
