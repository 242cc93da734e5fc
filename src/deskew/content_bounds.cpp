#include "deskew/content_bounds.h"

#include "deskew/bright_lines_sse2.h"
#include "deskew/content_search.h"

namespace vorlanepic::deskew {
namespace {

#if defined(VORLANEPIC_X86)
template <typename Kernel>
using Lines = FastLines<Kernel>;
#else
template <typename Kernel>
using Lines = PlainLines<typename Kernel::Pixel>;
#endif

template <typename Kernel>
int32_t FindContentBoundsAt(const ImageRec& image, const ContentSearch& search, double rowShare,
                            frame::PixelRect* bounds) {
  if (search.searchMode == kSearchColumns &&
      (bounds->top < 0 || bounds->bottom < 0 || bounds->bottom > image.height - 1)) {
    return BAD_ARGUMENT;
  }
  Lines<Kernel> lines(image, search.threshold);
  SearchContent(lines, image.width, image.height, search, rowShare, bounds);
  return STATUS_OK;
}

// A count that no line of the image can exceed is replaced by a share of its size.
uint32_t ReachableCount(uint32_t pixelCount, const ImageRec& image) {
  for (const int32_t length : {image.width, image.height}) {
    if (pixelCount > static_cast<uint32_t>(length)) pixelCount = ShareOfLine(length, kBrightShare);
  }
  return pixelCount;
}

}  // namespace

int32_t FindContentBounds(const ImageRec& image, const ContentSearch& search,
                          frame::PixelRect* bounds) {
  if (search.searchMode > kSearchRowsAndColumns) return BAD_ARGUMENT;

  ContentSearch reachable = search;
  reachable.pixelCount = ReachableCount(search.pixelCount, image);
  const double share = search.takesShare ? kBrightShare : 0.0;
  const double bitShare = search.takesShare ? kBrightShareOfBitRow : 0.0;
  switch (image.bitsPerPixel) {
    case 1:
      return FindContentBoundsAt<BitKernel>(image, reachable, bitShare, bounds);
    case 8:
      return FindContentBoundsAt<GreyKernel>(image, reachable, share, bounds);
    case 24:
      return FindContentBoundsAt<ColourKernel>(image, reachable, share, bounds);
    default:
      return BAD_ARGUMENT;
  }
}

}  // namespace vorlanepic::deskew
