// The directories of TIFF files and EXIF blocks, read and written entry by entry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/files/byte_source.h"

namespace vorlane::files {

// An entry with its values in this machine's byte order.
struct TiffEntry {
  uint16_t tag = 0;
  uint16_t type = 0;   // of the format's table: 1 byte, 2 text, 3 short, 4 long, 5 rational ...
  uint64_t count = 0;  // values
  std::vector<uint8_t> data;
  // The directories that the values point to, for the tags that point to some; the values
  // themselves then mean nothing.
  std::vector<std::vector<TiffEntry>> directories;
};

// Numbers of an entry by any of the integer types; 0 when there is no such value.
uint64_t NumberOf(const TiffEntry& entry, size_t index = 0);
// A rational number; 0 when it is none.
double RationalOf(const TiffEntry& entry);
// Text without what follows its last character.
std::string TextOf(const TiffEntry& entry);

// Whether an entry has the bytes that its type and its number of values ask for.
bool IsWhole(const TiffEntry& entry);

const TiffEntry* FindEntry(const std::vector<TiffEntry>& entries, uint16_t tag);
TiffEntry TextEntryOf(uint16_t tag, const std::string& text);
// 64-bit numbers, brought to 32 bits where a file of 32-bit offsets is written.
TiffEntry OffsetsEntryOf(uint16_t tag, const std::vector<uint64_t>& offsets);
TiffEntry BytesEntryOf(uint16_t tag, const std::vector<uint8_t>& bytes);

// How the numbers of a file are stored, and where its first directory is.
struct TiffHeader {
  bool isSwapped = false;  // against this machine's byte order
  bool isBig = false;      // BigTIFF: 64-bit offsets
  uint64_t first = 0;
};

// Nothing when the bytes do not begin as a TIFF file does.
std::optional<TiffHeader> ReadTiffHeader(const ByteSource& source);

// Where the directories of a file's pages are.
struct TiffPages {
  std::vector<uint64_t> directories;
  std::string damage;  // why the list breaks off after these; empty: it ends as it should
};

// Follows the list of pages, in time linear in their number, up to `most` pages.
TiffPages FindDirectories(const ByteSource& source, const TiffHeader& header, size_t most);

// The entries of the directory at `offset`, with the directories of EXIF, GPS and interoperability
// data below it. Entries of unknown types are left out; those whose values lie outside the file are
// too, and are counted in *lost. Throws DecodeError when the directory itself does.
std::vector<TiffEntry> ReadDirectory(const ByteSource& source, const TiffHeader& header,
                                     uint64_t offset, size_t* lost);

// The bytes of a directory that will stand at `base` of a file, with its values and the directories
// below it, entries in the order of their tags; the link to the next directory is 0. Offsets among
// the values stand as they are. The base is even.
struct DirectoryBytes {
  std::vector<uint8_t> bytes;
  uint64_t link = 0;  // where the link to the next directory stands in the file
};
DirectoryBytes WriteDirectory(std::vector<TiffEntry> entries, bool isBig, uint64_t base);

// The first bytes of a file in this machine's byte order whose first directory is at `first`.
std::vector<uint8_t> WriteTiffHeader(bool isBig, uint64_t first);

}  // namespace vorlane::files
