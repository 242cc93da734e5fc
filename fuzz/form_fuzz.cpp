// Line-guided deskew of forms, with any arguments and any profile.
#include "api/service_call.h"
#include "fuzz_crop_param.h"
#include "fuzz_pages.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  api::settings = {};
  FuzzInput input(data, size);
  const testing::TestImage form = DrawFuzzForm(input);
  const FuzzDib dib(*form.rec(), input);
  const int32_t interpolation = input.MostlyIn(1, 3);
  const int32_t threshold = input.MostlyIn(0, 255);
  const uint8_t fill[3] = {input.Byte(), input.Byte(), input.Byte()};
  api::settings.CropPixelFlag = input.Flag() ? 1 : 0;

  FuzzInput fields = input;
  for (int skipped = 0; skipped < 60; ++skipped) input.Byte();
  const DeskewCropParam param = ReadCropParam(fields, PutProfile(input.RestAsText()));

  double angle = 0;
  DibRec result{};
  const int32_t status = ImageDeskewCropWithLine(&dib.rec(), interpolation, threshold, 0, 0, fill,
                                                 &angle, &result, param, 0, 0, 0, 0, 1);
  if (result.bits != nullptr) {
    Require(ImgbufCheck(&result) == 0, "an image handed back passes the image library's check");
    ImgbufDestory(&result);
  }
  if (status == STATUS_OK) Require(angle >= -90 && angle <= 90, "a bar leans by a quarter turn");
  return 0;
}
