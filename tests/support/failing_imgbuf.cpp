#include "support/failing_imgbuf.h"

#include <atomic>
#include <cstddef>
#include <cstring>

#include "support/guarded_memory.h"
#include "vorlanepic/imgbuf.h"

// The image library proper, compiled for the tests under these names.
extern "C" {
int32_t IMGBUF_CALL Genuine_Imgbuf_New(ImageRec*, int32_t, int32_t, int32_t, int32_t) noexcept;
int32_t IMGBUF_CALL Genuine_Imgbuf_Check(const ImageRec*) noexcept;
int32_t IMGBUF_CALL Genuine_Imgbuf_Destory(ImageRec*) noexcept;
int32_t IMGBUF_CALL Genuine_ImgbufNew(DibRec*, int32_t, int32_t, int32_t) noexcept;
int32_t IMGBUF_CALL Genuine_ImgbufCheck(const DibRec*) noexcept;
int32_t IMGBUF_CALL Genuine_ImgbufDestory(DibRec*) noexcept;
}

namespace vorlanepic::testing {
namespace {

// Counts down to the call that fails; idle below 0.
struct Fault {
  std::atomic<int32_t> callsLeft{-1};
  std::atomic<int32_t> status{0};

  void Arm(int32_t n, int32_t failure) {
    status = failure;
    callsLeft = n;
  }
  bool Strikes() { return callsLeft >= 0 && callsLeft-- == 0; }
};

Fault newFault;
Fault checkFault;
Fault destoryFault;
Fault dibNewFault;
Fault dibCheckFault;
std::atomic<int32_t> alive{0};
std::atomic<int32_t> made{0};

constexpr int32_t kNoMemory = 2;

// The image library's own block stays what the record is released by.
bool MovePixelsBetweenGuards(ImageRec* image) {
  auto* pixels = static_cast<uint8_t*>(MapGuarded(static_cast<size_t>(image->imageBytes)));
  if (pixels == nullptr) return false;
  image->pixels = pixels;
  for (int32_t y = 0; y < image->height; ++y) {
    image->rows[y] = pixels + ptrdiff_t{y} * image->lineBytes;
  }
  return true;
}

size_t BitsBytes(const DibRec& image) {
  uint32_t bytes = 0;
  std::memcpy(&bytes, image.infoHeader + 20, sizeof bytes);
  return bytes;
}

bool MoveBitsBetweenGuards(DibRec* image) {
  auto* bits = static_cast<uint8_t*>(MapGuarded(BitsBytes(*image)));
  if (bits != nullptr) image->bits = bits;
  return bits != nullptr;
}

void Disarm() {
  for (Fault* fault : {&newFault, &checkFault, &destoryFault, &dibNewFault, &dibCheckFault}) {
    fault->Arm(-1, 0);
  }
}

}  // namespace

FailingImgbuf::FailingImgbuf() {
  Disarm();
  alive = 0;
  made = 0;
}

FailingImgbuf::~FailingImgbuf() { Disarm(); }

void FailingImgbuf::FailNew(int32_t n, int32_t status) { newFault.Arm(n, status); }
void FailingImgbuf::FailCheck(int32_t n, int32_t status) { checkFault.Arm(n, status); }
void FailingImgbuf::FailDestory(int32_t n, int32_t status) { destoryFault.Arm(n, status); }
void FailingImgbuf::FailDibNew(int32_t n, int32_t status) { dibNewFault.Arm(n, status); }
void FailingImgbuf::FailDibCheck(int32_t n, int32_t status) { dibCheckFault.Arm(n, status); }
int32_t FailingImgbuf::aliveImages() const { return alive; }
int32_t FailingImgbuf::newCalls() const { return made; }

}  // namespace vorlanepic::testing

using namespace vorlanepic::testing;

int32_t IMGBUF_CALL Imgbuf_New(ImageRec* image, int32_t width, int32_t height, int32_t bitsPerPixel,
                               int32_t flag) noexcept {
  ++made;
  if (newFault.Strikes()) return newFault.status;
  const int32_t status = Genuine_Imgbuf_New(image, width, height, bitsPerPixel, flag);
  if (status != 0) return status;
  if (!MovePixelsBetweenGuards(image)) {
    Genuine_Imgbuf_Destory(image);
    return kNoMemory;
  }
  ++alive;
  return 0;
}

int32_t IMGBUF_CALL Imgbuf_Check(const ImageRec* image) noexcept {
  return checkFault.Strikes() ? checkFault.status.load() : Genuine_Imgbuf_Check(image);
}

int32_t IMGBUF_CALL Imgbuf_Destory(ImageRec* image) noexcept {
  if (image != nullptr && image->pixels != nullptr) {
    UnmapGuarded(image->pixels, static_cast<size_t>(image->imageBytes));
  }
  const int32_t status = Genuine_Imgbuf_Destory(image);
  if (status == 0) --alive;
  return destoryFault.Strikes() ? destoryFault.status.load() : status;
}

int32_t IMGBUF_CALL ImgbufNew(DibRec* image, int32_t width, int32_t height,
                              int32_t bitsPerPixel) noexcept {
  if (dibNewFault.Strikes()) return dibNewFault.status;
  const int32_t status = Genuine_ImgbufNew(image, width, height, bitsPerPixel);
  if (status != 0 || MoveBitsBetweenGuards(image)) return status;
  Genuine_ImgbufDestory(image);
  return kNoMemory;
}

int32_t IMGBUF_CALL ImgbufCheck(const DibRec* image) noexcept {
  return dibCheckFault.Strikes() ? dibCheckFault.status.load() : Genuine_ImgbufCheck(image);
}

int32_t IMGBUF_CALL ImgbufDestory(DibRec* image) noexcept {
  if (image != nullptr && image->bits != nullptr) UnmapGuarded(image->bits, BitsBytes(*image));
  return Genuine_ImgbufDestory(image);
}
