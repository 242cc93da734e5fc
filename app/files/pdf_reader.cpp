#include "app/files/pdf_reader.h"

#include <sstream>

#include "app/files/decoders.h"
#include "app/files/helper_process.h"
#include "app/files/page_image.h"
#include "app/files/temporary_folder.h"

namespace vorlane::files {
namespace {

constexpr const char* kProgram = "pdfimages";

// What the program takes besides the picture, and bytes for each of its pixels, as it holds it and
// as it writes it.
constexpr int64_t kOwnMemory = int64_t{1} << 30;
constexpr int64_t kOwnFile = int64_t{1} << 24;
constexpr int64_t kMemoryAPixel = 16;
constexpr int64_t kFileAPixel = 8;

// The program's complaints one by one; whatever it calls an error may have cost pixels.
void Hear(const HelperResult& result, Page* page) {
  std::istringstream lines(result.messages);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("Error") != std::string::npos) {
      throw DecodeError(std::string(kProgram) + ": " + line);
    }
    if (!line.empty()) page->messages.push_back(std::string(kProgram) + ": " + line);
  }
  if (!result.isDone) throw DecodeError(std::string(kProgram) + " " + result.ending);
}

void ReadPicture(const std::string& path, const ReadLimits& limits, Page* page) {
  const FileSource source(path);
  const std::optional<TiffHeader> tiff = ReadTiffHeader(source);
  PicturePlace place;
  place.kind = tiff ? FileKind::kTiff : FileKind::kJpegData;
  if (tiff) {
    place.tiffHeader = *tiff;
    place.tiffDirectory = tiff->first;
  }
  DecodersOf(limits).Decode(source, place, limits, page);
  if (!tiff) return;
  // How the program stores it says nothing of the page.
  page->coding = {};
  page->coding.format = FileFormat::kPdf;
  page->metadata = {};
}

uint32_t OrientationOf(int32_t rotation) {
  return rotation == 90 ? 6 : rotation == 180 ? 3 : rotation == 270 ? 8 : 1;
}

}  // namespace

void CheckPdfHelper() {
  if (!FindProgram(kProgram).empty()) return;
  throw DecodeError(
      "the program pdfimages, which takes pictures out of PDF files, is not installed (Debian: "
      "poppler-utils)");
}

void ReadPdfPage(const ByteSource& source, const PdfPage& pdf, int32_t number,
                 const ReadLimits& limits, Page* page) {
  page->noPicture = pdf.refusal;
  if (!pdf.refusal.empty()) return;
  CheckSize(pdf.width, pdf.height, limits);
  const int64_t pixels = int64_t{pdf.width} * pdf.height;
  const TemporaryFolder folder;
  const std::string only = std::to_string(number);
  const HelperResult result = RunHelper(
      FindProgram(kProgram),
      {"-j", "-tiff", "-f", only, "-l", only, "/proc/self/fd/0", folder.At("page")},
      source.handle(), {kOwnMemory + kMemoryAPixel * pixels, kOwnFile + kFileAPixel * pixels},
      DecodersOf(limits).helperWalls(), folder.path());
  Hear(result, page);
  const std::vector<std::string> pictures = folder.Files();
  if (pictures.size() != 1) {
    throw DecodeError(std::string(kProgram) + " took " + std::to_string(pictures.size()) +
                      " pictures out of this page, not one");
  }
  ReadPicture(pictures[0], limits, page);
  page->metadata.resolution = pdf.resolution;
  ApplyOrientation(OrientationOf(pdf.rotation), page);
  page->coding.rotation = pdf.rotation;
}

}  // namespace vorlane::files
