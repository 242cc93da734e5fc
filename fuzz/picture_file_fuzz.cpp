// Files of any kind as the command takes them: recognised by their first bytes, page by page.
#include "fuzz_files.h"

using namespace vorlane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Attempt([&] {
    const files::PictureFile file(
        "file", std::make_shared<files::MemorySource>(std::span(data, size)), fuzz::SmallLimits());
    if (file.pdf() != nullptr) return;  // another program takes the pictures out of its pages
    for (int32_t number = 1; number <= file.count(); ++number) {
      fuzz::Attempt([&] { fuzz::TakePage(file.Read(number)); });
    }
  });
  return 0;
}
