#include "app/files/picture_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "app/files/bmp_reader.h"
#include "app/files/jpeg_reader.h"
#include "app/files/other_reader.h"
#include "app/files/pdf_reader.h"
#include "app/files/png_chunks.h"
#include "app/files/png_reader.h"
#include "app/files/pnm_reader.h"
#include "app/files/tiff_reader.h"

namespace vorlane::files {
namespace {

constexpr size_t kHeadBytes = 16;
using Head = std::array<uint8_t, kHeadBytes>;

bool IsPnm(const Head& head) {
  const bool isBlank = head[2] == ' ' || head[2] == '#' || (head[2] >= '\t' && head[2] <= '\r');
  return head[0] == 'P' && head[1] >= '1' && head[1] <= '6' && isBlank;
}

bool IsJpeg(const Head& head) { return head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF; }

}  // namespace

PictureFile::PictureFile(const std::string& path, const ReadLimits& limits)
    : PictureFile(path, std::make_shared<FileSource>(path), limits) {}

PictureFile::PictureFile(std::string name, std::shared_ptr<const ByteSource> source,
                         const ReadLimits& limits)
    : name_(std::move(name)), source_(std::move(source)), limits_(limits) {
  try {
    Look();
  } catch (const DecodeError& error) {
    throw FileError(name_ + ": " + error.what());
  }
}

void PictureFile::Look() {
  Head head{};
  (void)source_->ReadAt(0, head);
  const std::optional<TiffHeader> tiff = ReadTiffHeader(*source_);
  if (tiff) {
    kind_ = Kind::kTiff;
    tiffHeader_ = *tiff;
    CountTiffPages();
  } else if (std::equal(kPngSignature.begin(), kPngSignature.end(), head.begin())) {
    kind_ = Kind::kPng;
  } else if (IsJpeg(head)) {
    kind_ = Kind::kJpeg;
  } else if (head[0] == 'B' && head[1] == 'M') {
    kind_ = Kind::kBmp;
  } else if (IsPnm(head)) {
    kind_ = Kind::kPnm;
  } else if (IsPdf(*source_)) {
    kind_ = Kind::kPdf;
    LookAtPdfPages();
  } else if (!IsOtherFormat(head)) {
    throw DecodeError("is no image file (TIFF, PNG, JPEG, BMP, PNM or PDF), or is damaged");
  }
}

void PictureFile::CountTiffPages() {
  const auto most = static_cast<size_t>(limits_.mostPages);
  tiffPages_ = FindDirectories(*source_, tiffHeader_, most);
  const size_t found = tiffPages_.directories.size();
  const bool isDamaged = !tiffPages_.damage.empty();
  if (isDamaged && (found == 0 || found >= most)) throw DecodeError(tiffPages_.damage);
  if (found == 0) throw DecodeError("holds no pages");
  count_ = static_cast<int32_t>(found + (isDamaged ? 1 : 0));
}

void PictureFile::LookAtPdfPages() {
  pdfPages_ = LookAtPdf(*source_, static_cast<size_t>(limits_.mostPages));
  count_ = static_cast<int32_t>(pdfPages_.size());
  const bool hasPicture = std::any_of(pdfPages_.begin(), pdfPages_.end(),
                                      [](const PdfPage& page) { return page.refusal.empty(); });
  if (hasPicture) CheckPdfHelper();
}

std::string PictureFile::NameOf(int32_t number) const {
  return count_ > 1 ? name_ + "[" + std::to_string(number) + "]" : name_;
}

Page PictureFile::Read(int32_t number, SizeGate gate) const {
  ReadLimits limits = limits_;
  limits.gate = std::move(gate);
  Page page;
  page.file = name_;
  page.number = number;
  page.count = count_;
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
  switch (kind_) {
    case Kind::kTiff: {
      const auto index = static_cast<size_t>(number) - 1;
      if (index >= tiffPages_.directories.size()) throw DecodeError(tiffPages_.damage);
      ReadTiffPage(*source_, tiffHeader_, tiffPages_.directories[index], limits, page);
      break;
    }
    case Kind::kPdf:
      ReadPdfPage(*source_, pdfPages_[static_cast<size_t>(number) - 1], number, limits, page);
      break;
    case Kind::kPng:
      ReadPng(ReadAll(*source_), limits, page);
      break;
    case Kind::kJpeg:
      ReadJpeg(ReadAll(*source_), limits, page);
      break;
    case Kind::kBmp:
      ReadBmp(ReadAll(*source_), limits, page);
      break;
    case Kind::kPnm:
      ReadPnm(ReadAll(*source_), limits, page);
      break;
    default:
      ReadOther(ReadAll(*source_), limits, page);
  }
}

std::optional<PictureFile::TiffPlace> PictureFile::PlaceOf(int32_t number) const {
  const auto index = static_cast<size_t>(number) - 1;
  if (kind_ != Kind::kTiff || index >= tiffPages_.directories.size()) return std::nullopt;
  return TiffPlace{*source_, tiffHeader_, tiffPages_.directories[index]};
}

}  // namespace vorlane::files
