#include "vorlanepic/imgbuf.h"

#include <algorithm>
#include <cstring>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "support/failing_heap.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

TEST(ImgbufNew, MakesPossibleShapesAndRefusesOthers) {
  struct Case {
    int32_t width;
    int32_t height;
    int32_t bitsPerPixel;
    int32_t status;
  };
  constexpr int32_t kMost = INT32_MAX;
  for (const Case& c :
       {Case{1, 1, 1, 0}, Case{33, 7, 8, 0}, Case{5, 3, 24, 0}, Case{9, 2, 4, 0}, Case{0, 5, 8, 1},
        Case{5, -1, 8, 1}, Case{5, 5, 7, 1}, Case{65536, 32768, 8, 1}, Case{kMost, kMost, 32, 1}}) {
    SCOPED_TRACE(testing::PrintToString(std::tuple(c.width, c.height, c.bitsPerPixel)));
    ImageRec image{};
    EXPECT_EQ(Imgbuf_New(&image, c.width, c.height, c.bitsPerPixel, 0), c.status);
    EXPECT_EQ(image.pixels != nullptr, c.status == 0);
    EXPECT_EQ(Imgbuf_Destory(&image), c.status);
    DibRec dib{};
    EXPECT_EQ(ImgbufNew(&dib, c.width, c.height, c.bitsPerPixel), c.status);
    EXPECT_EQ(dib.bits != nullptr, c.status == 0);
    EXPECT_EQ(ImgbufDestory(&dib), c.status);
  }
  // The pixels alone would fit.
  ImageRec image{};
  EXPECT_EQ(Imgbuf_New(&image, 1, 536870911, 1, 0), 1);
  EXPECT_EQ(Imgbuf_New(&image, 65535, 32767, 8, 0), 1);
}

TEST(ImgbufNew, LaysRowsOutPaddedAndZeroed) {
  // 1000 x 3000 needs large pages, 10 x 3 does not.
  for (const auto& [width, height] : {std::pair{10, 3}, std::pair{1001, 3000}}) {
    ImageRec image{};
    ASSERT_EQ(Imgbuf_New(&image, width, height, 24, 1), 0);
    EXPECT_EQ(Imgbuf_Check(&image), 0);
    EXPECT_EQ(image.lineBytes, (width * 3 + 3) / 4 * 4);
    EXPECT_EQ(image.imageBytes, image.lineBytes * height);
    for (int32_t y = 0; y < height; ++y) {
      ASSERT_EQ(image.rows[y], image.pixels + ptrdiff_t{y} * image.lineBytes);
    }
    EXPECT_EQ(image.pixels[0], 0);
    EXPECT_EQ(
        std::memcmp(image.pixels, image.pixels + 1, static_cast<size_t>(image.imageBytes) - 1), 0);
    std::memset(image.pixels, 0xFF, static_cast<size_t>(image.imageBytes));
    EXPECT_EQ(Imgbuf_Destory(&image), 0);
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_EQ(Imgbuf_Destory(&image), 1);
  }
}

TEST(ImgbufCheck, RefusesRecordsThatCannotBeUsed) {
  uint8_t pixels[40] = {};
  uint8_t* rows[2] = {pixels, pixels + 20};
  const ImageRec good{20, 2, 8, 40, 20, rows, pixels};
  EXPECT_EQ(Imgbuf_Check(&good), 0);
  EXPECT_EQ(Imgbuf_Check(nullptr), 1);
  for (auto spoil :
       {+[](ImageRec& r) { r.rows = nullptr; }, +[](ImageRec& r) { r.pixels = nullptr; },
        +[](ImageRec& r) { r.width = 0; }, +[](ImageRec& r) { r.height = -2; },
        +[](ImageRec& r) { r.bitsPerPixel = 12; }, +[](ImageRec& r) { r.width = 21; },
        +[](ImageRec& r) { r.imageBytes = 41; }, +[](ImageRec& r) { r.bitsPerPixel = 24; },
        +[](ImageRec& r) { r.lineBytes = INT32_MAX; }}) {
    ImageRec bad = good;
    spoil(bad);
    EXPECT_EQ(Imgbuf_Check(&bad), 1);
  }
}

