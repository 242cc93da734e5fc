#include "app/files/tiff_reader.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "app/files/jpeg_tables.h"
#include "app/files/page_image.h"
#include "app/files/row_converter.h"
#include "app/files/tiff_block_reader.h"
#include "app/files/tiff_handle.h"
#include "app/files/tiff_metadata.h"
#include "app/files/tiff_shape.h"

namespace vorlane::files {
namespace {

void AddNote(const std::string& note, Page* page) {
  if (!note.empty()) page->notes.push_back(note);
}

void DecodeRows(TiffBlockReader* blocks, const TiffShape& shape, const SampleLayout& layout,
                Page* page) {
  const auto width = static_cast<int32_t>(shape.width);
  RowConverter converter(layout, width);
  MakeImage(width, static_cast<int32_t>(shape.height), converter.depth(), page);
  const ImageRec& image = *page->image.rec();
  const size_t rowBytes = RowBytesOf(layout, width);
  // Rows without padding are decoded where they will stand.
  const bool isDirect = converter.IsInPlace() && rowBytes == static_cast<size_t>(image.lineBytes);
  const size_t bandBytes = isDirect ? 0 : rowBytes * std::min(shape.blockHeight, shape.height);
  const auto band = std::make_unique_for_overwrite<uint8_t[]>(bandBytes);
  for (uint32_t top = 0; top < shape.height; top += shape.blockHeight) {
    const uint32_t rows = std::min(shape.blockHeight, shape.height - top);
    const std::span<uint8_t> to = {isDirect ? image.rows[top] : band.get(), rowBytes * rows};
    blocks->ReadBand(top, to);
    for (uint32_t y = 0; y < rows; ++y) {
      converter.Convert(to.data() + y * rowBytes, image.rows[top + y]);
    }
    if (shape.height - top <= shape.blockHeight) break;  // the sum may pass 2^32
  }
  AddNote(converter.Note(), page);
  page->coding.hasOpaqueAlpha = converter.IsOpaque();
  page->coding.isInverted = shape.photometric == PHOTOMETRIC_MINISWHITE;
}

// Colour kinds that only the TIFF library's own conversion knows.
void DecodeColour(TIFF* tiff, const TiffShape& shape, TiffMessages* messages, Page* page) {
  char reason[1024] = "";
  if (TIFFRGBAImageOK(tiff, reason) != 1) throw DecodeError(reason);
  TIFFRGBAImage converter;
  if (TIFFRGBAImageBegin(&converter, tiff, 1, reason) != 1) throw DecodeError(reason);
  const std::unique_ptr<TIFFRGBAImage, void (*)(TIFFRGBAImage*)> guard(&converter,
                                                                       TIFFRGBAImageEnd);
  converter.orientation = ORIENTATION_TOPLEFT;  // it is turned by us
  converter.req_orientation = ORIENTATION_TOPLEFT;
  const auto width = static_cast<int32_t>(shape.width);
  MakeImage(width, static_cast<int32_t>(shape.height), 24, page);
  const auto pixels =
      std::make_unique_for_overwrite<uint32_t[]>(size_t{shape.width} * shape.height);
  messages->warningsAreErrors = true;
  const int isWhole = TIFFRGBAImageGet(&converter, pixels.get(), shape.width, shape.height);
  messages->warningsAreErrors = false;
  if (isWhole != 1 || !messages->errors.empty()) throw DecodeError(FirstError(*messages));
  const uint32_t* from = pixels.get();
  for (uint32_t y = 0; y < shape.height; ++y) {
    uint8_t* to = page->image.rec()->rows[y];
    for (uint32_t x = 0; x < shape.width; ++x, ++from, to += 3) {
      to[0] = static_cast<uint8_t>(TIFFGetB(*from));
      to[1] = static_cast<uint8_t>(TIFFGetG(*from));
      to[2] = static_cast<uint8_t>(TIFFGetR(*from));
    }
  }
  page->notes.emplace_back("a colour kind of TIFF converted to 24-bit colour");
}

void FillCoding(TIFF* tiff, const TiffShape& shape, const TiffHeader& header, PageCoding* coding) {
  coding->format = FileFormat::kTiff;
  coding->tiff.compression = shape.compression;
  coding->tiff.isBig = header.isBig;
  if (shape.isTiled) {
    coding->tiff.tileWidth = shape.blockWidth;
    coding->tiff.tileHeight = shape.blockHeight;
  } else {
    coding->tiff.rowsPerStrip = shape.blockHeight;
  }
  if (HasPredictor(shape.compression)) coding->tiff.predictor = shape.predictor;
  coding->tiff.faxOptions = shape.faxOptions;
  if (shape.compression != COMPRESSION_JPEG) return;
  uint32_t count = 0;
  void* tables = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_JPEGTABLES, &count, &tables) == 1) {
    coding->jpeg = JpegCodingOf({static_cast<const uint8_t*>(tables), count});
  }
  if (shape.photometric == PHOTOMETRIC_YCBCR) {
    uint16_t horizontal = 1;
    uint16_t vertical = 1;
    (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRSUBSAMPLING, &horizontal, &vertical);
    coding->jpeg.horizontal = horizontal;
    coding->jpeg.vertical = vertical;
  }
}

}  // namespace

void ReadTiffPage(const ByteSource& source, const TiffHeader& header, uint64_t directory,
                  const ReadLimits& limits, Page* page) {
  TiffMessages messages;
  const TiffHandle handle(source, &messages);
  TIFF* tiff = handle.get();
  if (TIFFSetSubDirectory(tiff, directory) != 1 || !messages.errors.empty()) {
    throw DecodeError(FirstError(messages));
  }
  const TiffShape shape = ShapeOf(tiff);
  CheckSize(shape.width, shape.height, limits);
  RefuseKinds(shape);
  CheckSize(shape.blockWidth, shape.blockHeight, limits);
  TiffBlockReader blocks(source, tiff, shape, &messages);
  blocks.CheckStored();
  ReadTiffMetadata(source, header, directory, page);
  FillCoding(tiff, shape, header, &page->coding);
  if (shape.photometric == PHOTOMETRIC_YCBCR && shape.compression == COMPRESSION_JPEG) {
    (void)TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  }
  const std::optional<SampleLayout> layout = LayoutOf(tiff, shape);
  if (layout) {
    DecodeRows(&blocks, shape, *layout, page);
  } else {
    DecodeColour(tiff, shape, &messages, page);
  }
  ApplyOrientation(shape.orientation, page);
  page->messages = messages.warnings;
}

}  // namespace vorlane::files
