#include "app/files/tiff_encoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <numeric>

#include "app/files/icc.h"
#include "app/files/tiff_handle.h"
#include "app/files/tiff_metadata.h"

namespace vorlane::files {
namespace {

constexpr double kCentimetresPerInch = 2.54;

// Enough for the schemes to work well, little enough for readers that take strips one by one.
constexpr uint32_t kStripBytes = 1U << 20;

// A file of the TIFF library's in memory.
struct MemoryFile {
  std::vector<uint8_t> bytes;
  uint64_t at = 0;

  static tmsize_t Read(thandle_t handle, void* to, tmsize_t count) {
    auto* file = static_cast<MemoryFile*>(handle);
    if (file->at >= file->bytes.size()) return 0;
    const size_t got =
        std::min(static_cast<size_t>(count), file->bytes.size() - static_cast<size_t>(file->at));
    std::memcpy(to, file->bytes.data() + file->at, got);
    file->at += got;
    return static_cast<tmsize_t>(got);
  }
  // No exception may pass the library's frames: without memory the write fails.
  static tmsize_t Write(thandle_t handle, void* from, tmsize_t count) {
    auto* file = static_cast<MemoryFile*>(handle);
    const auto* bytes = static_cast<const uint8_t*>(from);
    const auto length = static_cast<size_t>(count);
    try {
      if (file->at > file->bytes.size()) file->bytes.resize(static_cast<size_t>(file->at));
      const size_t at = static_cast<size_t>(file->at);
      const size_t over = std::min(length, file->bytes.size() - at);
      std::copy_n(bytes, over, file->bytes.begin() + static_cast<ptrdiff_t>(at));
      file->bytes.insert(file->bytes.end(), bytes + over, bytes + length);
    } catch (const std::bad_alloc&) {
      return -1;
    }
    file->at += length;
    return count;
  }
  static toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    auto* file = static_cast<MemoryFile*>(handle);
    const uint64_t from = whence == SEEK_CUR   ? file->at
                          : whence == SEEK_END ? file->bytes.size()
                                               : 0;
    file->at = from + offset;
    return file->at;
  }
  static int Close(thandle_t /*handle*/) { return 0; }
  static toff_t Size(thandle_t handle) { return static_cast<MemoryFile*>(handle)->bytes.size(); }
};

// Pages are written by then. Of a page that could not be, the library would write what is missing,
// from tables that it may have found no memory for.
struct TiffRelease {
  void operator()(TIFF* tiff) const {
    (void)TIFFSetMode(tiff, O_RDONLY);
    TIFFClose(tiff);
  }
};
using TiffPtr = std::unique_ptr<TIFF, TiffRelease>;

TiffPtr OpenForWriting(MemoryFile* file, TiffMessages* messages) {
  TIFFOpenOptions* options = MessageOptions(messages);
  TiffPtr tiff(TIFFClientOpenExt("page", "wm", file, MemoryFile::Read, MemoryFile::Write,
                                 MemoryFile::Seek, MemoryFile::Close, MemoryFile::Size, nullptr,
                                 nullptr, options));
  TIFFOpenOptionsFree(options);
  if (!tiff) throw EncodeError(FirstError(*messages));
  return tiff;
}

// How the new page is stored.
struct TiffPlan {
  uint16_t compression = COMPRESSION_NONE;
  uint16_t predictor = 1;
  uint16_t samples = 1;
  bool isInverted = false;
  bool addsAlpha = false;
  uint32_t rowsPerStrip = 1;
  int32_t jpegQuality = kUsualJpegQuality;
};

// The page's own scheme where it can be written for this depth.
uint16_t CompressionFor(const EncodeJob& job) {
  const uint16_t usual =
      job.image.bitsPerPixel == 1 ? COMPRESSION_CCITTFAX4 : COMPRESSION_ADOBE_DEFLATE;
  const uint16_t own = job.source.coding.tiff.compression;
  if (own == 0) return usual;
  if (own == COMPRESSION_OJPEG) return COMPRESSION_JPEG;
  const bool isBits = job.image.bitsPerPixel == 1;
  const bool fitsDepth = isBits ? own != COMPRESSION_JPEG : !IsFax(own) && own != COMPRESSION_JBIG;
  // Of these it cannot be told whether they kept every level.
  const bool isUnsure =
      own == COMPRESSION_WEBP || own == COMPRESSION_LERC || own == COMPRESSION_JXL;
  if (fitsDepth && !isUnsure && TIFFIsCODECConfigured(own) == 1) return own;
  job.notes->push_back(isBits ? "compression changed to G4" : "compression changed to Deflate");
  return usual;
}

uint32_t RowsPerStrip(const EncodeJob& job, const TiffPlan& plan) {
  const auto height = static_cast<uint32_t>(job.image.height);
  const size_t rowBytes =
      (static_cast<size_t>(job.image.width) * plan.samples * (job.image.bitsPerPixel == 1 ? 1 : 8) +
       7) /
      8;
  uint32_t rows = job.source.coding.tiff.rowsPerStrip;
  // One strip for the whole page stays one.
  if (rows >= static_cast<uint32_t>(job.source.image.rec()->height) && rows > 0) rows = height;
  if (rows == 0 && plan.compression == COMPRESSION_CCITTFAX4) rows = height;
  if (rows == 0) rows = static_cast<uint32_t>(std::max<size_t>(1, kStripBytes / rowBytes));
  if (plan.compression == COMPRESSION_JPEG) rows = (rows + 15) / 16 * 16;
  return std::min(rows, plan.compression == COMPRESSION_JPEG ? (height + 15) / 16 * 16 : height);
}

TiffPlan PlanFor(const EncodeJob& job) {
  const PageCoding& coding = job.source.coding;
  TiffPlan plan;
  plan.compression = CompressionFor(job);
  plan.addsAlpha =
      coding.hasOpaqueAlpha && job.image.bitsPerPixel >= 8 && plan.compression != COMPRESSION_JPEG;
  plan.samples =
      static_cast<uint16_t>((job.image.bitsPerPixel == 24 ? 3 : 1) + (plan.addsAlpha ? 1 : 0));
  plan.isInverted =
      job.image.bitsPerPixel != 24 &&
      (coding.tiff.compression != 0 ? coding.isInverted : job.image.bitsPerPixel == 1);
  if (HasPredictor(plan.compression) && job.image.bitsPerPixel >= 8) {
    plan.predictor =
        coding.tiff.predictor != 0 ? coding.tiff.predictor : uint16_t{PREDICTOR_HORIZONTAL};
  }
  plan.rowsPerStrip = RowsPerStrip(job, plan);
  if (coding.jpeg.quality > 0) plan.jpegQuality = coding.jpeg.quality;
  if (job.options.jpegQuality > 0) plan.jpegQuality = job.options.jpegQuality;
  if (coding.tiff.tileWidth > 0) job.notes->emplace_back("tiles stored as strips");
  return plan;
}

template <typename... Values>
void SetTag(TIFF* tiff, uint32_t tag, Values... values) {
  if (TIFFSetField(tiff, tag, values...) != 1) {
    throw EncodeError("the TIFF library refuses a page of this kind");
  }
}

void SetJpegTags(TIFF* tiff, const EncodeJob& job, const TiffPlan& plan) {
  if (job.image.bitsPerPixel == 24) {
    SetTag(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR);
    SetTag(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    SetTag(tiff, TIFFTAG_YCBCRSUBSAMPLING, job.source.coding.jpeg.horizontal,
           job.source.coding.jpeg.vertical);
  }
  SetTag(tiff, TIFFTAG_JPEGQUALITY, plan.jpegQuality);
}

void SetTags(TIFF* tiff, const EncodeJob& job, const TiffPlan& plan) {
  SetTag(tiff, TIFFTAG_IMAGEWIDTH, job.image.width);
  SetTag(tiff, TIFFTAG_IMAGELENGTH, job.image.height);
  SetTag(tiff, TIFFTAG_BITSPERSAMPLE, job.image.bitsPerPixel == 1 ? 1 : 8);
  SetTag(tiff, TIFFTAG_SAMPLESPERPIXEL, plan.samples);
  SetTag(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  SetTag(tiff, TIFFTAG_COMPRESSION, plan.compression);
  if (job.image.bitsPerPixel == 24) {
    SetTag(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  } else {
    SetTag(tiff, TIFFTAG_PHOTOMETRIC,
           plan.isInverted ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK);
  }
  if (plan.addsAlpha) {
    const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
    SetTag(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  }
  if (plan.compression == COMPRESSION_JPEG) SetJpegTags(tiff, job, plan);
  if (plan.compression == COMPRESSION_CCITTFAX3) {
    SetTag(tiff, TIFFTAG_GROUP3OPTIONS, job.source.coding.tiff.faxOptions);
  }
  if (HasPredictor(plan.compression)) SetTag(tiff, TIFFTAG_PREDICTOR, plan.predictor);
  if (plan.compression == COMPRESSION_ADOBE_DEFLATE || plan.compression == COMPRESSION_DEFLATE) {
    SetTag(tiff, TIFFTAG_ZIPQUALITY, kDeflateLevel);
  }
  SetTag(tiff, TIFFTAG_ROWSPERSTRIP, plan.rowsPerStrip);
  SetTag(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
}

// A row as the file stores it: red first, an opaque alpha, white as 0 where the page had it so.
void StoreRow(const uint8_t* from, const ImageRec& image, const TiffPlan& plan, uint8_t* to) {
  const auto width = static_cast<size_t>(image.width);
  if (image.bitsPerPixel == 24) {
    for (size_t x = 0; x < width; ++x, from += 3, to += plan.samples) {
      to[0] = from[2];
      to[1] = from[1];
      to[2] = from[0];
      if (plan.addsAlpha) to[3] = 255;
    }
    return;
  }
  const size_t bytes = image.bitsPerPixel == 1 ? (width + 7) / 8 : width;
  const auto flip = static_cast<uint8_t>(plan.isInverted ? 0xFF : 0);
  if (plan.addsAlpha) {
    for (size_t x = 0; x < width; ++x, to += 2) {
      to[0] = static_cast<uint8_t>(from[x] ^ flip);
      to[1] = 255;
    }
    return;
  }
  std::transform(from, from + bytes, to,
                 [flip](uint8_t v) { return static_cast<uint8_t>(v ^ flip); });
  // Places past the last pixel are 0 in the file.
  if (image.bitsPerPixel == 1 && width % 8 != 0) {
    to[bytes - 1] &= static_cast<uint8_t>(0xFF00 >> (width % 8));
  }
}

void WriteStrips(TIFF* tiff, const ImageRec& image, const TiffPlan& plan, TiffMessages* messages) {
  const size_t rowBytes = image.bitsPerPixel == 1 ? (static_cast<size_t>(image.width) + 7) / 8
                                                  : static_cast<size_t>(image.width) * plan.samples;
  const auto height = static_cast<uint32_t>(image.height);
  const auto strip =
      std::make_unique_for_overwrite<uint8_t[]>(rowBytes * std::min(plan.rowsPerStrip, height));
  for (uint32_t top = 0, index = 0; top < height; top += plan.rowsPerStrip, ++index) {
    const uint32_t rows = std::min(plan.rowsPerStrip, height - top);
    for (uint32_t y = 0; y < rows; ++y) {
      StoreRow(image.rows[top + y], image, plan, strip.get() + y * rowBytes);
    }
    const auto bytes = static_cast<tmsize_t>(rowBytes * rows);
    if (TIFFWriteEncodedStrip(tiff, index, strip.get(), bytes) != bytes) {
      throw EncodeError(FirstError(*messages));
    }
  }
}

// The fraction of least denominator that is as good as equal.
TiffEntry RationalEntry(uint16_t tag, double value) {
  constexpr uint32_t kLargest = 100000;
  uint32_t below = 1;
  while (below < kLargest &&
         std::abs(value * below - std::round(value * below)) > 1e-7 * value * below) {
    ++below;
  }
  const auto above = static_cast<uint32_t>(std::min(std::round(value * below), 4294967295.0));
  TiffEntry entry{tag, TIFF_RATIONAL, 1, std::vector<uint8_t>(8), {}};
  std::memcpy(entry.data.data(), &above, 4);
  std::memcpy(entry.data.data() + 4, &below, 4);
  return entry;
}

TiffEntry ShortEntry(uint16_t tag, uint16_t value) {
  TiffEntry entry{tag, TIFF_SHORT, 1, std::vector<uint8_t>(2), {}};
  std::memcpy(entry.data.data(), &value, 2);
  return entry;
}

void AddResolution(const Resolution& resolution, std::vector<TiffEntry>* entries) {
  if (resolution.x <= 0 || resolution.y <= 0) return;
  const bool isMetric = resolution.isMetric;
  const double factor = isMetric ? 1 / kCentimetresPerInch : 1;
  entries->push_back(RationalEntry(TIFFTAG_XRESOLUTION, resolution.x * factor));
  entries->push_back(RationalEntry(TIFFTAG_YRESOLUTION, resolution.y * factor));
  entries->push_back(ShortEntry(TIFFTAG_RESOLUTIONUNIT,
                                isMetric ? uint16_t{RESUNIT_CENTIMETER} : uint16_t{RESUNIT_INCH}));
}

struct StripTags {
  uint16_t offsets;
  uint16_t counts;
};
constexpr StripTags kStrips = {TIFFTAG_STRIPOFFSETS, TIFFTAG_STRIPBYTECOUNTS};
constexpr StripTags kTiles = {TIFFTAG_TILEOFFSETS, TIFFTAG_TILEBYTECOUNTS};

// Where the strips or tiles of a page are.
struct StripList {
  TiffEntry* offsets = nullptr;
  const TiffEntry* counts = nullptr;
};

StripList FindStrips(std::vector<TiffEntry>* entries) {
  const StripTags tags = FindEntry(*entries, kTiles.offsets) != nullptr ? kTiles : kStrips;
  StripList strips;
  for (TiffEntry& entry : *entries) {
    if (entry.tag == tags.offsets) strips.offsets = &entry;
    if (entry.tag == tags.counts) strips.counts = &entry;
  }
  if (strips.offsets == nullptr || strips.counts == nullptr ||
      strips.offsets->count != strips.counts->count) {
    throw DecodeError("its list of strips is damaged");
  }
  return strips;
}

// Gathers the strips or tiles that the entries point to. Afterwards they count from the first byte.
std::vector<uint8_t> GatherStrips(const ByteSource& source, std::vector<TiffEntry>* entries) {
  const StripList strips = FindStrips(entries);
  std::vector<uint64_t> places;
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < strips.counts->count; ++i) {
    const uint64_t length = NumberOf(*strips.counts, i);
    places.push_back(bytes.size());
    if (length > source.size()) throw DecodeError("it was cut short");
    bytes.resize(bytes.size() + static_cast<size_t>(length));
    const std::span<uint8_t> to(bytes.data() + places.back(), static_cast<size_t>(length));
    if (source.ReadAt(NumberOf(*strips.offsets, i), to) < to.size()) {
      throw DecodeError("it was cut short");
    }
  }
  *strips.offsets = OffsetsEntryOf(strips.offsets->tag, places);
  return bytes;
}

// The same for a file that the TIFF library has just written: header, strips, directory.
std::vector<uint8_t> TakeStrips(std::vector<uint8_t> file, std::vector<TiffEntry>* entries) {
  const StripList strips = FindStrips(entries);
  const uint64_t first = NumberOf(*strips.offsets);
  std::vector<uint64_t> places;
  uint64_t end = first;
  for (size_t i = 0; i < strips.counts->count; ++i) {
    const uint64_t place = NumberOf(*strips.offsets, i);
    if (place < first) return GatherStrips(MemorySource(file), entries);
    places.push_back(place - first);
    end = std::max(end, place + NumberOf(*strips.counts, i));
  }
  file.resize(static_cast<size_t>(end));
  file.erase(file.begin(), file.begin() + static_cast<ptrdiff_t>(first));
  *strips.offsets = OffsetsEntryOf(strips.offsets->tag, places);
  return file;
}

}  // namespace

EncodedPage EncodeTiff(const EncodeJob& job) {
  const TiffPlan plan = PlanFor(job);
  TiffMessages messages;
  MemoryFile file;
  const auto pixels = static_cast<size_t>(job.image.width) * static_cast<size_t>(job.image.height);
  if (plan.compression == COMPRESSION_NONE) file.bytes.reserve(pixels * plan.samples + 65536);
  {
    const TiffPtr tiff = OpenForWriting(&file, &messages);
    SetTags(tiff.get(), job, plan);
    WriteStrips(tiff.get(), job.image, plan, &messages);
    if (TIFFWriteDirectory(tiff.get()) != 1) throw EncodeError(FirstError(messages));
  }
  const MemorySource written(file.bytes);
  const std::optional<TiffHeader> header = ReadTiffHeader(written);
  if (!header) throw EncodeError("the TIFF library wrote no page");
  EncodedPage page;
  size_t lost = 0;
  page.entries = ReadDirectory(written, *header, header->first, &lost);
  page.bytes = TakeStrips(std::move(file.bytes), &page.entries);
  AddResolution(job.source.metadata.resolution, &page.entries);
  for (TiffEntry& entry : TiffEntriesOf(job.source.metadata)) {
    if (entry.tag == TIFFTAG_ICCPROFILE && !IccFits(entry.data, job.image.bitsPerPixel)) {
      job.notes->emplace_back("the colour profile, which is for other colours, dropped");
    } else if (FindEntry(page.entries, entry.tag) == nullptr) {
      page.entries.push_back(std::move(entry));
    }
  }
  return page;
}

std::optional<EncodedPage> CopyTiffPage(const PictureFile::TiffPlace& place) {
  EncodedPage page;
  size_t lost = 0;
  page.entries = ReadDirectory(place.source, place.header, place.directory, &lost);
  const TiffEntry* bits = FindEntry(page.entries, TIFFTAG_BITSPERSAMPLE);
  const bool isWide = bits != nullptr && NumberOf(*bits) > 8;
  const TiffEntry* compression = FindEntry(page.entries, TIFFTAG_COMPRESSION);
  const bool isOldJpeg = compression != nullptr && NumberOf(*compression) == COMPRESSION_OJPEG;
  if (lost > 0 || isOldJpeg || (place.header.isSwapped && isWide)) return std::nullopt;
  std::erase_if(page.entries, [](const TiffEntry& entry) { return entry.tag == TIFFTAG_SUBIFD; });
  page.bytes = GatherStrips(place.source, &page.entries);
  return page;
}

}  // namespace vorlane::files
