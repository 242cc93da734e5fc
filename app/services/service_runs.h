// The image services as the command runs them: with settings of their own, so that nothing of an
// earlier run counts, and with the records that their stages leave.
#pragma once

#include <cstdint>
#include <span>

#include "deskew/line_deskew.h"
#include "deskew/page_records.h"
#include "deskew/pruned_rotation.h"
#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::services {

// ImageVorlaneEx for a background of 0 or 255: `radians` and `result` are its angle and result.
int32_t RunPruned(const ImageRec& image, const vorlanepic::deskew::PrunedRotationOptions& options,
                  double* radians, ImageRec* result, vorlanepic::deskew::PageRecords* page);

// What ImageDeskewCropEx and, for an angle alone, ImageDeskewAngle are told.
struct CropRun {
  int32_t interpolation;
  int32_t threshold;
  int32_t cornerOption;
  const uint8_t* fill;
  DeskewCropParam param;
  bool angleOnly;
};

// `angle` is in degrees for method 2 and in radians for methods 1 and 3. `results` has as many
// empty records as there are images; on failure some may hold images, which are the caller's.
int32_t RunCrop(std::span<const ImageRec> images, const CropRun& run, double* angle,
                ImageRec* results, vorlanepic::deskew::PageRecords* page);

// ImageDeskewCropWithLine for one form: `degrees` is its angle.
int32_t RunForm(const DibRec& form, const vorlanepic::deskew::LineDeskewOptions& options,
                const DeskewCropParam& param, double* degrees, DibRec* result,
                vorlanepic::deskew::PageRecords* page, vorlanepic::omr::BarRecords* bar);

}  // namespace vorlane::services