TEST(DibImage, IsABitmapFileInMemory) {
  DibRec dib{};
  ASSERT_EQ(ImgbufNew(&dib, 10, 4, 8), 0);
  EXPECT_EQ(ImgbufCheck(&dib), 0);
  uint32_t fileBytes = 0;
  uint32_t pixelOffset = 0;
  std::memcpy(&fileBytes, dib.fileHeader + 2, 4);
  std::memcpy(&pixelOffset, dib.fileHeader + 10, 4);
  EXPECT_EQ(dib.fileHeader[0], 'B');
  EXPECT_EQ(dib.fileHeader[1], 'M');
  EXPECT_EQ(pixelOffset, 14U + 40U + 1024U);
  EXPECT_EQ(fileBytes, pixelOffset + 12U * 4U);
  EXPECT_EQ(dib.bits, dib.fileHeader + pixelOffset);
  EXPECT_EQ(dib.infoHeader[40 + 4 * 200], 200);  // the ramp
  EXPECT_EQ(ImgbufDestory(&dib), 0);
  EXPECT_EQ(ImgbufDestory(&dib), 1);
}

TEST(DibImage, CheckRefusesImpossibleHeaders) {
  DibRec dib{};
  ASSERT_EQ(ImgbufNew(&dib, 10, 4, 8), 0);
  DibRec headless = dib;
  headless.fileHeader = nullptr;
  EXPECT_EQ(ImgbufCheck(&headless), 0);
  headless.bits = nullptr;
  EXPECT_EQ(ImgbufCheck(&headless), 1);
  const int32_t bottomUp = -4;
  std::memcpy(dib.infoHeader + 8, &bottomUp, 4);
  EXPECT_EQ(ImgbufCheck(&dib), 1);
  const int32_t absurd = INT32_MAX;
  std::memcpy(dib.infoHeader + 8, &absurd, 4);
  EXPECT_EQ(ImgbufCheck(&dib), 1);
  EXPECT_EQ(ImgbufCheck(nullptr), 1);
  ImgbufDestory(&dib);
}

TEST(ImgbufNew, ReportsExhaustedMemoryAndLeavesTheRecord) {
  const vorlanepic::testing::FailingHeap heap(0);
  ImageRec image{};
  EXPECT_EQ(Imgbuf_New(&image, 10, 10, 8, 0), 2);
  EXPECT_EQ(image.pixels, nullptr);
}

#if defined(__linux__)
// Whether the page of memory at `address` is there at all.
bool IsMapped(const uint8_t* address) {
  const auto page = reinterpret_cast<uintptr_t>(address) / 4096 * 4096;
  unsigned char isResident = 0;
  return mincore(reinterpret_cast<void*>(page), 1, &isResident) == 0;
}

// Where an image of 8 bits lay that was filled and released.
const uint8_t* PlaceOfReleased(int32_t width, int32_t height) {
  ImageRec image{};
  EXPECT_EQ(Imgbuf_New(&image, width, height, 8, 0), 0);
  const auto bytes = static_cast<size_t>(image.imageBytes);
  EXPECT_EQ(std::count(image.pixels, image.pixels + bytes, 0), image.imageBytes);
  std::memset(image.pixels, 0xFF, bytes);
  const uint8_t* pixels = image.pixels;
  EXPECT_EQ(Imgbuf_Destory(&image), 0);
  return pixels;
}

TEST(KeptBlock, ServesTheNextImageClearedAndIsGivenBack) {
  ASSERT_EQ(Imgbuf_KeepLimit(INT32_MAX), 64 << 20);
  const uint8_t* first = PlaceOfReleased(3000, 3000);
  EXPECT_EQ(PlaceOfReleased(3000, 3000), first);
  EXPECT_NE(PlaceOfReleased(3000, 1000), first);  // under half of it: the large one is dropped
  EXPECT_FALSE(IsMapped(first));

  const uint8_t* kept = PlaceOfReleased(4000, 2000);
  EXPECT_TRUE(IsMapped(kept));
  EXPECT_EQ(Imgbuf_Trim(), 0);
  EXPECT_FALSE(IsMapped(kept));
  EXPECT_FALSE(IsMapped(PlaceOfReleased(9000, 8000)));  // over 64 MB

  kept = PlaceOfReleased(4000, 2000);
  EXPECT_EQ(Imgbuf_KeepLimit(-1), 64 << 20);
  EXPECT_FALSE(IsMapped(kept));
  EXPECT_FALSE(IsMapped(PlaceOfReleased(4000, 2000)));
  EXPECT_EQ(Imgbuf_KeepLimit(64 << 20), 0);
}
#endif

TEST(ImgbufNew, ServesTwoThreadsAtOnce) {
  const auto work = [] {
    for (int i = 0; i < 200; ++i) {
      ImageRec image{};
      ASSERT_EQ(Imgbuf_New(&image, 40 + i * 50, 500, 8, 0), 0);
      image.rows[499][0] = 1;
      ASSERT_EQ(Imgbuf_Destory(&image), 0);
    }
  };
  std::thread other(work);
  work();
  other.join();
}

}  // namespace
