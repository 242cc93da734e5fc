#include "fuzz_files.h"

#include "app/files/errors.h"
#include "app/files/picture_writer.h"
#include "fuzz_input.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::fuzz {

using vorlanepic::fuzz::Require;

files::ReadLimits SmallLimits() {
  files::ReadLimits limits;
  limits.mostPixels = 1 << 16;
  limits.mostPages = 8;
  return limits;
}

void Attempt(const std::function<void()>& work) {
  try {
    work();
  } catch (const files::FileError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  } catch (const files::DecodeError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  } catch (const files::EncodeError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  } catch (const files::UsageError& error) {
    Require(error.what()[0] != '\0', "a refusal has words");
  }
}

void TakePage(const files::Page& page) {
  const ImageRec& image = *page.image.rec();
  if (!page.noPicture.empty()) {
    Require(image.pixels == nullptr, "a page that is no picture has no pixels");
    return;
  }
  Require(Imgbuf_Check(&image) == 0, "a page passes the image library's check");
  Require(image.bitsPerPixel == 1 || image.bitsPerPixel == 8 || image.bitsPerPixel == 24,
          "a page is of 1, 8 or 24 bits");
  Require(int64_t{image.width} * image.height <= SmallLimits().mostPixels,
          "a page keeps within the limits");
  Require(page.metadata.resolution.x >= 0 && page.metadata.resolution.y >= 0,
          "a resolution is a number, and not negative");
  std::vector<std::string> notes;
  Attempt([&] { files::EncodePage(page.coding.format, image, page, {}, &notes); });
}

}  // namespace vorlane::fuzz
