#include "app/files/page_pixels.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <utility>

#include "frame/pixel_format.h"
#include "frame/row_table.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::files {
namespace {

// Smaller images take memory that the heap keeps.
constexpr int32_t kLeastBytes = int32_t{1} << 20;
constexpr int64_t kMostKept = int64_t{128} << 20;

// Images that nobody uses, the latest one last.
class IdleImages {
 public:
  ~IdleImages() { Drop(); }

  // One with room for as many bytes of pixels and rows, and for not much more; else an empty
  // record.
  ImageRec Take(int64_t bytes, int32_t rows) {
    const std::lock_guard lock(mutex_);
    for (size_t i = count_; i-- > 0;) {
      const ImageRec image = images_[i];
      if (image.imageBytes < bytes || image.imageBytes / 2 > bytes || image.height < rows) continue;
      Remove(i);
      return image;
    }
    return {};
  }

  void Give(const ImageRec& image) {
    const std::lock_guard lock(mutex_);
    if (count_ == images_.size()) DropFirst();
    images_[count_++] = image;
    bytes_ += image.imageBytes;
    while (bytes_ > kMostKept) DropFirst();
  }

  void Drop() {
    const std::lock_guard lock(mutex_);
    while (count_ > 0) DropFirst();
  }

 private:
  void DropFirst() {
    ImageRec first = images_[0];
    Remove(0);
    (void)Imgbuf_Destory(&first);
  }

  void Remove(size_t at) {
    bytes_ -= images_[at].imageBytes;
    std::copy(images_.begin() + at + 1, images_.begin() + count_, images_.begin() + at);
    --count_;
  }

  std::mutex mutex_;
  std::array<ImageRec, 16> images_{};
  size_t count_ = 0;
  int64_t bytes_ = 0;
};

IdleImages& Idle() {
  static IdleImages idle;
  return idle;
}

// With some rows more than asked for, which the next page may have; without where that is too much.
// What is idle makes room where there is none else.
int32_t MakeWhole(int32_t width, int32_t height, int32_t bitsPerPixel, ImageRec* whole) {
  const int32_t spare = std::min(height / 16, INT32_MAX - height);
  if (Imgbuf_New(whole, width, height + spare, bitsPerPixel, 0) == STATUS_OK) return STATUS_OK;
  const int32_t status = Imgbuf_New(whole, width, height, bitsPerPixel, 0);
  if (status != OUT_OF_MEMORY) return status;
  Idle().Drop();
  return Imgbuf_New(whole, width, height, bitsPerPixel, 0);
}

void ClearPadding(const ImageRec& image) {
  const size_t rowBytes =
      static_cast<size_t>(image.width) * static_cast<size_t>(image.bitsPerPixel / 8);
  const size_t padding = static_cast<size_t>(image.lineBytes) - rowBytes;
  for (int32_t y = 0; y < image.height; ++y) std::memset(image.rows[y] + rowBytes, 0, padding);
}

}  // namespace

PagePixels& PagePixels::operator=(PagePixels&& other) noexcept {
  std::swap(rec_, other.rec_);
  std::swap(whole_, other.whole_);
  std::swap(place_, other.place_);
  std::swap(placedRows_, other.placedRows_);
  return *this;
}

PagePixels::~PagePixels() {
  if (whole_.pixels != nullptr) {
    Idle().Give(whole_);
  } else if (rec_.pixels != nullptr && placedRows_.empty()) {
    (void)Imgbuf_Destory(&rec_);
  }
}

bool PagePixels::LayInPlace(const ImageRec& shape) {
  uint8_t* pixels = place_ ? place_(static_cast<size_t>(shape.imageBytes)) : nullptr;
  if (pixels == nullptr) return false;
  placedRows_.resize(static_cast<size_t>(shape.height));
  rec_ = shape;
  rec_.pixels = pixels;
  vorlanepic::frame::LayRows(placedRows_.data(), &rec_);
  return true;
}

int32_t PagePixels::LayInKept(const ImageRec& shape) {
  whole_ = Idle().Take(shape.imageBytes, shape.height);
  if (whole_.pixels == nullptr) {
    const int32_t status = MakeWhole(shape.width, shape.height, shape.bitsPerPixel, &whole_);
    if (status != STATUS_OK) return status;
  }
  rec_ = shape;
  rec_.pixels = whole_.pixels;
  vorlanepic::frame::LayRows(whole_.rows, &rec_);
  return STATUS_OK;
}

int32_t PagePixels::Make(int32_t width, int32_t height, int32_t bitsPerPixel) {
  const int64_t lineBytes = vorlanepic::frame::PaddedRowBytes(width, bitsPerPixel);
  const bool isKept = (bitsPerPixel == 8 || bitsPerPixel == 24) && width > 0 && height > 0 &&
                      lineBytes <= INT32_MAX / int64_t{height} && lineBytes * height >= kLeastBytes;
  if (!isKept) return Imgbuf_New(&rec_, width, height, bitsPerPixel, 0);
  const ImageRec shape = {width,
                          height,
                          bitsPerPixel,
                          static_cast<int32_t>(lineBytes * height),
                          static_cast<int32_t>(lineBytes),
                          nullptr,
                          nullptr};
  if (const int32_t status = LayInPlace(shape) ? STATUS_OK : LayInKept(shape)) return status;
  ClearPadding(rec_);
  return STATUS_OK;
}

}  // namespace vorlane::files
