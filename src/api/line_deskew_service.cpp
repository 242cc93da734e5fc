// Line-guided deskew of forms: ImageDeskewCropWithLine.
#include "api/service_call.h"
#include "deskew/deskew_settings.h"
#include "deskew/line_deskew.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;

int32_t VORLANEPIC_STDCALL ImageDeskewCropWithLine(const DibRec* inImages, int32_t interpolation,
                                                   int32_t threshold, int32_t /*background*/,
                                                   int32_t /*cornerOption*/, const uint8_t* fill,
                                                   double* angleOut, DibRec* outImages,
                                                   DeskewCropParam param, int32_t /*spare1*/,
                                                   int32_t /*spare2*/, int32_t /*spare3*/,
                                                   int32_t /*spare4*/, int32_t imageNum) noexcept {
  int32_t status = ImgbufCheck(inImages);
  if (status != STATUS_OK) return status;
  frame::Profile profile;
  status = deskew::LoadProfile(param, &profile);
  if (status != STATUS_OK) return status;
  api::ServiceCall call;
  frame::Settings& settings = call.settings();
  const omr::BarLimits limits = deskew::AssignLineGuidedSettings(param, profile, &settings);
  omr::BarRecords bar;
  status =
      deskew::RunLineDeskew(settings, inImages, imageNum, limits, {interpolation, threshold, fill},
                            angleOut, outImages, call.page(), &bar);
  const bool beganToTurn = call.page()->stage >= deskew::PageStage::kContent &&
                           angleOut != nullptr && settings.AngleOnlyFlag != 1;
  if (beganToTurn) settings.ImageNum = 1;
  return status;
}
