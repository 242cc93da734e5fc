// ImageDeskewCropEx, ImageDeskewCrop and ImageDeskewAngle.
#include "deskew/deskew_crop.h"
#include "deskew/deskew_settings.h"
#include "deskew/dib_set.h"
#include "deskew/page_records.h"
#include "deskew/pruned_rotation.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::deskew;

int32_t VORLANEPIC_STDCALL ImageDeskewCropEx(const ImageRec* images, int32_t interpolation,
                                             int32_t threshold, int32_t /*background*/,
                                             int32_t cornerOption, const uint8_t* fill,
                                             double* angleOut, ImageRec* outImages,
                                             DeskewCropParam param, int32_t imageNum) noexcept {
  ForgetPageRecords();
  if (imageNum < 1) return BAD_ARGUMENT;
  frame::settings.ImageNum = imageNum;

  const int32_t method = ChosenMethod(param);
  if (method == 1 || method == 3) {
    if (!AssignPrunedRotationSettings(param, method)) return BAD_ARGUMENT;
    const PrunedRotationOptions options{interpolation, threshold, 0, cornerOption, fill};
    return RunCheckedPrunedRotation(images, options, angleOut, outImages, imageNum);
  }
  if (!AssignDeskewCropSettings(param)) return BAD_ARGUMENT;
  return DeskewCropPipeline(images, {interpolation, threshold, fill}, angleOut, outImages);
}

int32_t VORLANEPIC_STDCALL ImageDeskewCrop(const DibRec* inImages, int32_t interpolation,
                                           int32_t threshold, int32_t background,
                                           int32_t cornerOption, const uint8_t* fill,
                                           double* angleOut, DibRec* outImages,
                                           DeskewCropParam param, int32_t imageNum) noexcept {
  ForgetPageRecords();
  int32_t status = ImgbufCheck(inImages);
  if (status != STATUS_OK) return status;
  DibSet set;
  status = set.Wrap(inImages, imageNum);
  if (status != STATUS_OK) return status;

  status = ImageDeskewCropEx(set.sources().data(), interpolation, threshold, background,
                             cornerOption, fill, angleOut, set.results().data(), param, imageNum);
  if (status != STATUS_OK || frame::settings.AngleOnlyFlag != 0) return status;
  return set.CopyResults(outImages);
}

int32_t VORLANEPIC_STDCALL ImageDeskewAngle(const DibRec* inImages, int32_t threshold,
                                            double* angleOut, DeskewCropParam param) noexcept {
  const uint8_t fill[3] = {0, 0, 0};
  frame::settings.AngleOnlyFlag = 1;
  const int32_t status = ImageDeskewCrop(inImages, INTERP_BILINEAR, threshold, 1, 0, fill, angleOut,
                                         nullptr, param, 1);
  frame::settings.AngleOnlyFlag = 0;
  return status;
}
