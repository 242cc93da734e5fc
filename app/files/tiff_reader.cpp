#include "app/files/tiff_reader.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

#include "app/files/deflate.h"
#include "app/files/fax_strip.h"
#include "app/files/jpeg_tables.h"
#include "app/files/page_image.h"
#include "app/files/predictor.h"
#include "app/files/row_converter.h"
#include "app/files/strip_checks.h"
#include "app/files/tiff_handle.h"
#include "app/files/tiff_metadata.h"

namespace vorlane::files {
namespace {

// Below, opening each strip by itself would cost more than decoding it.
constexpr uint32_t kFewestFaxRows = 16;

// What the tags say about the pixels.
struct TiffShape {
  uint32_t width = 0;
  uint32_t height = 0;
  uint16_t bits = 1;
  uint16_t samples = 1;
  uint16_t sampleFormat = SAMPLEFORMAT_UINT;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  uint16_t planes = PLANARCONFIG_CONTIG;
  uint16_t orientation = ORIENTATION_TOPLEFT;
  uint16_t fillOrder = FILLORDER_MSB2LSB;
  uint16_t predictor = PREDICTOR_NONE;
  uint32_t faxOptions = 0;
  bool isSwapped = false;  // against this machine's byte order
  bool isTiled = false;
  uint32_t blockWidth = 0;  // of a strip or tile
  uint32_t blockHeight = 0;
};

template <typename T>
T TagOf(TIFF* tiff, uint32_t tag, T otherwise) {
  T value = 0;
  return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : otherwise;
}

// A file that does not say how its greys run: fax pages are white where they are 0.
uint16_t GuessedPhotometric(const TiffShape& shape) {
  if (shape.samples >= 3) return PHOTOMETRIC_RGB;
  return IsFax(shape.compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

TiffShape ShapeOf(TIFF* tiff) {
  TiffShape shape;
  shape.width = TagOf<uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
  shape.height = TagOf<uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
  shape.bits = TagOf<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  shape.samples = TagOf<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  shape.sampleFormat = TagOf<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  shape.compression = TagOf<uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  shape.planes = TagOf<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  shape.orientation = TagOf<uint16_t>(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  shape.fillOrder = TagOf<uint16_t>(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
  if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &shape.photometric) != 1) {
    shape.photometric = GuessedPhotometric(shape);
  }
  if (HasPredictor(shape.compression)) {
    shape.predictor = TagOf<uint16_t>(tiff, TIFFTAG_PREDICTOR, PREDICTOR_NONE);
  }
  if (shape.compression == COMPRESSION_CCITTFAX3) {
    shape.faxOptions = TagOf<uint32_t>(tiff, TIFFTAG_GROUP3OPTIONS, 0);
  }
  shape.isSwapped = TIFFIsByteSwapped(tiff) != 0;
  shape.isTiled = TIFFIsTiled(tiff) != 0;
  if (shape.isTiled) {
    shape.blockWidth = TagOf<uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
    shape.blockHeight = TagOf<uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
  } else {
    shape.blockWidth = shape.width;
    shape.blockHeight =
        std::min(shape.height, TagOf<uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
  }
  return shape;
}

void RefuseKinds(const TiffShape& shape) {
  if (shape.sampleFormat != SAMPLEFORMAT_UINT && shape.sampleFormat != SAMPLEFORMAT_VOID) {
    throw DecodeError("its samples are signed or floating-point numbers, which are not served");
  }
  const bool isKnown =
      shape.bits == 1 || shape.bits == 2 || shape.bits == 4 || shape.bits == 8 || shape.bits == 16;
  if (!isKnown) {
    throw DecodeError("samples of " + std::to_string(shape.bits) + " bits are not served");
  }
  if (shape.samples == 0 || shape.samples > 64 || shape.blockWidth == 0 || shape.blockHeight == 0) {
    throw DecodeError("its header makes no sense");
  }
}

std::optional<ColourModel> ModelOf(const TiffShape& shape) {
  switch (shape.photometric) {
    case PHOTOMETRIC_MINISWHITE:
      return ColourModel::kInvertedGrey;
    case PHOTOMETRIC_MINISBLACK:
      return ColourModel::kGrey;
    case PHOTOMETRIC_PALETTE:
      return ColourModel::kPalette;
    case PHOTOMETRIC_SEPARATED:
      return shape.samples >= 4 ? std::optional(ColourModel::kCmyk) : std::nullopt;
    case PHOTOMETRIC_RGB:
      return shape.samples >= 3 ? std::optional(ColourModel::kRgb) : std::nullopt;
    case PHOTOMETRIC_YCBCR:
      // The JPEG decoder hands over red, green and blue.
      return shape.compression == COMPRESSION_JPEG && shape.samples == 3
                 ? std::optional(ColourModel::kRgb)
                 : std::nullopt;
    default:
      return std::nullopt;
  }
}

AlphaKind AlphaOf(TIFF* tiff) {
  uint16_t count = 0;
  uint16_t* kinds = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || count == 0) {
    return AlphaKind::kNone;
  }
  if (kinds[0] == EXTRASAMPLE_ASSOCALPHA) return AlphaKind::kPremultiplied;
  return kinds[0] == EXTRASAMPLE_UNASSALPHA ? AlphaKind::kStraight : AlphaKind::kNone;
}

// 16-bit colours, of which some writers fill the low half only.
std::vector<PaletteEntry> PaletteOf(TIFF* tiff, const TiffShape& shape) {
  const size_t count = size_t{1} << shape.bits;
  uint16_t* red = nullptr;
  uint16_t* green = nullptr;
  uint16_t* blue = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) != 1) {
    throw DecodeError("its palette is missing");
  }
  const auto isLow = [count](const uint16_t* levels) {
    return std::all_of(levels, levels + count, [](uint16_t v) { return v < 256; });
  };
  const int shift = isLow(red) && isLow(green) && isLow(blue) ? 0 : 8;
  std::vector<PaletteEntry> palette(count);
  for (size_t i = 0; i < count; ++i) {
    palette[i] = {static_cast<uint8_t>(red[i] >> shift), static_cast<uint8_t>(green[i] >> shift),
                  static_cast<uint8_t>(blue[i] >> shift)};
  }
  return palette;
}

// Nothing where the pixels go through the TIFF library's own conversion to colour.
std::optional<SampleLayout> LayoutOf(TIFF* tiff, const TiffShape& shape) {
  const std::optional<ColourModel> model = ModelOf(shape);
  if (!model) return std::nullopt;
  const bool isSplit = shape.planes == PLANARCONFIG_SEPARATE && shape.samples > 1;
  if (isSplit && shape.bits < 8) return std::nullopt;
  SampleLayout layout;
  layout.model = *model;
  layout.alpha = AlphaOf(tiff);
  layout.bits = shape.bits;
  layout.channels = shape.samples;
  if (*model == ColourModel::kPalette) {
    if (shape.bits > 8) throw DecodeError("palettes of more than 256 colours are not served");
    layout.palette = PaletteOf(tiff, shape);
  }
  return layout;
}

// The strips or tiles of a page, read row band by row band.
class BlockReader {
 public:
  BlockReader(const ByteSource& source, TIFF* tiff, const TiffShape& shape, TiffMessages* messages)
      : source_(source), tiff_(tiff), shape_(shape), messages_(messages) {}

