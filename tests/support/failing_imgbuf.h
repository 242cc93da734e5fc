// Stands between the library under test and the image library: counts images, puts their pixels
// between guards and lets a chosen call fail.
#pragma once

#include <cstdint>

namespace vorlanepic::testing {

// Lets calls of the image library fail while it lives; afterwards all succeed again. One at a time.
class FailingImgbuf {
 public:
  FailingImgbuf();
  ~FailingImgbuf();
  FailingImgbuf(const FailingImgbuf&) = delete;
  FailingImgbuf& operator=(const FailingImgbuf&) = delete;

  // The n-th call from now on, counted from 0, returns `status` and does nothing else.
  void FailNew(int32_t n, int32_t status);       // Imgbuf_New
  void FailCheck(int32_t n, int32_t status);     // Imgbuf_Check
  void FailDibNew(int32_t n, int32_t status);    // ImgbufNew
  void FailDibCheck(int32_t n, int32_t status);  // ImgbufCheck
  // Imgbuf_Destory releases the image, then returns `status`.
  void FailDestory(int32_t n, int32_t status);

  // Images that were made and not yet released since the beginning.
  int32_t aliveImages() const;
  // Calls of Imgbuf_New since the beginning.
  int32_t newCalls() const;
};

}  // namespace vorlanepic::testing
