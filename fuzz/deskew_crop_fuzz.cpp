// Deskew and crop on sets of pages, with any parameter record and any profile.
#include <memory>
#include <vector>

#include "api/service_call.h"
#include "frame/scratch.h"
#include "fuzz_crop_param.h"
#include "fuzz_pages.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

constexpr int32_t kMaxImages = 3;

struct CropCall {
  CropCall(FuzzInput& input, const char* profile, int32_t images)
      : interpolation(input.MostlyIn(1, 3)),
        threshold(input.MostlyIn(0, 255)),
        background(input.MostlyIn(0, 1)),
        cornerOption(ReadCornerOption(input)),
        fill{input.Byte(), input.Byte(), input.Byte()},
        param(ReadCropParam(input, profile)),
        imageNum(images) {}

  int32_t interpolation;
  int32_t threshold;
  int32_t background;
  int32_t cornerOption;
  uint8_t fill[3];
  DeskewCropParam param;
  int32_t imageNum;
};

void CropImages(const std::vector<ImageRec>& images, const CropCall& call) {
  frame::ScratchImage results[kMaxImages];
  ImageRec outImages[kMaxImages] = {};
  double angle = 0;
  const int32_t status =
      ImageDeskewCropEx(images.data(), call.interpolation, call.threshold, call.background,
                        call.cornerOption, call.fill, &angle, outImages, call.param, call.imageNum);
  for (int32_t i = 0; i < kMaxImages; ++i) {
    *results[i].rec() = outImages[i];
    if (outImages[i].pixels != nullptr) RequireSoundImage(outImages[i]);
    // A cut to nothing makes no image, so success alone does not promise one.
    if (status == STATUS_OK && i >= call.imageNum) {
      Require(outImages[i].pixels == nullptr, "no more images come back than went in");
    }
  }
}

void CropDibs(const std::vector<DibRec>& images, const CropCall& call) {
  DibRec outImages[kMaxImages] = {};
  double angle = 0;
  const int32_t status =
      ImageDeskewCrop(images.data(), call.interpolation, call.threshold, call.background,
                      call.cornerOption, call.fill, &angle, outImages, call.param, call.imageNum);
  for (DibRec& image : outImages) {
    if (image.bits == nullptr) continue;
    Require(ImgbufCheck(&image) == 0, "an image handed back passes the image library's check");
    ImgbufDestory(&image);
  }
  double measured = 0;
  const int32_t angleStatus =
      ImageDeskewAngle(images.data(), call.threshold, &measured, call.param);
  Require(api::settings.AngleOnlyFlag == 0, "the angle alone leaves later calls to make images");
  if (status == STATUS_OK && call.background == 0 && call.cornerOption == 0) {
    Require(angleStatus == STATUS_OK && measured == angle, "the angle alone is the same angle");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  api::settings = {};
  FuzzInput input(data, size);
  const bool asDibs = input.Flag();
  const bool isSet = input.Byte() < 40;
  const int32_t imageNum = isSet ? input.In(-2, kMaxImages) : 1;
  std::vector<testing::TestImage> pages;
  pages.reserve(kMaxImages);
  pages.push_back(DrawFuzzPage(input));
  // The others are like the first, or drawn by themselves: of another size and depth.
  for (int32_t i = 1; i < imageNum; ++i) {
    pages.push_back(input.Byte() < 200 ? testing::TestImage(pages[0]) : DrawFuzzPage(input));
  }
  std::vector<std::unique_ptr<FuzzDib>> dibs;
  for (const testing::TestImage& page : pages) {
    if (asDibs) dibs.push_back(std::make_unique<FuzzDib>(*page.rec(), input));
  }

  FuzzInput arguments = input;
  for (int skipped = 0; skipped < 80; ++skipped) input.Byte();
  const CropCall call(arguments, PutProfile(input.RestAsText()), imageNum);
  if (asDibs) {
    std::vector<DibRec> records;
    records.reserve(dibs.size());
    for (const auto& dib : dibs) records.push_back(dib->rec());
    CropDibs(records, call);
  } else {
    std::vector<ImageRec> records;
    records.reserve(pages.size());
    for (const testing::TestImage& page : pages) records.push_back(*page.rec());
    CropImages(records, call);
  }
  return 0;
}
