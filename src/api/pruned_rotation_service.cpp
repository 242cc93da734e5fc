// Pruned rotation: VorlanePic, VorlanePicEx, ImageVorlane and ImageVorlaneEx.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "api/service_call.h"
#include "deskew/deskew_settings.h"
#include "deskew/pruned_rotation.h"
#include "frame/pixel_format.h"
#include "frame/row_table.h"
#include "frame/scratch.h"
#include "vorlanepic/vorlanepic.h"

namespace {

using namespace vorlanepic;

// What VorlanePic returns.
constexpr int32_t kProcessed = 1;
constexpr int32_t kFailed = 0;
constexpr int32_t kRejected = 1;

constexpr int32_t kHighestThreshold = 255;
constexpr int32_t kLightBackground = 255;

bool IsMode(int32_t mode) {
  return mode == INTERP_NEAREST || mode == INTERP_BICUBIC || mode == INTERP_BILINEAR;
}

}  // namespace

namespace vorlanepic::api {
namespace {

int32_t StraightenInPlace(uint8_t* pixels, int32_t* width, int32_t* height, int32_t bitsPerPixel,
                          int32_t mode, int32_t threshold, ServiceCall* call) {
  if (pixels == nullptr || width == nullptr || height == nullptr) return kRejected;
  if (*width <= 0 && *height <= 0) return kRejected;
  if (!frame::IsPageDepth(bitsPerPixel) || !IsMode(mode)) return kRejected;
  deskew::AssignPageSettings(&call->settings());

  // The image library says how the pixels lie. They are read in the caller's buffer, which stays as
  // it is until the result is whole: a copy would cost as much as the rotation.
  frame::ScratchImage layout;
  if (Imgbuf_New(layout.rec(), *width, *height, bitsPerPixel, 0) != STATUS_OK) return kFailed;
  ImageRec source = *layout.rec();
  frame::ScratchArray<uint8_t*> rows;
  if (!rows.Allocate(static_cast<size_t>(source.height))) return kFailed;
  source.pixels = pixels;
  frame::LayRows(rows.data(), &source);

  constexpr uint8_t kBlue[3] = {255, 0, 0};
  double angle = 0.0;
  frame::ScratchImage result;
  const int32_t status = deskew::RunPrunedRotation(
      call->settings(), std::span<const ImageRec>(&source, 1), {mode, threshold, 0, 0, kBlue},
      &angle, std::span(result.rec(), 1), call->page());
  if (status != STATUS_OK) return kFailed;
  *width = result.rec()->width;
  *height = result.rec()->height;
  std::memcpy(pixels, result.rec()->pixels, static_cast<size_t>(result.rec()->imageBytes));
  return kProcessed;
}

int32_t Straighten(const ImageRec* source, int32_t mode, int32_t threshold, int32_t background,
                   double* angle, ImageRec* result, ServiceCall* call) {
  if (source == nullptr || result == nullptr || angle == nullptr) return BAD_ARGUMENT;
  if (threshold < 0 || threshold > kHighestThreshold) return BAD_ARGUMENT;
  if (!IsMode(mode)) return BAD_ARGUMENT;
  if (background != 0 && background != kLightBackground) return BAD_ARGUMENT;
  const int32_t status = Imgbuf_Check(source);
  if (status != STATUS_OK) return status;
  deskew::AssignPageSettings(&call->settings());

  constexpr uint8_t kBlack[3] = {0, 0, 0};
  return deskew::RunPrunedRotation(call->settings(), std::span(source, 1),
                                   {mode, threshold, background, 0, kBlack}, angle,
                                   std::span(result, 1), call->page());
}

}  // namespace
}  // namespace vorlanepic::api

int32_t VORLANEPIC_STDCALL VorlanePic(uint8_t* pixels, int32_t* width, int32_t* height,
                                      int32_t bitsPerPixel, int32_t mode,
                                      int32_t threshold) noexcept {
  api::ServiceCall call;
  return api::StraightenInPlace(pixels, width, height, bitsPerPixel, mode, threshold, &call);
}

int32_t VORLANEPIC_STDCALL VorlanePicEx(uint8_t* pixels, int32_t* width, int32_t* height,
                                        int32_t bitsPerPixel, int32_t mode) noexcept {
  api::ServiceCall call;
  call.settings().ImageNum = 1;
  return api::StraightenInPlace(pixels, width, height, bitsPerPixel, mode, 0, &call);
}

int32_t VORLANEPIC_STDCALL ImageVorlane(const ImageRec* source, int32_t mode, int32_t threshold,
                                        int32_t background, ImageRec* result) noexcept {
  api::ServiceCall call;
  call.settings().ImageNum = 1;
  double angle = 0.0;
  return api::Straighten(source, mode, threshold, background, &angle, result, &call);
}

int32_t VORLANEPIC_STDCALL ImageVorlaneEx(const ImageRec* source, int32_t mode, int32_t threshold,
                                          int32_t background, double* angle,
                                          ImageRec* result) noexcept {
  api::ServiceCall call;
  return api::Straighten(source, mode, threshold, background, angle, result, &call);
}
