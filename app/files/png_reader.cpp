#include "app/files/png_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>

#include "app/files/deflate.h"
#include "app/files/exif.h"
#include "app/files/page_image.h"
#include "app/files/png_chunks.h"
#include "app/files/png_filters.h"
#include "app/files/row_converter.h"

namespace vorlane::files {
namespace {

enum PngColour : uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgbAlpha = 6 };

constexpr double kMetresPerInch = 0.0254;
constexpr size_t kMostText = size_t{64} << 20;
constexpr uint64_t kMostExpansion = 1032;  // of the deflate format

struct PngHeader {
  uint32_t width = 0;
  uint32_t height = 0;
  uint8_t bits = 0;
  uint8_t colour = 0;
  bool isInterlaced = false;

  size_t Channels() const {
    static constexpr size_t kChannels[] = {1, 0, 3, 1, 2, 0, 4};
    return kChannels[colour];
  }
  size_t RowBytes(uint32_t pixels) const { return (size_t{pixels} * Channels() * bits + 7) / 8; }
  size_t PixelBytes() const { return std::max<size_t>(1, Channels() * bits / 8); }
};

struct PngFile {
  PngHeader header;
  std::vector<PaletteEntry> palette;
  Bytes transparency;
  Bytes packed;  // the data of all IDAT chunks
  uint32_t orientation = 1;
};

PngHeader HeaderOf(const PngChunkView& chunk) {
  if (chunk.type != "IHDR" || chunk.data.size() != 13) throw DecodeError("its header is missing");
  PngHeader header;
  header.width = PngNumber(chunk.data, 0);
  header.height = PngNumber(chunk.data, 4);
  header.bits = chunk.data[8];
  header.colour = chunk.data[9];
  header.isInterlaced = chunk.data[12] == 1;
  const bool isColour = header.colour <= 6 && header.colour != 1 && header.colour != 5;
  const bool isSmall = header.bits == 1 || header.bits == 2 || header.bits == 4;
  const bool isDepth = isSmall
                           ? header.colour == kGrey || header.colour == kPalette
                           : header.bits == 8 || (header.bits == 16 && header.colour != kPalette);
  if (!isColour || !isDepth || chunk.data[10] != 0 || chunk.data[11] != 0 || chunk.data[12] > 1) {
    throw DecodeError("its header tells of a kind of picture that PNG does not have");
  }
  return header;
}

std::string TextUpTo(std::span<const uint8_t> data, uint8_t end, size_t* at) {
  const auto from = data.begin() + static_cast<ptrdiff_t>(std::min(*at, data.size()));
  const auto to = std::find(from, data.end(), end);
  *at = static_cast<size_t>(to - data.begin()) + 1;
  return {from, to};
}

std::string Utf8OfLatin1(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t c : bytes) {
    if (c >= 0x80) text += static_cast<char>(0xC0 | c >> 6);
    text += static_cast<char>(c < 0x80 ? c : 0x80 | (c & 0x3F));
  }
  return text;
}

// What follows the place `at`, unpacked where it is packed.
Bytes RestOf(std::span<const uint8_t> data, size_t at, bool isPacked) {
  const auto rest = data.subspan(std::min(at, data.size()));
  return isPacked ? InflateText(rest, kMostText) : Bytes(rest.begin(), rest.end());
}

void TakeText(const PngChunkView& chunk, Metadata* metadata) {
  size_t at = 0;
  const std::string keyword = TextUpTo(chunk.data, 0, &at);
  if (chunk.type == "tEXt" || chunk.type == "zTXt") {
    const bool isPacked = chunk.type == "zTXt";
    const Bytes text = RestOf(chunk.data, at + (isPacked ? 1 : 0), isPacked);
    metadata->texts.push_back({keyword, Utf8OfLatin1(text)});
    return;
  }
  const bool isPacked = at < chunk.data.size() && chunk.data[at] == 1;
  at += 2;
  (void)TextUpTo(chunk.data, 0, &at);  // language
  (void)TextUpTo(chunk.data, 0, &at);  // the keyword in that language
  const Bytes text = RestOf(chunk.data, at, isPacked);
  if (keyword == "XML:com.adobe.xmp") {
    metadata->xmp = text;
  } else {
    metadata->texts.push_back({keyword, {text.begin(), text.end()}});
  }
}

