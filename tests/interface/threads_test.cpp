// Calls of several threads at once: each gives what it gives alone.
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "interface/method_param.h"
#include "support/dib_image.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

constexpr uint8_t kBlack[3] = {0, 0, 0};

// A result as bytes, for comparison: status, angle, size and pixels.
class Outcome {
 public:
  void Add(const void* data, size_t size) { bytes_.append(static_cast<const char*>(data), size); }
  void Add(int32_t status, double angle) {
    Add(&status, sizeof status);
    Add(&angle, sizeof angle);
  }
  void Take(ImageRec* image) {
    if (image->pixels == nullptr) return;
    Add(&image->width, sizeof image->width);
    Add(image->pixels, static_cast<size_t>(image->imageBytes));
    Imgbuf_Destory(image);
  }
  std::string bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

using Call = std::function<std::string()>;

Call Straighten(const TestImage& page) {
  return [&page] {
    Outcome outcome;
    ImageRec result{};
    double angle = -1;
    const int32_t status = ImageVorlaneEx(page.rec(), INTERP_NEAREST, 0, 0, &angle, &result);
    outcome.Add(status, angle);
    outcome.Take(&result);
    return outcome.bytes();
  };
}

Call Crop(const TestImage& page, int32_t method) {
  return [&page, method] {
    Outcome outcome;
    ImageRec result{};
    double angle = -1;
    const int32_t status = ImageDeskewCropEx(page.rec(), INTERP_BILINEAR, 120, 0, 0, kBlack, &angle,
                                             &result, MethodParam(method), 1);
    outcome.Add(status, angle);
    outcome.Take(&result);
    return outcome.bytes();
  };
}

Call Angle(const TestDib& page) {
  return [&page] {
    Outcome outcome;
    double angle = -1;
    const int32_t status = ImageDeskewAngle(page.rec(), 120, &angle, MethodParam(2));
    outcome.Add(status, angle);
    return outcome.bytes();
  };
}

Call Form(const TestDib& form) {
  return [&form] {
    Outcome outcome;
    DibRec result{};
    double angle = -1;
    const int32_t status = ImageDeskewCropWithLine(form.rec(), INTERP_NEAREST, 100, 0, 0, kBlack,
                                                   &angle, &result, MethodParam(2), 0, 0, 0, 0, 1);
    outcome.Add(status, angle);
    if (result.bits != nullptr) ImgbufDestory(&result);
    return outcome.bytes();
  };
}

Call Blocks(const TestImage& page) {
  return [&page] {
    Outcome outcome;
    BlockSetRec set{};
    outcome.Add(bw_label_left(page.rec()->pixels, page.rec()->height, page.rec()->width, &set), 0);
    for (int32_t i = 0; i < set.count; ++i) {
      outcome.Add(set.blocks[i].points,
                  static_cast<size_t>(set.blocks[i].pointCount) * sizeof(BlockPoint));
    }
    DestoryBlockSetRec(&set);
    return outcome.bytes();
  };
}

TEST(Threads, MixedCallsGiveWhatEachGivesAlone) {
  const TestImage page = DrawPage({.degrees = 4, .text = true});
  const TestImage bits = DrawPage({.bitsPerPixel = 1, .degrees = -7});
  const TestImage colour = DrawPage({.bitsPerPixel = 24, .degrees = 12});
  const TestImage dark(200, 200, 8);
  // Method 2 finds the page's first and last row as the method of the call before it does; on an
  // upright page all methods find the same.
  const TestImage upright = DrawPage({.text = true});
  const TestDib dib(upright);
  const TestDib form(DrawBarSheet({.page = {.imageWidth = 900,
                                            .imageHeight = 640,
                                            .pageWidth = 700,
                                            .pageHeight = 500,
                                            .centerX = 450,
                                            .centerY = 320,
                                            .degrees = 2},
                                   .barLength = 620,
                                   .barThickness = 8,
                                   .barY = -150}));
  const std::vector<Call> calls = {
      Straighten(page), Straighten(bits), Straighten(dark), Crop(page, 1), Crop(upright, 2),
      Crop(colour, 3),  Crop(dark, 2),    Angle(dib),       Form(form),    Blocks(page)};
  std::vector<std::string> alone;
  for (const Call& call : calls) alone.push_back(call());

  constexpr size_t kThreads = 4;
  constexpr size_t kCallsEach = 60;
  std::vector<int> differing(kThreads);
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (size_t i = 0; i < kCallsEach; ++i) {
        const size_t which = (i * (2 * t + 1) + t) % calls.size();
        if (calls[which]() != alone[which]) ++differing[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differing, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace vorlanepic::testing
