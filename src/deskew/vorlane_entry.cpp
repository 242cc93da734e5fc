#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "deskew/page_records.h"
#include "deskew/pruned_rotation.h"
#include "frame/row_table.h"
#include "frame/scratch.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace {

using namespace vorlanepic;
using namespace vorlanepic::deskew;

// What VorlanePic returns.
constexpr int32_t kProcessed = 1;
constexpr int32_t kFailed = 0;
constexpr int32_t kRejected = 1;

constexpr int32_t kHighestThreshold = 255;
constexpr int32_t kLightBackground = 255;

bool IsDepth(int32_t bitsPerPixel) {
  return bitsPerPixel == 1 || bitsPerPixel == 8 || bitsPerPixel == 24;
}

bool IsMode(int32_t mode) {
  return mode == INTERP_NEAREST || mode == INTERP_BICUBIC || mode == INTERP_BILINEAR;
}

// Border runs of 2 pixels, segments of 4 to 6 points at most 6 pixels apart.
void AssignSettings() {
  frame::settings.ImageNum = 1;
  frame::settings.BorderMethod = 1;
  frame::settings.ExtremeAnchorFlag = 0.0;
  frame::settings.SegmentMaxGap = 6;
  frame::settings.SegmentPointNum = 6;
  frame::settings.SegmentMinPointNum = 4;
  frame::settings.SearchBorderPixelNum = 2;
  frame::settings.ToLineMixDis = 5;
  frame::settings.ToLineDistance = 8;
  frame::settings.parallel = 3.5;
  frame::settings.perpendicular = 2.0;
}

}  // namespace

int32_t VORLANEPIC_STDCALL VorlanePic(uint8_t* pixels, int32_t* width, int32_t* height,
                                      int32_t bitsPerPixel, int32_t mode,
                                      int32_t threshold) noexcept {
  ForgetPageRecords();
  if (pixels == nullptr || width == nullptr || height == nullptr) return kRejected;
  if (*width <= 0 && *height <= 0) return kRejected;
  if (!IsDepth(bitsPerPixel) || !IsMode(mode)) return kRejected;
  AssignSettings();

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
  const int32_t status =
      RunPrunedRotation(std::span<const ImageRec>(&source, 1), {mode, threshold, 0, 0, kBlue},
                        &angle, std::span(result.rec(), 1));
  if (status != STATUS_OK) return kFailed;
  *width = result.rec()->width;
  *height = result.rec()->height;
  std::memcpy(pixels, result.rec()->pixels, static_cast<size_t>(result.rec()->imageBytes));
  return kProcessed;
}

int32_t VORLANEPIC_STDCALL VorlanePicEx(uint8_t* pixels, int32_t* width, int32_t* height,
                                        int32_t bitsPerPixel, int32_t mode) noexcept {
  frame::settings.ImageNum = 1;
  return VorlanePic(pixels, width, height, bitsPerPixel, mode, 0);
}

int32_t VORLANEPIC_STDCALL ImageVorlane(const ImageRec* source, int32_t mode, int32_t threshold,
                                        int32_t background, ImageRec* result) noexcept {
  frame::settings.ImageNum = 1;
  double angle = 0.0;
  return ImageVorlaneEx(source, mode, threshold, background, &angle, result);
}

int32_t VORLANEPIC_STDCALL ImageVorlaneEx(const ImageRec* source, int32_t mode, int32_t threshold,
                                          int32_t background, double* angle,
                                          ImageRec* result) noexcept {
  ForgetPageRecords();
  if (source == nullptr || result == nullptr || angle == nullptr) return BAD_ARGUMENT;
  if (threshold < 0 || threshold > kHighestThreshold) return BAD_ARGUMENT;
  if (!IsMode(mode)) return BAD_ARGUMENT;
  if (background != 0 && background != kLightBackground) return BAD_ARGUMENT;
  const int32_t status = Imgbuf_Check(source);
  if (status != STATUS_OK) return status;
  AssignSettings();

  constexpr uint8_t kBlack[3] = {0, 0, 0};
  return RunPrunedRotation(std::span(source, 1), {mode, threshold, background, 0, kBlack}, angle,
                           std::span(result, 1));
}