// Pixels per metre are whole numbers: a whole number of dots per inch that is stored so is meant.
double PerInch(uint32_t perMetre) {
  const double dpi = perMetre * kMetresPerInch;
  const double whole = std::round(dpi);
  return std::lround(whole / kMetresPerInch) == static_cast<long>(perMetre) ? whole : dpi;
}

void TakeDensity(std::span<const uint8_t> data, Metadata* metadata) {
  constexpr uint8_t kMetre = 1;
  if (data.size() != 9 || data[8] != kMetre) return;
  metadata->resolution = {PerInch(PngNumber(data, 0)), PerInch(PngNumber(data, 4)), false};
}

// Chunks that speak about the picture and not about how its pixels are stored.
void TakeMetadata(const PngChunkView& chunk, PngFile* file, Metadata* metadata) {
  static constexpr std::string_view kHandedOn[] = {"cHRM", "gAMA", "sRGB", "iCCP",
                                                   "tEXt", "zTXt", "iTXt", "tIME"};
  if (chunk.type == "pHYs") {
    TakeDensity(chunk.data, metadata);
  } else if (chunk.type == "eXIf") {
    metadata->exif.assign(chunk.data.begin(), chunk.data.end());
    const ExifFacts facts = ReadExifFacts(metadata->exif);
    file->orientation = facts.orientation;
    if (metadata->resolution.x <= 0) metadata->resolution = facts.resolution;
  } else if (chunk.type == "iCCP") {
    size_t at = 0;
    (void)TextUpTo(chunk.data, 0, &at);
    metadata->icc = RestOf(chunk.data, at + 1, true);
  } else if (chunk.type == "tEXt" || chunk.type == "zTXt" || chunk.type == "iTXt") {
    TakeText(chunk, metadata);
  }
  const auto known = std::find(std::begin(kHandedOn), std::end(kHandedOn), chunk.type);
  if (known != std::end(kHandedOn)) {
    metadata->pngChunks.push_back(
        {std::string(chunk.type), {chunk.data.begin(), chunk.data.end()}});
  }
}

void TakePalette(std::span<const uint8_t> data, PngFile* file) {
  for (size_t at = 0; at + 3 <= data.size(); at += 3) {
    file->palette.push_back({data[at], data[at + 1], data[at + 2]});
  }
}

PngFile ReadChunks(std::span<const uint8_t> bytes, const ReadLimits& limits, Metadata* metadata) {
  PngChunks chunks(bytes);
  PngFile file;
  file.header = HeaderOf(chunks.Next());
  CheckSize(file.header.width, file.header.height, limits);
  file.packed.reserve(bytes.size());
  for (PngChunkView chunk = chunks.Next(); chunk.type != "IEND"; chunk = chunks.Next()) {
    constexpr char kLowerCase = 0x20;
    if (chunk.type == "IDAT") {
      file.packed.insert(file.packed.end(), chunk.data.begin(), chunk.data.end());
    } else if (chunk.type == "PLTE") {
      TakePalette(chunk.data, &file);
    } else if (chunk.type == "tRNS") {
      file.transparency.assign(chunk.data.begin(), chunk.data.end());
    } else if ((chunk.type[0] & kLowerCase) == 0) {
      throw DecodeError("it cannot be read without its chunk " + std::string(chunk.type) +
                        ", which is unknown");
    } else {
      TakeMetadata(chunk, &file, metadata);
    }
  }
  return file;
}

// One of the seven smaller pictures of an interlaced file; or the whole picture.
struct Pass {
  uint32_t firstX, firstY, stepX, stepY;

