// What a decoder in its cage may say once it is somebody else's: any bytes as its answers.
#include <algorithm>
#include <vector>

#include "app/cage/page_wire.h"
#include "app/cage/wire.h"
#include "fuzz_input.h"

using namespace vorlane;
using vorlanepic::fuzz::Require;

namespace {

using Bytes = std::span<const uint8_t>;

// Reads an answer; what was read and written again is the same bytes.
template <typename Read, typename Write>
void Exchange(Bytes bytes, const Read& read, const Write& write) {
  try {
    const std::vector<uint8_t> again = write(read(bytes));
    Require(std::ranges::equal(write(read(again)), again), "an answer that was read can be told");
  } catch (const cage::WireError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  }
}

void ReadPicture(Bytes bytes) {
  try {
    files::Page page;
    const cage::PictureShape shape = cage::ReadPage(bytes, &page);
    Require(shape.width > 0 && shape.height > 0, "every picture has a size");
    Require(shape.bitsPerPixel == 1 || shape.bitsPerPixel == 8 || shape.bitsPerPixel == 24,
            "a page is of 1, 8 or 24 bits");
  } catch (const cage::WireError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const Bytes bytes(data + 1, size - 1);
  switch (data[0] % 3) {
    case 0:
      Exchange(bytes, cage::QuestionOf, [](const cage::Question& q) { return cage::BytesOf(q); });
      break;
    case 1:
      Exchange(bytes, cage::ContentsOf,
               [](const files::FileContents& c) { return cage::BytesOf(c); });
      break;
    default:
      ReadPicture(bytes);
  }
  return 0;
}
