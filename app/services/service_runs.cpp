#include "app/services/service_runs.h"

#include "deskew/deskew_crop.h"
#include "deskew/deskew_settings.h"
#include "deskew/pruned_rotation.h"

namespace vorlane::services {

namespace deskew = vorlanepic::deskew;
using vorlanepic::frame::Settings;

int32_t RunPruned(const ImageRec& image, const deskew::PrunedRotationOptions& options,
                  double* radians, ImageRec* result, deskew::PageRecords* page) {
  Settings settings{};
  deskew::AssignPageSettings(&settings);
  return deskew::RunPrunedRotation(settings, std::span(&image, 1), options, radians,
                                   std::span(result, 1), page);
}

int32_t RunCrop(std::span<const ImageRec> images, const CropRun& run, double* angle,
                ImageRec* results, deskew::PageRecords* page) {
  Settings settings{};
  settings.AngleOnlyFlag = run.angleOnly ? 1 : 0;
  vorlanepic::frame::Profile profile;
  const int32_t status = deskew::LoadProfile(run.param, &profile);
  if (status != STATUS_OK) return status;
  const int32_t method = deskew::ChosenMethod(run.param, profile);
  if (method != 1 && method != 3) {
    if (!deskew::AssignDeskewCropSettings(run.param, profile, &settings)) return BAD_ARGUMENT;
    return deskew::DeskewCropPipeline(settings, images.data(), images.size(),
                                      {run.interpolation, run.threshold, run.fill}, angle, results,
                                      page);
  }
  if (!deskew::AssignPrunedRotationSettings(run.param, profile, method, &settings))
    return BAD_ARGUMENT;
  const deskew::PrunedRotationOptions options{run.interpolation, run.threshold, 0, run.cornerOption,
                                              run.fill};
  return deskew::RunCheckedPrunedRotation(settings, images.data(), options, angle, results,
                                          images.size(), page);
}

int32_t RunForm(const DibRec& form, const deskew::LineDeskewOptions& options,
                const DeskewCropParam& param, double* degrees, DibRec* result,
                deskew::PageRecords* page, vorlanepic::omr::BarRecords* bar) {
  int32_t status = ImgbufCheck(&form);
  if (status != STATUS_OK) return status;
  vorlanepic::frame::Profile profile;
  status = deskew::LoadProfile(param, &profile);
  if (status != STATUS_OK) return status;
  Settings settings{};
  const vorlanepic::omr::BarLimits limits =
      deskew::AssignLineGuidedSettings(param, profile, &settings);
  return deskew::RunLineDeskew(settings, &form, 1, limits, options, degrees, result, page, bar);
}

}  // namespace vorlane::services
