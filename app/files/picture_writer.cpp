#include "app/files/picture_writer.h"

#include <utility>

#include "app/files/jpeg_encoder.h"
#include "app/files/pdf_encoder.h"
#include "app/files/plain_encoders.h"
#include "app/files/png_encoder.h"
#include "app/files/source_stream.h"
#include "app/files/tiff_encoder.h"

namespace vorlane::files {
namespace {

void AddWord(bool isLost, const char* word, std::string* words) {
  if (isLost) *words += std::string(words->empty() ? "" : ", ") + word;
}

bool IsPnm(FileFormat format) {
  return format == FileFormat::kPnm || format == FileFormat::kPbm || format == FileFormat::kPgm ||
         format == FileFormat::kPpm;
}

// What the page's file says and a file of this format cannot.
void NoteLosses(FileFormat format, const Metadata& metadata, std::vector<std::string>* notes) {
  const bool isPlain = format == FileFormat::kBmp || IsPnm(format);
  std::string words;
  AddWord(IsPnm(format) && metadata.resolution.x > 0, "resolution", &words);
  AddWord(isPlain && !metadata.icc.empty(), "colour profile", &words);
  AddWord(isPlain && !metadata.xmp.empty(), "XMP", &words);
  AddWord(isPlain && !metadata.exif.empty(), "EXIF", &words);
  AddWord(isPlain && !metadata.texts.empty(), "text", &words);
  const bool isPdf = format == FileFormat::kPdf;
  AddWord(isPdf && !metadata.xmp.empty(), "XMP", &words);
  AddWord(isPdf && !metadata.exif.empty(), "EXIF", &words);
  AddWord((isPlain || isPdf || format == FileFormat::kPng) && !metadata.iptc.empty(), "IPTC",
          &words);
  if (!words.empty()) notes->push_back(words + " dropped, for which the format has no place");
}

// Whether the pages of a file are to become a BigTIFF: it is one, or its pages may take more than
// 4 GB.
bool NeedsBigTiff(const PictureFile& file) {
  constexpr uint64_t kSafe = uint64_t{1} << 31;
  const std::optional<PictureFile::TiffPlace> place = file.PlaceOf(1);
  return place && (place->header.isBig || place->source.size() > kSafe);
}

}  // namespace

EncodedPage EncodePage(FileFormat format, const ImageRec& image, const Page& source,
                       const WriteOptions& options, std::vector<std::string>* notes) {
  const EncodeJob job{image, source, options, notes};
  NoteLosses(format, source.metadata, notes);
  switch (format) {
    case FileFormat::kTiff:
      return EncodeTiff(job);
    case FileFormat::kPng:
      return EncodePng(job);
    case FileFormat::kJpeg:
      return EncodeJpeg(job);
    case FileFormat::kBmp:
      return EncodeBmp(job);
    case FileFormat::kPdf:
      return EncodePdf(job);
    default:
      return EncodePnm(format, job);
  }
}

EncodedPage KeepPage(FileFormat format, const PictureFile& file, const Page& page,
                     const WriteOptions& options, std::vector<std::string>* notes) {
  if (format == FileFormat::kPdf && file.pdf() != nullptr) return KeepPdfPage(page.number);
  if (!page.noPicture.empty()) {
    throw EncodeError("the page is not one picture: " + page.noPicture +
                      "; only a PDF file can take it as it is");
  }
  if (format == FileFormat::kPdf) {
    return EncodePdfLossless({*page.image.rec(), page, options, notes});
  }
  const std::optional<PictureFile::TiffPlace> place = file.PlaceOf(page.number);
  if (format == FileFormat::kTiff && place) {
    try {
      std::optional<EncodedPage> copy = CopyTiffPage(*place);
      if (copy) return std::move(*copy);
    } catch (const DecodeError& error) {
      throw EncodeError(error.what());
    }
  }
  return EncodePage(format, *page.image.rec(), page, options, notes);
}

PictureWriter::PictureWriter(const std::string& path, FileFormat format, Replacing replacing,
                             Durability durability, const PictureFile* source)
    : path_(path),
      format_(format),
      file_(path, replacing, durability),
      chain_(source != nullptr && NeedsBigTiff(*source)) {
  if (format != FileFormat::kPdf) return;
  try {
    const ByteSource* pdf = source != nullptr ? source->pdf() : nullptr;
    pdf_.emplace(pdf != nullptr ? StreamOf(*pdf) : nullptr);
  } catch (const DecodeError& error) {
    throw FileError(source->name() + ": " + error.what());
  }
}

void PictureWriter::Add(EncodedPage page) {
  if (pdf_) {
    pdf_->Add(page.pdf, page.bytes);
    return;
  }
  if (format_ != FileFormat::kTiff) {
    file_.Append(page.bytes);
    return;
  }
  try {
    chain_.Append(std::move(page), &file_);
  } catch (const EncodeError& error) {
    throw FileError(path_ + ": " + error.what());
  }
}

void PictureWriter::Commit() {
  if (pdf_) {
    pdf_->Finish([this](const uint8_t* bytes, size_t count) { file_.Append({bytes, count}); });
  }
  file_.Commit();
}

void WritePicture(const std::string& path, const ImageRec& image, const Page& source,
                  Replacing replacing) {
  const FileFormat format = FormatOfName(path).value_or(FileFormat::kPng);
  std::vector<std::string> notes;
  PictureWriter writer(path, format, replacing, Durability::kSynced);
  try {
    writer.Add(EncodePage(format, image, source, WriteOptions{}, &notes));
  } catch (const EncodeError& error) {
    throw FileError(path + ": " + error.what());
  }
  writer.Commit();
}

}  // namespace vorlane::files
