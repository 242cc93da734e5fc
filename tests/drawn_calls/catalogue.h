// The pages that the services are called on, and the list of the calls.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "drawn_calls/checksum.h"
#include "drawn_calls/drawn_calls.h"
#include "support/dib_image.h"
#include "support/page_drawing.h"

namespace vorlanepic::testing {

// A sheet with text in the middle of a picture, its sides in parts of the picture's.
inline TestImage DrawnSheet(int32_t bitsPerPixel, double degrees, int32_t width, int32_t height,
                            double pageWidth, double pageHeight) {
  DrawnPage page;
  page.imageWidth = width;
  page.imageHeight = height;
  page.pageWidth = width * pageWidth;
  page.pageHeight = height * pageHeight;
  page.centerX = width / 2;
  page.centerY = height / 2;
  page.bitsPerPixel = bitsPerPixel;
  page.degrees = degrees;
  page.text = true;
  page.noise = bitsPerPixel == 1 ? 0 : 6;
  return DrawPage(page);
}

struct Page {
  std::string name;
  TestImage image;
  TestDib dib;
  std::string text;  // of the picture, so that a difference in the drawing is seen as one
  Page(std::string pageName, const TestImage& drawn)
      : name(std::move(pageName)), image(drawn), dib(drawn), text(ImageText(*drawn.rec())) {}
};
using SharedPage = std::shared_ptr<const Page>;

class Catalogue {
 public:
  void Add(const SharedPage& page, const std::string& call, std::vector<int32_t> exhausted,
           std::function<CallResult(const Around&)> run) {
    calls_.push_back({page->name + " " + call, std::move(exhausted), std::move(run), "", false});
  }
  void OrAs(const std::string& call) { calls_.back().orAs = call; }
  void SparesLargest() { calls_.back().sparesLargest = true; }
  const std::string& last() const { return calls_.back().name; }
  std::vector<DrawnCall> Take() { return std::move(calls_); }

 private:
  std::vector<DrawnCall> calls_;
};

// The functions on blocks, of pages of 8 bits.
void AddBlocks(const SharedPage& page, Catalogue* calls);

// Noise at the top of a picture and nothing below it: the first rows let far more blocks be
// expected than there are, and room for them may not be had.
void AddNoiseAtTop(Catalogue* calls);

}  // namespace vorlanepic::testing
