#include "app/files/pdf_encoder.h"

#include <limits>
#include <tiffio.h>

#include "app/files/icc.h"
#include "app/files/jpeg_encoder.h"
#include "app/files/page_image.h"
#include "app/files/tiff_encoder.h"

namespace vorlane::files {
namespace {

constexpr double kPointsPerInch = 72.0;
constexpr double kUsualDpi = 300.0;

// The orientation that undoes the turn by which a page is shown.
uint32_t BackOrientation(int32_t rotation) {
  return rotation == 90 ? 8 : rotation == 180 ? 3 : rotation == 270 ? 6 : 1;
}

bool IsJpeg(const EncodeJob& job) {
  const PageCoding& coding = job.source.coding;
  const bool wasJpeg =
      coding.format == FileFormat::kJpeg || coding.tiff.compression == COMPRESSION_JPEG;
  return wasJpeg && job.image.bitsPerPixel != 1;
}

// Of a TIFF page of one strip the bytes are what PDF stores.
EncodedPage EncodeStrip(const EncodeJob& job) {
  Page plain;
  if (job.image.bitsPerPixel != 1) {
    plain.coding.tiff.compression = COMPRESSION_ADOBE_DEFLATE;
    plain.coding.tiff.predictor = PREDICTOR_HORIZONTAL;
    plain.coding.tiff.rowsPerStrip = std::numeric_limits<uint32_t>::max();
  }
  return EncodeTiff({job.image, plain, job.options, job.notes});
}

EncodedPage EncodePlainJpeg(const EncodeJob& job) {
  Page plain;
  plain.coding.format = FileFormat::kJpeg;
  plain.coding.jpeg = job.source.coding.jpeg;
  return EncodeJpeg({job.image, plain, job.options, job.notes});
}

double Points(int32_t pixels, double dpi) {
  return pixels * kPointsPerInch / (dpi > 0 ? dpi : kUsualDpi);
}

void Describe(const EncodeJob& job, EncodedPage* page) {
  const Metadata& metadata = job.source.metadata;
  const int32_t rotation = job.source.coding.rotation;
  const bool isAside = rotation == 90 || rotation == 270;
  page->pdf.number = rotation >= 0 ? job.source.number : 0;
  page->pdf.width = job.image.width;
  page->pdf.height = job.image.height;
  page->pdf.channels = job.image.bitsPerPixel == 24 ? 3 : 1;
  const Resolution& resolution = metadata.resolution;
  page->pdf.pointsWide = Points(job.image.width, isAside ? resolution.y : resolution.x);
  page->pdf.pointsHigh = Points(job.image.height, isAside ? resolution.x : resolution.y);
  if (!(resolution.x > 0)) {
    job.notes->emplace_back("the file tells no resolution; the page is of 300 dots per inch");
  }
  if (IccFits(metadata.icc, job.image.bitsPerPixel)) page->pdf.icc = metadata.icc;
  page->pdf.texts = metadata.texts;
}

EncodedPage Encode(const EncodeJob& job, PdfCoding coding) {
  const PagePixels turned = Turned(job.image, BackOrientation(job.source.coding.rotation));
  const bool isTurned = turned.rec()->pixels != nullptr;
  const EncodeJob stored{isTurned ? *turned.rec() : job.image, job.source, job.options, job.notes};
  EncodedPage page = coding == PdfCoding::kJpeg ? EncodePlainJpeg(stored) : EncodeStrip(stored);
  page.entries.clear();
  page.pdf.coding = coding;
  Describe(stored, &page);
  return page;
}

PdfCoding LosslessCoding(const EncodeJob& job) {
  return job.image.bitsPerPixel == 1 ? PdfCoding::kFax : PdfCoding::kDeflate;
}

}  // namespace

EncodedPage EncodePdf(const EncodeJob& job) {
  return Encode(job, IsJpeg(job) ? PdfCoding::kJpeg : LosslessCoding(job));
}

EncodedPage EncodePdfLossless(const EncodeJob& job) { return Encode(job, LosslessCoding(job)); }

EncodedPage KeepPdfPage(int32_t number) {
  EncodedPage kept;
  kept.pdf.number = number;
  kept.pdf.isKept = true;
  return kept;
}

}  // namespace vorlane::files
