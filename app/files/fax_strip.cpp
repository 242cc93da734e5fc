#include "app/files/fax_strip.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "app/files/errors.h"
#include "app/files/tiff_directory.h"
#include "app/files/tiff_handle.h"

namespace vorlane::files {
namespace {

TiffEntry NumberEntry(uint16_t tag, uint32_t value) {
  TiffEntry entry{tag, TIFF_LONG, 1, std::vector<uint8_t>(sizeof(value)), {}};
  std::memcpy(entry.data.data(), &value, sizeof(value));
  return entry;
}

// A file of one page that consists of the strip and promises `rows` rows.
std::vector<uint8_t> FileOf(const FaxStrip& strip, uint32_t rows) {
  constexpr uint32_t kHeader = 8;
  const auto bytes = static_cast<uint32_t>(strip.stored.size());
  const uint32_t directory = (kHeader + bytes + 1) / 2 * 2;
  std::vector<TiffEntry> entries = {NumberEntry(TIFFTAG_IMAGEWIDTH, strip.width),
                                    NumberEntry(TIFFTAG_IMAGELENGTH, rows),
                                    NumberEntry(TIFFTAG_COMPRESSION, strip.compression),
                                    NumberEntry(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE),
                                    NumberEntry(TIFFTAG_FILLORDER, strip.fillOrder),
                                    NumberEntry(TIFFTAG_STRIPOFFSETS, kHeader),
                                    NumberEntry(TIFFTAG_ROWSPERSTRIP, rows),
                                    NumberEntry(TIFFTAG_STRIPBYTECOUNTS, bytes)};
  if (strip.compression == COMPRESSION_CCITTFAX3) {
    entries.push_back(NumberEntry(TIFFTAG_GROUP3OPTIONS, strip.options));
  }
  std::vector<uint8_t> file = WriteTiffHeader(false, directory);
  file.insert(file.end(), strip.stored.begin(), strip.stored.end());
  file.resize(directory);
  const std::vector<uint8_t> tags = WriteDirectory(std::move(entries), false, directory).bytes;
  file.insert(file.end(), tags.begin(), tags.end());
  return file;
}

// What the library says while it decodes the rows and one more.
TiffMessages Decode(const FaxStrip& strip, std::span<uint8_t> out) {
  const std::vector<uint8_t> file = FileOf(strip, strip.rows + 1);
  const MemorySource source(file);
  const std::optional<TiffHeader> header = ReadTiffHeader(source);
  TiffMessages messages;
  const TiffHandle handle(source, &messages);
  if (!header || TIFFSetSubDirectory(handle.get(), header->first) != 1) {
    throw DecodeError(FirstError(messages));
  }
  messages.warnings.clear();
  std::vector<uint8_t> rows(out.size() + out.size() / strip.rows);
  // A strip of Group 3 that ends early counts as unreadable, which the extra row always makes it.
  (void)TIFFReadEncodedStrip(handle.get(), 0, rows.data(), static_cast<tmsize_t>(rows.size()));
  std::copy_n(rows.begin(), out.size(), out.begin());
  return messages;
}

// Whether a message says that nothing was there of the row behind the last one.
bool SaysNothingLeft(const std::string& message, uint32_t rows) {
  return message.find("at line " + std::to_string(rows) + " ") != std::string::npos &&
         (message.find("(got 0,") != std::string::npos ||
          message.find("(x 0)") != std::string::npos);
}

// Whether the library still words that as it is looked for here: tried on a white row of eight
// pixels, which is one bit, and the code for the end behind it.
bool KnowsTheWords() {
  static const bool isKnown = [] {
    constexpr std::array<uint8_t, 4> kWhite = {0x80, 0x08, 0x00, 0x80};
    FaxStrip strip;
    strip.stored = kWhite;
    strip.width = 8;
    strip.rows = 1;
    strip.compression = COMPRESSION_CCITTFAX4;
    std::array<uint8_t, 1> row{};
    const TiffMessages messages = Decode(strip, row);
    return messages.errors.empty() && !messages.warnings.empty() &&
           SaysNothingLeft(messages.warnings.back(), 1);
  }();
  return isKnown;
}

}  // namespace

void DecodeFaxStrip(const FaxStrip& strip, std::span<uint8_t> out) {
  TiffMessages messages = Decode(strip, out);
  if (!messages.errors.empty()) throw DecodeError(messages.errors[0]);
  const auto isHarm = [&](const std::string& message) {
    return !SaysNothingLeft(message, strip.rows);
  };
  const auto harm = std::find_if(messages.warnings.begin(), messages.warnings.end(), isHarm);
  if (harm != messages.warnings.end() && KnowsTheWords()) throw DecodeError(*harm);
  if (messages.warnings.empty() && KnowsTheWords()) {
    throw DecodeError("damaged: its codes do not end where its rows do");
  }
}

}  // namespace vorlane::files
