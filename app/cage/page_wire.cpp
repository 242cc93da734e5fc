#include "app/cage/page_wire.h"

#include "app/cage/wire.h"

// In the records' own room, where the archives find them.
namespace vorlane::files {

using cage::Is;

template <class Archive, Is<TiffHeader> Record>
void Carry(Archive& archive, Record& header) {
  archive(header.isSwapped, header.isBig, header.first);
}

template <class Archive, Is<PicturePlace> Record>
void Carry(Archive& archive, Record& place) {
  archive(place.kind, place.tiffHeader, place.tiffDirectory);
}

template <class Archive, Is<Resolution> Record>
void Carry(Archive& archive, Record& resolution) {
  archive(resolution.x, resolution.y, resolution.isMetric);
}

template <class Archive, Is<PdfPage> Record>
void Carry(Archive& archive, Record& page) {
  archive(page.refusal, page.width, page.height, page.rotation, page.resolution);
}

template <class Archive, Is<FileContents> Record>
void Carry(Archive& archive, Record& contents) {
  archive(contents.kind, contents.count, contents.tiffHeader, contents.tiffPages.directories,
          contents.tiffPages.damage, contents.pdfPages);
}

template <class Archive, Is<TextEntry> Record>
void Carry(Archive& archive, Record& entry) {
  archive(entry.keyword, entry.text);
}

template <class Archive, Is<PngChunk> Record>
void Carry(Archive& archive, Record& chunk) {
  archive(chunk.type, chunk.data);
}

template <class Archive, Is<JpegSegment> Record>
void Carry(Archive& archive, Record& segment) {
  archive(segment.marker, segment.data);
}

template <class Archive, Is<TiffEntry> Record>
void Carry(Archive& archive, Record& entry) {
  archive(entry.tag, entry.type, entry.count, entry.data, entry.directories);
}

template <class Archive, Is<Metadata> Record>
void Carry(Archive& archive, Record& metadata) {
  archive(metadata.resolution, metadata.icc, metadata.xmp, metadata.iptc, metadata.texts,
          metadata.exif, metadata.tiffEntries, metadata.pngChunks, metadata.jpegSegments);
}

template <class Archive, Is<PageCoding> Record>
void Carry(Archive& archive, Record& coding) {
  auto& tiff = coding.tiff;
  auto& jpeg = coding.jpeg;
  archive(coding.format, coding.isInverted, coding.hasOpaqueAlpha, coding.rotation);
  archive(tiff.compression, tiff.predictor, tiff.faxOptions, tiff.rowsPerStrip, tiff.tileWidth,
          tiff.tileHeight, tiff.isBig);
  archive(jpeg.tables, jpeg.quality, jpeg.horizontal, jpeg.vertical, jpeg.isProgressive);
}

template <class Archive, Is<Page> Record>
void Carry(Archive& archive, Record& page) {
  archive(page.metadata, page.coding, page.notes, page.messages);
}

}  // namespace vorlane::files

namespace vorlane::cage {

template <class Archive, Is<Question> Record>
void Carry(Archive& archive, Record& question) {
  archive(question.size, question.mostPixels, question.mostPages, question.place);
}

template <class Archive, Is<PictureShape> Record>
void Carry(Archive& archive, Record& shape) {
  archive(shape.width, shape.height, shape.bitsPerPixel);
}

namespace {

template <class Record>
Record RecordOf(std::span<const uint8_t> bytes) {
  Record record;
  WireReader reader(bytes);
  reader(record);
  reader.Finish();
  return record;
}

template <class... Record>
std::vector<uint8_t> BytesOfAll(const Record&... records) {
  WireWriter writer;
  writer(records...);
  return writer.bytes();
}

constexpr size_t kMostJpegTables = 4;  // of the format

void Demand(bool isSo) {
  if (!isSo) throw WireError("says what cannot be");
}

void CheckEntries(const std::vector<files::TiffEntry>& entries) {
  for (const files::TiffEntry& entry : entries) {
    Demand(files::IsWhole(entry));
    for (const auto& directory : entry.directories) CheckEntries(directory);
  }
}

}  // namespace

std::vector<uint8_t> BytesOf(const Question& question) { return BytesOfAll(question); }

std::vector<uint8_t> BytesOf(const files::FileContents& contents) { return BytesOfAll(contents); }

std::vector<uint8_t> BytesOf(const files::Page& page) {
  const ImageRec& image = *page.image.rec();
  return BytesOfAll(PictureShape{image.width, image.height, image.bitsPerPixel}, page);
}

Question QuestionOf(std::span<const uint8_t> bytes) { return RecordOf<Question>(bytes); }

files::FileContents ContentsOf(std::span<const uint8_t> bytes) {
  auto contents = RecordOf<files::FileContents>(bytes);
  Demand(contents.kind < files::FileKind::kJpegData);
  const size_t directories = contents.tiffPages.directories.size();
  const size_t damaged = contents.tiffPages.damage.empty() ? 0 : 1;
  const size_t pages = contents.kind == files::FileKind::kTiff  ? directories + damaged
                       : contents.kind == files::FileKind::kPdf ? contents.pdfPages.size()
                                                                : 1;
  Demand(pages >= 1 && pages == static_cast<size_t>(contents.count));
  for (const files::PdfPage& page : contents.pdfPages) {
    Demand(page.width <= INT32_MAX && page.height <= INT32_MAX);
  }
  return contents;
}

PictureShape ReadPage(std::span<const uint8_t> bytes, files::Page* page) {
  PictureShape shape;
  WireReader reader(bytes);
  reader(shape, *page);
  reader.Finish();
  const bool isKnownDepth =
      shape.bitsPerPixel == 1 || shape.bitsPerPixel == 8 || shape.bitsPerPixel == 24;
  Demand(shape.width > 0 && shape.height > 0 && isKnownDepth);
  Demand(page->coding.format <= files::FileFormat::kPdf);
  const files::JpegCoding& jpeg = page->coding.jpeg;
  Demand(jpeg.quality >= 0 && jpeg.quality <= 100 && jpeg.tables.size() <= kMostJpegTables);
  for (const files::PngChunk& chunk : page->metadata.pngChunks) Demand(chunk.type.size() == 4);
  CheckEntries(page->metadata.tiffEntries);
  return shape;
}

}  // namespace vorlane::cage
