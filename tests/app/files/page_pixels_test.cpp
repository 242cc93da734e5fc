#include "app/files/page_pixels.h"

#include <cstring>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace vorlane::files {
namespace {

// Fills an image with what no decoder has put there, and lets it go.
const uint8_t* UseOne(int32_t width, int32_t height, int32_t bitsPerPixel) {
  PagePixels used;
  EXPECT_EQ(used.Make(width, height, bitsPerPixel), 0);
  const ImageRec& rec = *used.rec();
  std::memset(rec.pixels, 0xA5, static_cast<size_t>(rec.imageBytes));
  return rec.pixels;
}

TEST(PagePixels, HaveTheShapeAskedForInMemoryThatServedBefore) {
  const struct {
    int32_t width, height, bitsPerPixel;
    bool isReused;
  } kCases[] = {{1400, 1500, 8, true},  {1401, 1590, 8, true}, {1402, 499, 24, true},
                {1400, 2500, 8, false}, {1400, 500, 8, false}, {4000, 4000, 1, false},
                {700, 3001, 8, false},  {1, 1, 24, false}};
  for (const auto& [width, height, bitsPerPixel, isReused] : kCases) {
    const uint8_t* before = UseOne(1403, 1500, 8);
    PagePixels image;
    ASSERT_EQ(image.Make(width, height, bitsPerPixel), 0);
    const ImageRec& rec = *image.rec();
    EXPECT_EQ(rec.pixels == before, isReused) << width << " x " << height;
    ASSERT_EQ(Imgbuf_Check(&rec), 0);
    EXPECT_TRUE(rec.width == width && rec.height == height && rec.bitsPerPixel == bitsPerPixel);
    for (int32_t y = 0; y < height; ++y) {
      ASSERT_EQ(rec.rows[y], rec.pixels + ptrdiff_t{y} * rec.lineBytes);
      for (int32_t i = bitsPerPixel == 1 ? 0 : width * bitsPerPixel / 8; i < rec.lineBytes; ++i) {
        ASSERT_EQ(rec.rows[y][i], 0) << y << ' ' << i << " of " << width;
      }
      std::memset(rec.rows[y], 1, static_cast<size_t>(rec.lineBytes));
    }
  }
}

TEST(PagePixels, AreRefusedAsTheImageLibraryDoes) {
  PagePixels image;
  EXPECT_EQ(image.Make(0, 5, 8), 1);
  EXPECT_EQ(image.Make(70000, 70000, 8), 1);
  EXPECT_EQ(image.rec()->pixels, nullptr);
}

struct Megabytes {
  int64_t mapped = 0;
  int64_t resident = 0;
};

Megabytes Taken() {
  Megabytes taken;
  std::ifstream("/proc/self/statm") >> taken.mapped >> taken.resident;
  return {taken.mapped * 4096 >> 20, taken.resident * 4096 >> 20};
}

TEST(PagePixels, KeepABoundedPart) {
  const int64_t before = Taken().resident;
  {
    PagePixels images[6];
    for (PagePixels& image : images) {
      ASSERT_EQ(image.Make(6000, 2000, 24), 0);
      std::memset(image.rec()->pixels, 1, static_cast<size_t>(image.rec()->imageBytes));
    }
    EXPECT_GE(Taken().resident, before + 190);
  }
  EXPECT_LE(Taken().resident, before + 170);
}

TEST(PagePixels, MakeRoomWhereMemoryIsShort) {
  {
    PagePixels images[3];
    for (PagePixels& image : images) ASSERT_EQ(image.Make(6000, 2000, 24), 0);
  }
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_AS, &before), 0);
  const rlimit low{static_cast<rlim_t>(Taken().mapped + 40) << 20, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_AS, &low), 0);
  PagePixels image;
  const int32_t status = image.Make(6000, 5000, 24);
  ASSERT_EQ(::setrlimit(RLIMIT_AS, &before), 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace vorlane::files
