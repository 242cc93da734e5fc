// The image library: shapes that may be impossible, records that may be broken.
#include <vector>

#include "fuzz_pages.h"
#include "vorlanepic/imgbuf.h"

using namespace vorlanepic::fuzz;

namespace {

int32_t Depth(FuzzInput& input) {
  constexpr int32_t kDepths[] = {1, 4, 8, 16, 24, 32};
  return input.Byte() < 200 ? kDepths[input.In(0, 5)] : input.Int32();
}

// Whether an image is neither small nor impossible. Such are not made: they show nothing new, and
// to clear their memory takes long.
bool IsTooSlow(int32_t width, int32_t height, int32_t bitsPerPixel) {
  constexpr double kSmall = 1 << 20;
  constexpr double kImpossible = 1U << 31;
  if (width <= 0 || height <= 0 || bitsPerPixel <= 0 || bitsPerPixel > 32) return false;
  const double bytes = (width * (bitsPerPixel / 8.0) + sizeof(uint8_t*)) * height;
  return bytes > kSmall && bytes < kImpossible;
}

void MakeImage(FuzzInput& input) {
  const int32_t width = input.MostlyIn(0, 300);
  const int32_t height = input.MostlyIn(0, 300);
  const int32_t bitsPerPixel = Depth(input);
  if (IsTooSlow(width, height, bitsPerPixel)) return;
  ImageRec image{};
  const int32_t status = Imgbuf_New(&image, width, height, bitsPerPixel, input.Int32());
  if (status != 0) {
    Require(image.pixels == nullptr, "a refused image leaves the record alone");
    Require(Imgbuf_Destory(&image) == 1, "there is nothing to release");
    return;
  }
  RequireSoundImage(image);
  Require(image.lineBytes % 4 == 0 &&
              int64_t{image.lineBytes} * 8 >= int64_t{width} * image.bitsPerPixel,
          "rows are padded to 4 bytes");
  for (uint8_t* end : {image.rows[0], image.rows[height - 1] + image.lineBytes - 1}) {
    Require(*end == 0, "pixels begin as 0");
    *end = 255;
  }
  Require(Imgbuf_Destory(&image) == 0 && image.pixels == nullptr, "a released record is empty");
}

void MakeDib(FuzzInput& input) {
  const int32_t width = input.MostlyIn(0, 300);
  const int32_t height = input.MostlyIn(0, 300);
  const int32_t bitsPerPixel = Depth(input);
  if (IsTooSlow(width, height, bitsPerPixel)) return;
  DibRec image{};
  const int32_t status = ImgbufNew(&image, width, height, bitsPerPixel);
  if (status != 0) {
    Require(image.bits == nullptr, "a refused image leaves the record alone");
    return;
  }
  Require(ImgbufCheck(&image) == 0, "a new image passes the check");
  uint32_t length = 0;  // of the file that begins at fileHeader
  for (int i = 3; i >= 0; --i) length = length << 8 | image.fileHeader[2 + i];
  Require(image.fileHeader < image.bits && image.bits < image.fileHeader + length,
          "the rows lie in the file");
  image.fileHeader[length - 1] = 255;
  Require(ImgbufDestory(&image) == 0 && image.bits == nullptr, "a released record is empty");
}

void CheckBrokenRecords(FuzzInput& input) {
  uint8_t pixel = 0;
  uint8_t* row = &pixel;
  const ImageRec image{
      input.MostlyIn(-1, 40),         input.MostlyIn(-1, 40),  Depth(input),
      input.MostlyIn(-1, 4000),       input.MostlyIn(-1, 200), input.Flag() ? &row : nullptr,
      input.Flag() ? &pixel : nullptr};
  if (Imgbuf_Check(&image) == 0) {
    Require(int64_t{image.lineBytes} * image.height == image.imageBytes,
            "a sound record's rows fill its block");
  }

  std::vector<uint8_t> fileHeader(14);
  std::vector<uint8_t> infoHeader(40);
  for (uint8_t& byte : infoHeader) byte = input.Byte();
  const DibRec dib{input.Flag() ? fileHeader.data() : nullptr,
                   input.Flag() ? infoHeader.data() : nullptr, nullptr,
                   input.Flag() ? &pixel : nullptr};
  const int32_t status = ImgbufCheck(&dib);
  Require(status == 0 || status == 1, "a check answers yes or no");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput input(data, size);
  MakeImage(input);
  MakeDib(input);
  CheckBrokenRecords(input);
  return 0;
}
