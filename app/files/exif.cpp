#include "app/files/exif.h"

#include <algorithm>
#include <cstring>
#include <tiff.h>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

constexpr uint16_t kPixelWidth = 40962;
constexpr uint16_t kPixelHeight = 40963;
constexpr size_t kEntryBytes = 12;
constexpr double kCentimetresPerInch = 2.54;

// Changes single numbers of a block where they stand; places outside it are left alone.
class ExifPatcher {
 public:
  explicit ExifPatcher(Bytes* exif) : exif_(*exif) {}

  uint32_t Get(size_t at, size_t bytes) const {
    if (at > exif_.size() || bytes > exif_.size() - at) return 0;
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i) {
      value |= static_cast<uint32_t>(exif_[at + i]) << 8 * PlaceOf(i, bytes);
    }
    return value;
  }

  void Put(size_t at, size_t bytes, uint32_t value) {
    if (at > exif_.size() || bytes > exif_.size() - at) return;
    for (size_t i = 0; i < bytes; ++i) {
      exif_[at + i] = static_cast<uint8_t>(value >> 8 * PlaceOf(i, bytes));
    }
  }

  // Where the entry of a tag stands in the directory at `directory`; 0 for nowhere.
  size_t FindAt(size_t directory, uint16_t tag) const {
    const uint32_t count = Get(directory, 2);
    for (uint32_t i = 0; i < count; ++i) {
      const size_t at = directory + 2 + kEntryBytes * i;
      if (Get(at, 2) == tag) return at;
    }
    return 0;
  }

  void PutShortOrLong(size_t directory, uint16_t tag, uint32_t value) {
    const size_t at = FindAt(directory, tag);
    if (at == 0) return;
    const uint32_t type = Get(at + 2, 2);
    if (type == TIFF_SHORT && value <= UINT16_MAX) Put(at + 8, 2, value);
    if (type == TIFF_LONG) Put(at + 8, 4, value);
  }

 private:
  // Little-endian blocks hold the lowest byte first.
  size_t PlaceOf(size_t i, size_t bytes) const { return IsLittle() ? i : bytes - 1 - i; }
  bool IsLittle() const { return exif_[0] == 'I'; }

  Bytes& exif_;
};

}  // namespace

Resolution ResolutionOf(const std::vector<TiffEntry>& entries) {
  const TiffEntry* x = FindEntry(entries, TIFFTAG_XRESOLUTION);
  const TiffEntry* y = FindEntry(entries, TIFFTAG_YRESOLUTION);
  const TiffEntry* unit = FindEntry(entries, TIFFTAG_RESOLUTIONUNIT);
  const uint64_t kind = unit == nullptr ? uint64_t{RESUNIT_INCH} : NumberOf(*unit);
  if (x == nullptr || kind == RESUNIT_NONE) return {};
  const double factor = kind == RESUNIT_CENTIMETER ? kCentimetresPerInch : 1;
  const double across = RationalOf(*x) * factor;
  return {across, y == nullptr ? across : RationalOf(*y) * factor, kind == RESUNIT_CENTIMETER};
}

std::vector<TiffEntry> EntriesOfExif(std::span<const uint8_t> exif) {
  const MemorySource source(exif);
  const std::optional<TiffHeader> header = ReadTiffHeader(source);
  if (!header || header->isBig) return {};
  try {
    size_t lost = 0;
    return ReadDirectory(source, *header, header->first, &lost);
  } catch (const DecodeError&) {
    return {};
  }
}

ExifFacts ReadExifFacts(std::span<const uint8_t> exif) {
  ExifFacts facts;
  const std::vector<TiffEntry> entries = EntriesOfExif(exif);
  const TiffEntry* orientation = FindEntry(entries, TIFFTAG_ORIENTATION);
  if (orientation != nullptr) facts.orientation = static_cast<uint32_t>(NumberOf(*orientation));
  facts.resolution = ResolutionOf(entries);
  return facts;
}

void ResetExif(int32_t width, int32_t height, Bytes* exif) {
  const std::optional<TiffHeader> header = ReadTiffHeader(MemorySource(*exif));
  if (!header || header->isBig) return;
  ExifPatcher patcher(exif);
  const auto first = static_cast<size_t>(header->first);
  patcher.PutShortOrLong(first, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  const size_t pointer = patcher.FindAt(first, TIFFTAG_EXIFIFD);
  if (pointer != 0) {
    const size_t below = patcher.Get(pointer + 8, 4);
    patcher.PutShortOrLong(below, kPixelWidth, static_cast<uint32_t>(width));
    patcher.PutShortOrLong(below, kPixelHeight, static_cast<uint32_t>(height));
  }
  patcher.Put(first + 2 + kEntryBytes * patcher.Get(first, 2), 4, 0);
}

Bytes ExifOfEntries(const std::vector<TiffEntry>& entries) {
  if (entries.empty()) return {};
  Bytes exif = WriteTiffHeader(false, 8);
  const Bytes directory = WriteDirectory(entries, false, exif.size()).bytes;
  exif.insert(exif.end(), directory.begin(), directory.end());
  return exif;
}

}  // namespace vorlane::files
