#include "app/files/picture_file.h"

#include <algorithm>
#include <new>
#include <utility>

#include "app/files/pdf_reader.h"

namespace vorlane::files {
namespace {

bool HasPicture(const FileContents& contents) {
  return std::any_of(contents.pdfPages.begin(), contents.pdfPages.end(),
                     [](const PdfPage& page) { return page.refusal.empty(); });
}

}  // namespace

PictureFile::PictureFile(const std::string& path, const ReadLimits& limits)
    : PictureFile(path, std::make_shared<FileSource>(path), limits) {}

PictureFile::PictureFile(std::string name, std::shared_ptr<const ByteSource> source,
                         const ReadLimits& limits)
    : name_(std::move(name)), source_(std::move(source)), limits_(limits) {
  try {
    contents_ = DecodersOf(limits_).Look(*source_, limits_);
    if (HasPicture(contents_)) CheckPdfHelper();
  } catch (const DecodeError& error) {
    throw FileError(name_ + ": " + error.what());
  }
}

std::string PictureFile::NameOf(int32_t number) const {
  return count() > 1 ? name_ + "[" + std::to_string(number) + "]" : name_;
}

Page PictureFile::Read(int32_t number, SizeGate gate) const {
  ReadLimits limits = limits_;
  limits.gate = std::move(gate);
  Page page;
  page.file = name_;
  page.number = number;
  page.count = count();
  try {
    Decode(number, limits, &page);
  } catch (const DecodeError& error) {
    throw FileError(NameOf(number) + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw FileError(NameOf(number) + ": there is not enough memory for this page");
  }
  return page;
}

void PictureFile::Decode(int32_t number, const ReadLimits& limits, Page* page) const {
  const auto index = static_cast<size_t>(number) - 1;
  if (contents_.kind == FileKind::kPdf) {
    ReadPdfPage(*source_, contents_.pdfPages[index], number, limits, page);
    return;
  }
  PicturePlace place;
  place.kind = contents_.kind;
  if (place.kind == FileKind::kTiff) {
    const TiffPages& pages = contents_.tiffPages;
    if (index >= pages.directories.size()) throw DecodeError(pages.damage);
    place.tiffHeader = contents_.tiffHeader;
    place.tiffDirectory = pages.directories[index];
  }
  DecodersOf(limits).Decode(*source_, place, limits, page);
}

std::optional<PictureFile::TiffPlace> PictureFile::PlaceOf(int32_t number) const {
  const auto index = static_cast<size_t>(number) - 1;
  const std::vector<uint64_t>& directories = contents_.tiffPages.directories;
  if (contents_.kind != FileKind::kTiff || index >= directories.size()) return std::nullopt;
  return TiffPlace{*source_, contents_.tiffHeader, directories[index]};
}

}  // namespace vorlane::files
