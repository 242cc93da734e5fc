#include "app/files/tiff_metadata.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <tiff.h>

#include "app/files/exif.h"

namespace vorlane::files {
namespace {

// Entries that describe how the pixels are stored, or a picture of another size: the new page's own
// take their place.
bool DescribesPixels(uint16_t tag) {
  static constexpr uint16_t kTags[] = {TIFFTAG_IMAGEWIDTH,
                                       TIFFTAG_IMAGELENGTH,
                                       TIFFTAG_BITSPERSAMPLE,
                                       TIFFTAG_COMPRESSION,
                                       TIFFTAG_PHOTOMETRIC,
                                       TIFFTAG_THRESHHOLDING,
                                       TIFFTAG_CELLWIDTH,
                                       TIFFTAG_CELLLENGTH,
                                       TIFFTAG_FILLORDER,
                                       TIFFTAG_STRIPOFFSETS,
                                       TIFFTAG_ORIENTATION,
                                       TIFFTAG_SAMPLESPERPIXEL,
                                       TIFFTAG_ROWSPERSTRIP,
                                       TIFFTAG_STRIPBYTECOUNTS,
                                       TIFFTAG_MINSAMPLEVALUE,
                                       TIFFTAG_MAXSAMPLEVALUE,
                                       TIFFTAG_XRESOLUTION,
                                       TIFFTAG_YRESOLUTION,
                                       TIFFTAG_PLANARCONFIG,
                                       TIFFTAG_FREEOFFSETS,
                                       TIFFTAG_FREEBYTECOUNTS,
                                       TIFFTAG_GRAYRESPONSEUNIT,
                                       TIFFTAG_GRAYRESPONSECURVE,
                                       TIFFTAG_GROUP3OPTIONS,
                                       TIFFTAG_GROUP4OPTIONS,
                                       TIFFTAG_RESOLUTIONUNIT,
                                       TIFFTAG_TRANSFERFUNCTION,
                                       TIFFTAG_PREDICTOR,
                                       TIFFTAG_COLORMAP,
                                       TIFFTAG_HALFTONEHINTS,
                                       TIFFTAG_TILEWIDTH,
                                       TIFFTAG_TILELENGTH,
                                       TIFFTAG_TILEOFFSETS,
                                       TIFFTAG_TILEBYTECOUNTS,
                                       TIFFTAG_BADFAXLINES,
                                       TIFFTAG_CLEANFAXDATA,
                                       TIFFTAG_CONSECUTIVEBADFAXLINES,
                                       TIFFTAG_INKSET,
                                       TIFFTAG_INKNAMES,
                                       TIFFTAG_NUMBEROFINKS,
                                       TIFFTAG_DOTRANGE,
                                       TIFFTAG_EXTRASAMPLES,
                                       TIFFTAG_SAMPLEFORMAT,
                                       TIFFTAG_SMINSAMPLEVALUE,
                                       TIFFTAG_SMAXSAMPLEVALUE,
                                       TIFFTAG_JPEGTABLES,
                                       TIFFTAG_YCBCRCOEFFICIENTS,
                                       TIFFTAG_YCBCRSUBSAMPLING,
                                       TIFFTAG_YCBCRPOSITIONING,
                                       TIFFTAG_REFERENCEBLACKWHITE,
                                       TIFFTAG_SUBIFD};
  const bool isOldJpeg = tag >= TIFFTAG_JPEGPROC && tag <= TIFFTAG_JPEGACTABLES;
  return isOldJpeg || std::find(std::begin(kTags), std::end(kTags), tag) != std::end(kTags);
}

// Text entries that other formats have a keyword for.
struct TextTag {
  uint16_t tag;
  const char* keyword;
};
constexpr TextTag kTextTags[] = {
    {TIFFTAG_DOCUMENTNAME, "Title"}, {TIFFTAG_IMAGEDESCRIPTION, "Description"},
    {TIFFTAG_SOFTWARE, "Software"},  {TIFFTAG_DATETIME, "Creation Time"},
    {TIFFTAG_ARTIST, "Author"},      {TIFFTAG_COPYRIGHT, "Copyright"},
    {TIFFTAG_PAGENAME, "Page name"}};

// What an EXIF block says in its first directory besides the directories below it.
constexpr uint16_t kExifTags[] = {TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE,     TIFFTAG_MODEL,
                                  TIFFTAG_SOFTWARE,         TIFFTAG_DATETIME, TIFFTAG_ARTIST,
                                  TIFFTAG_COPYRIGHT,        TIFFTAG_EXIFIFD,  TIFFTAG_GPSIFD};

bool IsExifTag(uint16_t tag) {
  return std::find(std::begin(kExifTags), std::end(kExifTags), tag) != std::end(kExifTags);
}

Bytes TakeBytes(const std::vector<TiffEntry>& entries, uint16_t tag) {
  const TiffEntry* entry = FindEntry(entries, tag);
  return entry == nullptr ? Bytes() : entry->data;
}

void FillCommonParts(const std::vector<TiffEntry>& entries, Metadata* metadata) {
  metadata->resolution = ResolutionOf(entries);
  metadata->icc = TakeBytes(entries, TIFFTAG_ICCPROFILE);
  metadata->xmp = TakeBytes(entries, TIFFTAG_XMLPACKET);
  metadata->iptc = TakeBytes(entries, TIFFTAG_RICHTIFFIPTC);
  for (const TextTag& known : kTextTags) {
    const TiffEntry* entry = FindEntry(entries, known.tag);
    if (entry != nullptr && entry->type == TIFF_ASCII) {
      metadata->texts.push_back({known.keyword, TextOf(*entry)});
    }
  }
  if (FindEntry(entries, TIFFTAG_EXIFIFD) == nullptr &&
      FindEntry(entries, TIFFTAG_GPSIFD) == nullptr) {
    return;
  }
  std::vector<TiffEntry> exif;
  std::copy_if(entries.begin(), entries.end(), std::back_inserter(exif),
               [](const TiffEntry& entry) { return IsExifTag(entry.tag); });
  metadata->exif = ExifOfEntries(exif);
}

void AddUnlessThere(TiffEntry entry, std::vector<TiffEntry>* entries) {
  if (FindEntry(*entries, entry.tag) == nullptr) entries->push_back(std::move(entry));
}

}  // namespace

void ReadTiffMetadata(const ByteSource& source, const TiffHeader& header, uint64_t directory,
                      Page* page) {
  size_t lost = 0;
  std::vector<TiffEntry> entries = ReadDirectory(source, header, directory, &lost);
  FillCommonParts(entries, &page->metadata);
  if (FindEntry(entries, TIFFTAG_SUBIFD) != nullptr) {
    page->notes.emplace_back("smaller copies of the picture (SubIFDs) dropped");
  }
  if (lost > 0) {
    throw DecodeError(std::to_string(lost) +
                      " entries of its directory lie beyond the end of the file");
  }
  std::erase_if(entries, [](const TiffEntry& entry) { return DescribesPixels(entry.tag); });
  page->metadata.tiffEntries = std::move(entries);
}

std::vector<TiffEntry> TiffEntriesOf(const Metadata& metadata) {
  if (!metadata.tiffEntries.empty()) return metadata.tiffEntries;
  std::vector<TiffEntry> entries;
  if (!metadata.icc.empty()) {
    entries.push_back(BytesEntryOf(TIFFTAG_ICCPROFILE, metadata.icc));
  }
  if (!metadata.xmp.empty()) entries.push_back(BytesEntryOf(TIFFTAG_XMLPACKET, metadata.xmp));
  if (!metadata.iptc.empty()) {
    entries.push_back(BytesEntryOf(TIFFTAG_RICHTIFFIPTC, metadata.iptc));
  }
  for (const TextEntry& text : metadata.texts) {
    const auto known =
        std::find_if(std::begin(kTextTags), std::end(kTextTags),
                     [&](const TextTag& tag) { return text.keyword == tag.keyword; });
    if (known != std::end(kTextTags)) AddUnlessThere(TextEntryOf(known->tag, text.text), &entries);
  }
  for (const TextEntry& text : metadata.texts) {
    if (text.keyword == "Comment") {
      AddUnlessThere(TextEntryOf(TIFFTAG_IMAGEDESCRIPTION, text.text), &entries);
    }
  }
  for (TiffEntry& entry : EntriesOfExif(metadata.exif)) {
    if (IsExifTag(entry.tag)) AddUnlessThere(std::move(entry), &entries);
  }
  return entries;
}

}  // namespace vorlane::files
