// The pruned rotation on any page with any arguments.
#include <algorithm>

#include "api/service_call.h"
#include "frame/scratch.h"
#include "fuzz_pages.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::fuzz;

namespace {

void StraightenToNewImage(const ImageRec& page, FuzzInput& input) {
  const int32_t mode = input.MostlyIn(1, 3);
  const int32_t threshold = input.MostlyIn(0, 255);
  const int32_t background = input.Flag() ? 255 : input.MostlyIn(0, 0);
  double angle = -1;
  frame::ScratchImage result;
  const int32_t status = ImageVorlaneEx(&page, mode, threshold, background, &angle, result.rec());
  if (status == STATUS_OK) {
    RequireSoundImage(*result.rec());
    Require(result.rec()->bitsPerPixel == page.bitsPerPixel, "the depth stays");
    Require(angle >= 0 && angle <= 6.2831854, "the angle lies within a full turn");
  } else {
    Require(result.rec()->pixels == nullptr, "a failed call hands no image back");
  }
}

// The function is not told how large the buffer is, and writes its result whole. Hosts that do not
// know their pictures learn the size first, from the function that makes an image of its own, and
// have exactly the room for the larger of the two; one byte more would be in the guard behind it.
void StraightenInPlace(const ImageRec& page, FuzzInput& input) {
  const int32_t mode = input.MostlyIn(1, 3);
  const int32_t threshold = input.In(0, 255);
  double angle = 0;
  frame::ScratchImage expected;
  const int32_t status = ImageVorlaneEx(&page, mode, threshold, 0, &angle, expected.rec());
  const int32_t bytes = std::max(page.imageBytes, expected.rec()->imageBytes);

  testing::GuardedBytes buffer(static_cast<size_t>(bytes));
  std::copy_n(page.pixels, page.imageBytes, buffer.data());
  int32_t width = page.width;
  int32_t height = page.height;
  const int32_t isDone =
      threshold == 0 && input.Flag()
          ? VorlanePicEx(buffer.data(), &width, &height, page.bitsPerPixel, mode)
          : VorlanePic(buffer.data(), &width, &height, page.bitsPerPixel, mode, threshold);
  if (status == STATUS_OK) {
    Require(isDone == 1 && width == expected.rec()->width && height == expected.rec()->height,
            "both ways give the same size");
  } else {
    Require(width == page.width && height == page.height &&
                std::equal(page.pixels, page.pixels + page.imageBytes, buffer.data()),
            "a failed call changes nothing");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  api::settings = {};
  FuzzInput input(data, size);
  const testing::TestImage page = DrawFuzzPage(input);
  if (input.Flag()) {
    StraightenToNewImage(*page.rec(), input);
  } else {
    StraightenInPlace(*page.rec(), input);
  }
  return 0;
}
