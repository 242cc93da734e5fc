// JPEG files, and the data of JPEG pictures in files of other formats.
#include "app/files/jpeg_reader.h"
#include "fuzz_files.h"

using namespace vorlane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (const auto read : {files::ReadJpeg, files::ReadJpegPicture}) {
    fuzz::Attempt([&] {
      files::Page page;
      read(files::Bytes(data, data + size), fuzz::SmallLimits(), &page);
      fuzz::TakePage(page);
    });
  }
  return 0;
}
