// A page as the bytes that go into its file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/files/page.h"
#include "app/files/pdf_picture.h"

namespace vorlane::files {

struct EncodedPage {
  // The whole file; of TIFF the strips or tiles, one behind the other; of PDF the picture.
  std::vector<uint8_t> bytes;
  // Of TIFF: the page's directory, in which offsets of strips count from the first of `bytes`.
  std::vector<TiffEntry> entries;
  PdfPicture pdf;
};

struct WriteOptions {
  int32_t jpegQuality = 0;  // 1..100; 0: as the page had it, 92 where it had none
};

inline constexpr int32_t kUsualJpegQuality = 92;

// Speed first: what is gained beyond costs several times the time.
inline constexpr int kDeflateLevel = 1;

// What an encoder works on: the picture, the page that it was made from, and where to tell what the
// format cannot keep.
struct EncodeJob {
  const ImageRec& image;
  const Page& source;
  const WriteOptions& options;
  std::vector<std::string>* notes;
};

}  // namespace vorlane::files