  uint32_t Columns(uint32_t width) const {
    return width <= firstX ? 0 : (width - firstX + stepX - 1) / stepX;
  }
  uint32_t Rows(uint32_t height) const {
    return height <= firstY ? 0 : (height - firstY + stepY - 1) / stepY;
  }
};
constexpr Pass kWhole[] = {{0, 0, 1, 1}};
constexpr Pass kAdam7[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                           {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

std::span<const Pass> PassesOf(const PngHeader& header) {
  if (header.isInterlaced) return kAdam7;
  return kWhole;
}

size_t UnpackedBytes(const PngHeader& header) {
  size_t bytes = 0;
  for (const Pass& pass : PassesOf(header)) {
    const uint32_t columns = pass.Columns(header.width);
    if (columns > 0) bytes += (header.RowBytes(columns) + 1) * pass.Rows(header.height);
  }
  return bytes;
}

// Undoes the filters of a pass of rows, each behind the byte that names its filter.
void UndoFilters(const PngHeader& header, uint32_t columns, uint32_t rows, uint8_t* at) {
  const size_t rowBytes = header.RowBytes(columns);
  const Bytes zeros(rowBytes);
  const uint8_t* above = zeros.data();
  for (uint32_t y = 0; y < rows; ++y, at += rowBytes + 1) {
    if (!UndoFilter(at[0], {at + 1, rowBytes}, above, header.PixelBytes())) {
      throw DecodeError("row " + std::to_string(y + 1) + " has a filter that PNG does not have");
    }
    above = at + 1;
  }
}

void CopyPixel(const uint8_t* from, size_t x, uint8_t* to, size_t toX, size_t bits) {
  if (bits >= 8) {
    std::memcpy(to + toX * bits / 8, from + x * bits / 8, bits / 8);
    return;
  }
  const uint32_t mask = (1U << bits) - 1;
  const uint32_t value =
      static_cast<uint32_t>(from[x * bits / 8]) >> (8 - bits - x * bits % 8) & mask;
  to[toX * bits / 8] |= static_cast<uint8_t>(value << (8 - bits - toX * bits % 8));
}

// The pixels row by row, each row behind a byte without meaning.
std::unique_ptr<uint8_t[]> UnpackRows(const PngFile& file) {
  const PngHeader& header = file.header;
  const size_t bytes = UnpackedBytes(header);
  if (file.packed.size() < bytes / kMostExpansion) {
    throw DecodeError("its data cannot hold the pixels that its header promises");
  }
  auto unpacked = std::make_unique_for_overwrite<uint8_t[]>(bytes);
  Inflate(file.packed, {unpacked.get(), bytes});
  uint8_t* at = unpacked.get();
  if (!header.isInterlaced) {
    UndoFilters(header, header.width, header.height, at);
    return unpacked;
  }
  const size_t rowBytes = header.RowBytes(header.width) + 1;
  auto rows = std::make_unique<uint8_t[]>(rowBytes * header.height);
  for (const Pass& pass : kAdam7) {
    const uint32_t columns = pass.Columns(header.width);
    const uint32_t count = columns == 0 ? 0 : pass.Rows(header.height);
    UndoFilters(header, columns, count, at);
    for (uint32_t y = 0; y < count; ++y, at += header.RowBytes(columns) + 1) {
      uint8_t* to = rows.get() + rowBytes * (pass.firstY + size_t{y} * pass.stepY) + 1;
      for (uint32_t x = 0; x < columns; ++x) {
        CopyPixel(at + 1, x, to, pass.firstX + size_t{x} * pass.stepX,
                  header.Channels() * header.bits);
      }
    }
  }
  return rows;
}

// The colour that a picture without alpha channel calls transparent, or the alpha of its palette,
// as a channel of alpha. Rows of 8-bit samples.
class TransparentRows {
 public:
  explicit TransparentRows(const PngFile& file) : file_(file), samples_(file.header.Channels()) {}

  // Red, green, blue and alpha of each pixel.
  void Expand(const uint8_t* row, Bytes* to) const {
    const uint32_t width = file_.header.width;
    to->resize(size_t{4} * width);
    for (uint32_t x = 0; x < width; ++x) {
      std::array<uint16_t, 3> sample{};
      for (size_t c = 0; c < samples_; ++c) sample[c] = SampleAt(row, x * samples_ + c);
      const std::array<uint8_t, 4> pixel = PixelOf(sample);
      std::copy(pixel.begin(), pixel.end(), to->begin() + ptrdiff_t{4} * x);
    }
  }

 private:
  uint16_t SampleAt(const uint8_t* row, size_t index) const {
    const size_t bits = file_.header.bits;
    if (bits == 16) return static_cast<uint16_t>(row[2 * index] << 8 | row[2 * index + 1]);
    const size_t at = index * bits;
    return static_cast<uint16_t>(row[at / 8] >> (8 - bits - at % 8) & ((1U << bits) - 1));
  }

  std::array<uint8_t, 4> PixelOf(const std::array<uint16_t, 3>& sample) const {
    const Bytes& transparency = file_.transparency;
    if (file_.header.colour == kPalette) {
      const size_t index = sample[0];
      const PaletteEntry entry =
          index < file_.palette.size() ? file_.palette[index] : PaletteEntry{};
      const uint8_t alpha = index < transparency.size() ? transparency[index] : 255;
      return {entry[0], entry[1], entry[2], alpha};
    }
    bool isTransparent = transparency.size() >= 2 * samples_;
    for (size_t c = 0; isTransparent && c < samples_; ++c) {
      isTransparent = sample[c] == (transparency[2 * c] << 8 | transparency[2 * c + 1]);
    }
    const uint32_t most = (1U << file_.header.bits) - 1;
    std::array<uint8_t, 4> pixel{0, 0, 0, static_cast<uint8_t>(isTransparent ? 0 : 255)};
    for (size_t c = 0; c < 3; ++c) {
      pixel[c] = static_cast<uint8_t>((sample[samples_ == 1 ? 0 : c] * 255U + most / 2) / most);
    }
    return pixel;
  }

  const PngFile& file_;
  size_t samples_;
};

SampleLayout LayoutOf(const PngFile& file) {
  const PngHeader& header = file.header;
  SampleLayout layout;
  if (!file.transparency.empty() && header.colour <= kPalette) {
    layout.model = ColourModel::kRgb;
    layout.alpha = AlphaKind::kStraight;
    layout.channels = 4;
    return layout;
  }
  layout.bits = header.bits;
  layout.channels = static_cast<int32_t>(header.Channels());
  if (header.colour == kPalette) {
    if (file.palette.empty()) throw DecodeError("its palette is missing");
    layout.model = ColourModel::kPalette;
    layout.palette = file.palette;
  } else if (header.colour == kRgb || header.colour == kRgbAlpha) {
    layout.model = ColourModel::kRgb;
  }
  if (header.colour >= kGreyAlpha) layout.alpha = AlphaKind::kStraight;
  return layout;
}

void SwapSamples(uint8_t* row, size_t bytes) {
  for (size_t i = 0; i + 1 < bytes; i += 2) std::swap(row[i], row[i + 1]);
}

void ConvertRows(const PngFile& file, uint8_t* rows, Page* page) {
  const PngHeader& header = file.header;
  const SampleLayout layout = LayoutOf(file);
  RowConverter converter(layout, static_cast<int32_t>(header.width));
  MakeImage(static_cast<int32_t>(header.width), static_cast<int32_t>(header.height),
            converter.depth(), page);
  const bool isExpanded = !file.transparency.empty() && header.colour <= kPalette;
  const TransparentRows transparent(file);
  const size_t rowBytes = header.RowBytes(header.width);
  const bool isSwapped = header.bits == 16 && std::endian::native == std::endian::little;
  Bytes expanded;
  for (uint32_t y = 0; y < header.height; ++y) {
    uint8_t* row = rows + (rowBytes + 1) * y + 1;
    if (isExpanded) {
      transparent.Expand(row, &expanded);
      row = expanded.data();
    } else if (isSwapped) {
      SwapSamples(row, rowBytes);
    }
    converter.Convert(row, page->image.rec()->rows[y]);
  }
  if (isExpanded && header.colour == kPalette) {
    page->notes.push_back(std::to_string(header.bits) + "-bit palette converted to 24-bit colour");
  } else if (isExpanded) {
    page->notes.emplace_back("a transparent colour converted to 24-bit colour");
  }
  if (!converter.Note().empty()) page->notes.push_back(converter.Note());
  page->coding.hasOpaqueAlpha = converter.IsOpaque() && !isExpanded;
}

}  // namespace

void ReadPng(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page) {
  const PngFile file = ReadChunks(bytes, limits, &page->metadata);
  page->coding.format = FileFormat::kPng;
  const std::unique_ptr<uint8_t[]> rows = UnpackRows(file);
  ConvertRows(file, rows.get(), page);
  ApplyOrientation(file.orientation, page);
}

}  // namespace vorlane::files
