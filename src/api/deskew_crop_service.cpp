// Deskew and crop: ImageDeskewCropEx, ImageDeskewCrop and ImageDeskewAngle.
#include "api/service_call.h"
#include "deskew/deskew_crop.h"
#include "deskew/deskew_settings.h"
#include "deskew/dib_set.h"
#include "deskew/pruned_rotation.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;

namespace vorlanepic::api {
namespace {

// What a caller asks of the set, beside its images.
struct CropRequest {
  int32_t interpolation;
  int32_t threshold;
  int32_t cornerOption;
  const uint8_t* fill;
  const DeskewCropParam& param;
  int32_t imageNum;
};

int32_t CropByVote(const ImageRec* images, const CropRequest& request,
                   const frame::Profile& profile, double* angleOut, ImageRec* outImages,
                   ServiceCall* call) {
  frame::Settings& settings = call->settings();
  if (!deskew::AssignDeskewCropSettings(request.param, profile, &settings)) return BAD_ARGUMENT;
  deskew::PageRecords* page = call->page();
  const int32_t status = deskew::DeskewCropPipeline(
      settings, images, static_cast<size_t>(request.imageNum),
      {request.interpolation, request.threshold, request.fill}, angleOut, outImages, page);

  // What the next call finds. The search in the source is made without the flag, and a run that
  // ends before it comes to the search in the turned image leaves it so.
  const bool isFlagOff =
      page->stage >= deskew::PageStage::kVote && page->stage < deskew::PageStage::kTurned;
  if (isFlagOff) settings.CropPixelFlag = 0;
  const bool beganToTurn =
      page->stage >= deskew::PageStage::kContent && settings.AngleOnlyFlag != 1;
  if (beganToTurn) settings.ImageNum = 1;
  return status;
}

int32_t Crop(const ImageRec* images, const CropRequest& request, double* angleOut,
             ImageRec* outImages, ServiceCall* call) {
  if (request.imageNum < 1) return BAD_ARGUMENT;
  frame::Settings& settings = call->settings();
  settings.ImageNum = request.imageNum;

  frame::Profile profile;
  const int32_t status = deskew::LoadProfile(request.param, &profile);
  if (status != STATUS_OK) return status;
  const int32_t method = deskew::ChosenMethod(request.param, profile);
  if (method != 1 && method != 3) {
    return CropByVote(images, request, profile, angleOut, outImages, call);
  }
  if (!deskew::AssignPrunedRotationSettings(request.param, profile, method, &settings)) {
    return BAD_ARGUMENT;
  }
  const deskew::PrunedRotationOptions options{request.interpolation, request.threshold, 0,
                                              request.cornerOption, request.fill};
  return deskew::RunCheckedPrunedRotation(settings, images, options, angleOut, outImages,
                                          static_cast<size_t>(request.imageNum), call->page());
}

int32_t CropDibs(const DibRec* inImages, const CropRequest& request, double* angleOut,
                 DibRec* outImages, ServiceCall* call) {
  int32_t status = ImgbufCheck(inImages);
  if (status != STATUS_OK) return status;
  deskew::DibSet set;
  status = set.Wrap(inImages, request.imageNum);
  if (status != STATUS_OK) return status;

  status = Crop(set.sources().data(), request, angleOut, set.results().data(), call);
  if (status != STATUS_OK || call->settings().AngleOnlyFlag != 0) return status;
  return set.CopyResults(outImages);
}

}  // namespace
}  // namespace vorlanepic::api

int32_t VORLANEPIC_STDCALL ImageDeskewCropEx(const ImageRec* images, int32_t interpolation,
                                             int32_t threshold, int32_t /*background*/,
                                             int32_t cornerOption, const uint8_t* fill,
                                             double* angleOut, ImageRec* outImages,
                                             DeskewCropParam param, int32_t imageNum) noexcept {
  api::ServiceCall call;
  return api::Crop(images, {interpolation, threshold, cornerOption, fill, param, imageNum},
                   angleOut, outImages, &call);
}

int32_t VORLANEPIC_STDCALL ImageDeskewCrop(const DibRec* inImages, int32_t interpolation,
                                           int32_t threshold, int32_t /*background*/,
                                           int32_t cornerOption, const uint8_t* fill,
                                           double* angleOut, DibRec* outImages,
                                           DeskewCropParam param, int32_t imageNum) noexcept {
  api::ServiceCall call;
  return api::CropDibs(inImages, {interpolation, threshold, cornerOption, fill, param, imageNum},
                       angleOut, outImages, &call);
}

int32_t VORLANEPIC_STDCALL ImageDeskewAngle(const DibRec* inImages, int32_t threshold,
                                            double* angleOut, DeskewCropParam param) noexcept {
  api::ServiceCall call;
  constexpr uint8_t kFill[3] = {0, 0, 0};
  call.settings().AngleOnlyFlag = 1;
  const int32_t status = api::CropDibs(inImages, {INTERP_BILINEAR, threshold, 0, kFill, param, 1},
                                       angleOut, nullptr, &call);
  call.settings().AngleOnlyFlag = 0;
  return status;
}
