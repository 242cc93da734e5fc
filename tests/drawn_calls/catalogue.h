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
  void Add(const SharedPage& page, const std::string& call, int32_t exhausted,
           std::function<CallResult(const Around&)> run) {
    calls_.push_back({page->name + " " + call, exhausted, std::move(run), ""});
  }
  void OrAs(const std::string& call) { calls_.back().orAs = call; }
  const std::string& last() const { return calls_.back().name; }
  std::vector<DrawnCall> Take() { return std::move(calls_); }

 private:
  std::vector<DrawnCall> calls_;
};

// The functions on blocks, of pages of 8 bits.
void AddBlocks(const SharedPage& page, Catalogue* calls);

}  // namespace vorlanepic::testing
