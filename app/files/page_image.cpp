#include "app/files/page_image.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "vorlanepic/vorlanepic.h"

namespace vorlane::files {
namespace {

// Where a stored pixel goes: rows and columns may change places, then each may run backwards.
struct Turning {
  bool isTransposed = false;
  bool isMirrored = false;  // columns run backwards
  bool isFlipped = false;   // rows run backwards
};

Turning TurningOf(uint32_t orientation) {
  switch (orientation) {
    case 2:
      return {false, true, false};
    case 3:
      return {false, true, true};
    case 4:
      return {false, false, true};
    case 5:
      return {true, false, false};
    case 6:
      return {true, true, false};
    case 7:
      return {true, true, true};
    case 8:
      return {true, false, true};
    default:
      return {};
  }
}

struct Bit {
  static void Copy(const uint8_t* from, int32_t x, uint8_t* to, int32_t toX) {
    if ((from[x / 8] & (0x80 >> (x % 8))) != 0) {
      to[toX / 8] |= static_cast<uint8_t>(0x80 >> (toX % 8));
    }
  }
};
template <int kBytes>
struct Whole {
  static void Copy(const uint8_t* from, int32_t x, uint8_t* to, int32_t toX) {
    std::memcpy(to + kBytes * toX, from + kBytes * x, kBytes);
  }
};

// In squares, so that the rows written to stay near when rows and columns change places.
template <typename Pixel>
void CopyTurned(const ImageRec& from, const Turning& turning, ImageRec* to) {
  constexpr int32_t kSquare = 64;
  for (int32_t top = 0; top < from.height; top += kSquare) {
    for (int32_t left = 0; left < from.width; left += kSquare) {
      for (int32_t y = top; y < std::min(top + kSquare, from.height); ++y) {
        for (int32_t x = left; x < std::min(left + kSquare, from.width); ++x) {
          int32_t toX = turning.isTransposed ? y : x;
          int32_t toY = turning.isTransposed ? x : y;
          if (turning.isMirrored) toX = to->width - 1 - toX;
          if (turning.isFlipped) toY = to->height - 1 - toY;
          Pixel::Copy(from.rows[y], x, to->rows[toY], toX);
        }
      }
    }
  }
}

}  // namespace

void CheckSize(uint64_t width, uint64_t height, const ReadLimits& limits) {
  const auto most = static_cast<uint64_t>(limits.mostPixels);
  if (width == 0 || height == 0) throw DecodeError("its header tells of no pixels");
  if (width > INT32_MAX || height > INT32_MAX || width > most / height) {
    throw DecodeError(std::to_string(width) + " x " + std::to_string(height) +
                      " pixels are more than the " + std::to_string(most / 1'000'000) +
                      " megapixels allowed");
  }
  if (limits.gate) limits.gate(width, height);
}

namespace {

void MakeImage(int32_t width, int32_t height, int32_t bitsPerPixel, PagePixels* image) {
  const int32_t status = image->Make(width, height, bitsPerPixel);
  if (status == STATUS_OK) return;
  if (status == OUT_OF_MEMORY) throw DecodeError("there is not enough memory for this page");
  throw DecodeError(std::to_string(width) + " x " + std::to_string(height) + " pixels of " +
                    std::to_string(bitsPerPixel) +
                    " bits are too many; a page image holds up to 2 GB");
}

}  // namespace

void MakeImage(int32_t width, int32_t height, int32_t bitsPerPixel, Page* page) {
  MakeImage(width, height, bitsPerPixel, &page->image);
}

PagePixels Turned(const ImageRec& image, uint32_t orientation) {
  const Turning turning = TurningOf(orientation);
  PagePixels turned;
  if (!turning.isTransposed && !turning.isMirrored && !turning.isFlipped) return turned;
  MakeImage(turning.isTransposed ? image.height : image.width,
            turning.isTransposed ? image.width : image.height, image.bitsPerPixel, &turned);
  switch (image.bitsPerPixel) {
    case 1:
      CopyTurned<Bit>(image, turning, turned.rec());
      break;
    case 8:
      CopyTurned<Whole<1>>(image, turning, turned.rec());
      break;
    default:
      CopyTurned<Whole<3>>(image, turning, turned.rec());
  }
  return turned;
}

void ApplyOrientation(uint32_t orientation, Page* page) {
  PagePixels turned = Turned(*page->image.rec(), orientation);
  if (turned.rec()->pixels == nullptr) return;
  page->image = std::move(turned);
  if (TurningOf(orientation).isTransposed) {
    std::swap(page->metadata.resolution.x, page->metadata.resolution.y);
  }
}

void TurnByQuarters(int32_t degrees, Page* page) {
  // What is to be turned clockwise is stored like a page of this orientation.
  ApplyOrientation(degrees == 90 ? 6 : degrees == 180 ? 3 : degrees == 270 ? 8 : 1, page);
}

}  // namespace vorlane::files
