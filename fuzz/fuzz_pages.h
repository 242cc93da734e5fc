// Small pages drawn from fuzz input, so that runs come past the first checks of the services.
#pragma once

#include <vector>

#include "fuzz_input.h"
#include "support/page_drawing.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::fuzz {

// A page or a form with a bar, at most kWidestPage pixels wide and high, 1, 8 or 24 bits deep,
// turned at will, over which some of the input's bytes are strewn. Storage is exact and lies
// between guards, so that every byte too many is seen. Drawn row by row: a run of the services
// takes a fraction of a millisecond, and the drawing has to take less.
inline constexpr int32_t kWidestPage = 144;
testing::TestImage DrawFuzzPage(FuzzInput& input);
testing::TestImage DrawFuzzForm(FuzzInput& input);

// A device-independent image with the pixels of another: exact storage of its own, the image's
// size and depth in its header unless the input spoils them with values that a check must refuse.
class FuzzDib {
 public:
  FuzzDib(const ImageRec& image, FuzzInput& input);
  FuzzDib(const FuzzDib&) = delete;
  FuzzDib& operator=(const FuzzDib&) = delete;

  const DibRec& rec() const { return rec_; }

 private:
  std::vector<uint8_t> fileHeader_;
  std::vector<uint8_t> infoHeader_;
  std::vector<uint8_t> bits_;
  DibRec rec_{};
};

// Promises of every image handed back: the image library takes it and its row table is right.
void RequireSoundImage(const ImageRec& image);

}  // namespace vorlanepic::fuzz
