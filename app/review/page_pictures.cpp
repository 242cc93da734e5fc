#include "app/review/page_pictures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "app/files/errors.h"
#include "app/files/pending_file.h"
#include "app/files/pix_owner.h"
#include "app/overlay/small_copy.h"

namespace vorlane::review {
namespace {

// Of the longer side: enough for a tile of the contact sheet on a screen of double density.
constexpr int32_t kThumbnailPixels = 360;

constexpr int32_t kThumbnailQuality = 72;
constexpr int32_t kPictureQuality = 82;

struct Freer {
  void operator()(uint8_t* bytes) const { std::free(bytes); }  // as the encoder's maker asks
};

void WriteJpeg(Pix* picture, int32_t quality, const std::string& path) {
  uint8_t* bytes = nullptr;
  size_t size = 0;
  const bool isMade = pixWriteMemJpeg(&bytes, &size, picture, quality, 0) == 0;
  const std::unique_ptr<uint8_t, Freer> owner(bytes);
  if (!isMade) throw files::FileError(path + ": there is not enough memory for this picture");
  files::PendingFile file(path, files::Replacing::kAllowed, files::Durability::kLeftToSystem);
  file.Append({bytes, size});
  file.Commit();
}

files::PixPtr Made(Pix* picture) {
  if (picture == nullptr) throw files::FileError("there is not enough memory for a picture");
  return files::PixPtr(picture);
}

files::PixPtr Thumbnail(Pix* picture) {
  const int32_t longer = std::max(pixGetWidth(picture), pixGetHeight(picture));
  const float scale =
      std::min(1.0F, static_cast<float>(kThumbnailPixels) / static_cast<float>(longer));
  return Made(scale < 1.0F ? pixScaleAreaMap(picture, scale, scale) : pixClone(picture));
}

}  // namespace

void WritePictures(const ImageRec& image, const std::string& folder, size_t place,
                   int32_t longest) {
  double scale = 1;
  files::PixPtr picture = overlay::SmallCopy(image, longest, &scale);
  // All channels of a page without colour are alike.
  if (image.bitsPerPixel != 24) picture = Made(pixConvertRGBToGrayFast(picture.get()));
  std::array<char, 32> name{};
  (void)std::snprintf(name.data(), name.size(), "/%06zu.jpg", place + 1);
  WriteJpeg(picture.get(), kPictureQuality, folder + "/" + kPictures + name.data());
  WriteJpeg(Thumbnail(picture.get()).get(), kThumbnailQuality,
            folder + "/" + kThumbnails + name.data());
}

}  // namespace vorlane::review
