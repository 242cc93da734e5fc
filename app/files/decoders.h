// What takes files apart: in this process, or in another one that may do nothing else.
#pragma once

#include <cstdint>
#include <vector>

#include "app/files/byte_source.h"
#include "app/files/helper_process.h"
#include "app/files/page.h"
#include "app/files/pdf_pages.h"
#include "app/files/tiff_directory.h"

namespace vorlane::files {

// kJpegData: JPEG data in a file of another format; what they say besides their pixels counts for
// nothing.
enum class FileKind : uint8_t { kTiff, kPdf, kPng, kJpeg, kBmp, kPnm, kOther, kJpegData };

// By the first bytes. Throws DecodeError for those of no kind.
FileKind KindOf(const ByteSource& source);

// What a file holds, found without decoding a pixel.
struct FileContents {
  FileKind kind = FileKind::kOther;
  // Where a TIFF file's list of pages breaks off, the page that cannot be found is counted too.
  int32_t count = 1;
  TiffHeader tiffHeader;
  TiffPages tiffPages;
  std::vector<PdfPage> pdfPages;
};

// Where a picture is in a file.
struct PicturePlace {
  FileKind kind = FileKind::kOther;  // any but kPdf
  TiffHeader tiffHeader;             // of TIFF files, with the picture's directory
  uint64_t tiffDirectory = 0;
};

class Decoders {
 public:
  Decoders() = default;
  Decoders(const Decoders&) = delete;
  Decoders& operator=(const Decoders&) = delete;
  virtual ~Decoders() = default;

  // Throws DecodeError when the file is no picture, damaged or has too many pages.
  virtual FileContents Look(const ByteSource& source, const ReadLimits& limits) const = 0;

  // Fills the page's picture and what is told with it. Throws DecodeError, with the decoder's
  // words, when it is damaged or beyond the limits. Several threads may decode at once.
  virtual void Decode(const ByteSource& source, const PicturePlace& place, const ReadLimits& limits,
                      Page* page) const = 0;

  // What other programs that take part go behind.
  virtual HelperWalls helperWalls() const { return HelperWalls::kNone; }
};

// The decoders themselves, in the process and thread that calls.
class OwnDecoders : public Decoders {
 public:
  FileContents Look(const ByteSource& source, const ReadLimits& limits) const override;
  void Decode(const ByteSource& source, const PicturePlace& place, const ReadLimits& limits,
              Page* page) const override;
};

// Those that the limits name, or our own.
const Decoders& DecodersOf(const ReadLimits& limits);

}  // namespace vorlane::files
