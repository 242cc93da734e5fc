// Which turn of the core, of which size, makes the page that a finding describes.
#pragma once

#include <cstdint>

#include "rotate/rotate_image.h"
#include "vorlane/vorlane.h"

namespace vorlane::apply {

// Plans the page that `finding` asks for.
//
//   page     passes CheckImage
//   options  in range
//   turn     receives the geometry; its output is the result. One that is slanted has an odd number
//            of rows and of columns
//
// Returns VORLANE_OK, VORLANE_BAD_FINDING, VORLANE_NOT_CONFIDENT, VORLANE_TURN_TOO_LARGE or
// VORLANE_RESULT_TOO_LARGE.
vorlane_status PlanResult(const vorlane_image& page, const vorlane_finding& finding,
                          const vorlane_apply_options& options, vorlanepic::rotate::Turn* turn);

struct ResultSize {
  int32_t width;
  int32_t height;
};

// The most columns and the most rows that PlanResult gives for any finding.
ResultSize MostResultSize(const vorlane_image& page, const vorlane_apply_options& options);

// The source pixel that the output pixel in the centre column and `rowsBelow` rows below the centre
// row shows, in a turn that is no slanted one.
struct SourcePixel {
  int32_t x;
  int32_t y;
};
SourcePixel PixelBelowCentre(const vorlanepic::rotate::Turn& turn, int32_t rowsBelow);

}  // namespace vorlane::apply