  // Compares what is stored with what the header promises, before anything is decoded.
  void CheckStored() const {
    const uint32_t count = shape_.isTiled ? TIFFNumberOfTiles(tiff_) : TIFFNumberOfStrips(tiff_);
    uint64_t stored = 0;
    for (uint32_t i = 0; i < count; ++i) {
      const uint64_t offset = TIFFGetStrileOffset(tiff_, i);
      const uint64_t bytes = TIFFGetStrileByteCount(tiff_, i);
      if (offset == 0 || bytes == 0) throw DecodeError(BlockName(i) + " is missing");
      if (offset > source_.size() || bytes > source_.size() - offset) {
        throw DecodeError(BlockName(i) + " ends behind the end of the file: it was cut short");
      }
      stored += bytes;
    }
    ThrowErrors();  // of tables that are read here only
    uint64_t wanted = PlaneRowBytes(shape_.width) * uint64_t{shape_.height} * PlaneCount();
    if (shape_.photometric == PHOTOMETRIC_YCBCR) wanted /= 3;  // colours for 4 x 4 pixels at most
    if (MostBytesFrom(shape_.compression, stored) < wanted) {
      throw DecodeError("its " + std::to_string(stored) +
                        " bytes cannot hold the pixels that its header promises");
    }
  }

  // Reads the rows from `top` on, as many as a block holds, into `band`: rows of all channels
  // beside each other.
  void ReadBand(uint32_t top, std::span<uint8_t> band) {
    const uint32_t rows = std::min(shape_.blockHeight, shape_.height - top);
    if (PlaneCount() == 1) {
      ReadPlaneBand(0, top, rows, band);
      return;
    }
    plane_.resize(PlaneRowBytes(shape_.width) * rows);
    const size_t sampleBytes = shape_.bits / 8U;
    const size_t pixels = size_t{shape_.width} * rows;
    for (uint16_t plane = 0; plane < PlaneCount(); ++plane) {
      ReadPlaneBand(plane, top, rows, plane_);
      uint8_t* to = band.data() + plane * sampleBytes;
      for (size_t i = 0; i < pixels; ++i, to += sampleBytes * PlaneCount()) {
        std::memcpy(to, plane_.data() + i * sampleBytes, sampleBytes);
      }
    }
  }

