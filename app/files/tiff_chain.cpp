#include "app/files/tiff_chain.h"

#include <cstring>
#include <tiff.h>
#include <utility>

namespace vorlane::files {
namespace {

// The strips' offsets in the file, given where the first of them stands.
void MoveStrips(uint64_t base, std::vector<TiffEntry>* entries) {
  for (TiffEntry& entry : *entries) {
    if (entry.tag != TIFFTAG_STRIPOFFSETS && entry.tag != TIFFTAG_TILEOFFSETS) continue;
    std::vector<uint64_t> offsets(static_cast<size_t>(entry.count));
    for (size_t i = 0; i < offsets.size(); ++i) offsets[i] = base + NumberOf(entry, i);
    entry = OffsetsEntryOf(entry.tag, offsets);
  }
}

void PadToEven(PendingFile* file) {
  const uint8_t zero = 0;
  if (file->size() % 2 != 0) file->Append({&zero, 1});
}

}  // namespace

void TiffChain::Begin(PendingFile* file) {
  file->Append(WriteTiffHeader(isBig_, 0));
  link_ = isBig_ ? 8 : 4;
}

void TiffChain::Reserve(const PendingFile& file, uint64_t bytes) const {
  if (!isBig_ && file.size() + bytes > UINT32_MAX) {
    throw EncodeError("the pages take more than a TIFF file of 4 GB holds");
  }
}

void TiffChain::Append(EncodedPage page, PendingFile* file) {
  if (link_ == 0) Begin(file);
  PadToEven(file);
  Reserve(*file, page.bytes.size());
  MoveStrips(file->size(), &page.entries);
  file->Append(page.bytes);
  PadToEven(file);
  const uint64_t directory = file->size();
  const DirectoryBytes written = WriteDirectory(std::move(page.entries), isBig_, directory);
  Reserve(*file, written.bytes.size());
  file->Append(written.bytes);
  uint8_t link[8] = {};
  const auto narrow = static_cast<uint32_t>(directory);
  std::memcpy(link, isBig_ ? static_cast<const void*>(&directory) : &narrow, isBig_ ? 8 : 4);
  file->Overwrite(link_, {link, isBig_ ? size_t{8} : size_t{4}});
  link_ = written.link;
}

}  // namespace vorlane::files
