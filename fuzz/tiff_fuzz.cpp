// TIFF files: their lists of pages, every page, and its directory handed on as it is.
#include "app/files/picture_writer.h"
#include "fuzz_files.h"

using namespace vorlane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Attempt([&] {
    const files::MemorySource bytes(std::span(data, size));
    if (!files::ReadTiffHeader(bytes)) return;
    const files::PictureFile file(
        "file", std::make_shared<files::MemorySource>(std::span(data, size)), fuzz::SmallLimits());
    for (int32_t number = 1; number <= file.count(); ++number) {
      fuzz::Attempt([&] {
        const files::Page page = file.Read(number);
        fuzz::TakePage(page);
        std::vector<std::string> notes;
        files::KeepPage(files::FileFormat::kTiff, file, page, {}, &notes);
      });
    }
  });
  return 0;
}