  void ThrowErrors() const {
    if (!messages_->errors.empty()) throw DecodeError(FirstError(*messages_));
  }

 private:
  std::string BlockName(uint32_t index) const {
    return std::string(shape_.isTiled ? "tile " : "strip ") + std::to_string(index + 1);
  }

  uint16_t PlaneCount() const {
    return shape_.planes == PLANARCONFIG_SEPARATE ? shape_.samples : uint16_t{1};
  }

  size_t PlaneRowBytes(uint32_t width) const {
    const size_t samples = PlaneCount() == 1 ? shape_.samples : 1;
    return (size_t{width} * samples * shape_.bits + 7) / 8;
  }

  void ReadPlaneBand(uint16_t plane, uint32_t top, uint32_t rows, std::span<uint8_t> band) {
    if (!shape_.isTiled) {
      const size_t bytes = PlaneRowBytes(shape_.width) * rows;
      ReadBlock(TIFFComputeStrip(tiff_, top, plane), band.first(bytes), rows);
      return;
    }
    const size_t tileRow = PlaneRowBytes(shape_.blockWidth);
    tile_.resize(tileRow * shape_.blockHeight);
    const size_t bandRow = PlaneRowBytes(shape_.width);
    for (uint32_t left = 0; left < shape_.width; left += shape_.blockWidth) {
      ReadBlock(TIFFComputeTile(tiff_, left, top, 0, plane), tile_, shape_.blockHeight);
      const size_t at = PlaneRowBytes(left);
      const size_t bytes = std::min(tileRow, bandRow - at);
      for (uint32_t y = 0; y < rows; ++y) {
        std::memcpy(band.data() + y * bandRow + at, tile_.data() + y * tileRow, bytes);
      }
    }
  }

