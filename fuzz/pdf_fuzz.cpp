// PDF files: their pages, and a file with one page replaced and one left out. The pictures of pages
// are taken out by another program, whose files the readers of TIFF and JPEG take.
#include "app/files/pdf_pages.h"
#include "app/files/pdf_writer.h"
#include "app/files/source_stream.h"
#include "fuzz_files.h"
#include "fuzz_input.h"

using namespace vorlane;

namespace {

constexpr size_t kMostPages = 8;

void Rewrite(const files::ByteSource& file, size_t pages) {
  files::PdfWriter writer(files::StreamOf(file));
  files::PdfPicture picture;
  picture.number = 1;
  picture.width = 8;
  picture.height = 1;
  picture.pointsWide = 8;
  picture.pointsHigh = 1;
  writer.Add(picture, files::Bytes(8, 0x55));
  for (size_t i = 2; i < pages; ++i) {
    files::PdfPicture kept;
    kept.number = static_cast<int32_t>(i);
    kept.isKept = true;
    writer.Add(kept, {});
  }
  size_t written = 0;
  writer.Finish([&](const uint8_t* /*bytes*/, size_t count) { written += count; });
  vorlanepic::fuzz::Require(written > 0, "a file that is finished holds something");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const files::MemorySource file(std::span(data, size));
  fuzz::Attempt([&] {
    const std::vector<files::PdfPage> pages = files::LookAtPdf(files::StreamOf(file), kMostPages);
    vorlanepic::fuzz::Require(!pages.empty() && pages.size() <= kMostPages,
                              "a file has as many pages as are allowed");
    for (const files::PdfPage& page : pages) {
      vorlanepic::fuzz::Require(!page.refusal.empty() || page.rotation % 90 == 0,
                                "a picture stands by quarters");
    }
    fuzz::Attempt([&] { Rewrite(file, pages.size()); });
  });
  return 0;
}