  void ReadBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
    if (IsUnpackedHere()) {
      UnpackBlock(index, to, rows);
      return;
    }
    if (IsFax(shape_.compression) && rows >= kFewestFaxRows && !shape_.isTiled) {
      DecodeFax(index, to, rows);
      return;
    }
    CheckEnd(index, to.size(), rows);
    const auto wanted = static_cast<tmsize_t>(to.size());
    messages_->warningsAreErrors = true;
    const tmsize_t got = shape_.isTiled ? TIFFReadEncodedTile(tiff_, index, to.data(), wanted)
                                        : TIFFReadEncodedStrip(tiff_, index, to.data(), wanted);
    messages_->warningsAreErrors = false;
    ThrowErrors();
    if (got != wanted) throw DecodeError(BlockName(index) + " is too short");
  }

  // The TIFF library stops at the last pixel and does not compare the checksum behind it.
  bool IsUnpackedHere() const {
    const bool isDeflate = shape_.compression == COMPRESSION_ADOBE_DEFLATE ||
                           shape_.compression == COMPRESSION_DEFLATE;
    const bool isPlain = shape_.predictor == PREDICTOR_NONE ||
                         (shape_.predictor == PREDICTOR_HORIZONTAL && shape_.bits >= 8);
    return isDeflate && isPlain && shape_.fillOrder == FILLORDER_MSB2LSB;
  }

  void UnpackBlock(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
    ReadStored(index);
    const size_t rowBytes = to.size() / rows;
    try {
      InflateStrip(stored_, to, rowBytes * shape_.blockHeight);
    } catch (const DecodeError& error) {
      throw DecodeError(BlockName(index) + ": " + error.what());
    }
    if (shape_.isSwapped && shape_.bits == 16) {
      for (size_t i = 0; i + 1 < to.size(); i += 2) std::swap(to[i], to[i + 1]);
    }
    if (shape_.predictor == PREDICTOR_HORIZONTAL) {
      UndoDifferences(to, rowBytes, PlaneCount() == 1 ? shape_.samples : 1, shape_.bits);
    }
  }

  void DecodeFax(uint32_t index, std::span<uint8_t> to, uint32_t rows) {
    ReadStored(index);
    FaxStrip strip;
    strip.stored = stored_;
    strip.width = shape_.width;
    strip.rows = rows;
    strip.compression = shape_.compression;
    strip.options = shape_.faxOptions;
    strip.fillOrder = shape_.fillOrder;
    try {
      DecodeFaxStrip(strip, to);
    } catch (const DecodeError& error) {
      throw DecodeError(BlockName(index) + ": " + error.what());
    }
  }

  void ReadStored(uint32_t index) {
    stored_.resize(static_cast<size_t>(TIFFGetStrileByteCount(tiff_, index)));
    if (source_.ReadAt(TIFFGetStrileOffset(tiff_, index), stored_) < stored_.size()) {
      throw DecodeError(BlockName(index) + " was cut short");
    }
  }

  // Schemes without a checksum whose decoder does not look whether it came to the end.
  void CheckEnd(uint32_t index, uint64_t expected, uint32_t rows) {
    const bool isLzw = shape_.compression == COMPRESSION_LZW;
    if (!isLzw && shape_.compression != COMPRESSION_PACKBITS) return;
    if (shape_.fillOrder != FILLORDER_MSB2LSB) return;
    ReadStored(index);
    const uint64_t whole = expected / rows * shape_.blockHeight;
    const bool isRight = isLzw ? LzwStripEndsRight(stored_, expected, whole)
                               : PackBitsStripEndsRight(stored_, expected, whole);
    if (!isRight) {
      throw DecodeError(BlockName(index) + " is damaged: its codes do not end where its rows do");
    }
  }

  const ByteSource& source_;
  TIFF* tiff_;
  const TiffShape& shape_;
  TiffMessages* messages_;
  std::vector<uint8_t> plane_;
  std::vector<uint8_t> tile_;
  std::vector<uint8_t> stored_;
};

void AddNote(const std::string& note, Page* page) {
  if (!note.empty()) page->notes.push_back(note);
}

void DecodeRows(BlockReader* blocks, const TiffShape& shape, const SampleLayout& layout,
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
  BlockReader blocks(source, tiff, shape, &messages);
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
