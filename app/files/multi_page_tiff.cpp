#include "app/files/multi_page_tiff.h"

#include <cstring>
#include <limits>

namespace vorlane::files {
namespace {

constexpr size_t kHeaderBytes = 8;
constexpr size_t kEntryBytes = 12;
constexpr uint16_t kStripOffsets = 273;
constexpr uint16_t kTileOffsets = 324;
constexpr uint16_t kShort = 3;
constexpr uint16_t kLong = 4;

// Numbers of the page in this machine's byte order; out of range reads give 0.
class PageBytes {
 public:
  explicit PageBytes(std::vector<uint8_t>* bytes) : bytes_(*bytes) {}

  bool Holds(size_t at, size_t length) const {
    return at <= bytes_.size() && length <= bytes_.size() - at;
  }
  template <typename T>
  T Get(size_t at) const {
    T value = 0;
    if (Holds(at, sizeof(T))) std::memcpy(&value, bytes_.data() + at, sizeof(T));
    return value;
  }
  template <typename T>
  void Put(size_t at, T value) {
    if (Holds(at, sizeof(T))) std::memcpy(bytes_.data() + at, &value, sizeof(T));
  }
  // Room for `length` bytes at the end, on an even offset as the format asks.
  size_t Extend(size_t length) {
    const size_t at = (bytes_.size() + 1) / 2 * 2;
    bytes_.resize(at + length);
    return at;
  }

 private:
  std::vector<uint8_t>& bytes_;
};

// Bytes of one value by its TIFF type; 0 for a type this format does not know.
size_t TypeBytes(uint16_t type) {
  static constexpr size_t kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
  return type < std::size(kBytes) ? kBytes[type] : 0;
}

// Strip offsets as 32-bit numbers at their new place: a 16-bit one would not hold it.
bool MoveOffsets(PageBytes* page, size_t entry, uint32_t base) {
  const auto type = page->Get<uint16_t>(entry + 2);
  const auto count = page->Get<uint32_t>(entry + 4);
  if (type != kShort && type != kLong) return false;
  const size_t size = TypeBytes(type);
  const bool isInline = count * size <= 4;
  const size_t from = isInline ? entry + 8 : page->Get<uint32_t>(entry + 8);
  if (!page->Holds(from, count * size)) return false;

  std::vector<uint32_t> offsets(count);
  for (size_t i = 0; i < count; ++i) {
    offsets[i] = base + (type == kShort ? page->Get<uint16_t>(from + 2 * i)
                                        : page->Get<uint32_t>(from + 4 * i));
  }
  size_t to = from;
  if (count == 1) {
    to = entry + 8;
  } else if (type == kShort) {
    to = page->Extend(4 * size_t{count});
  }
  for (size_t i = 0; i < count; ++i) page->Put<uint32_t>(to + 4 * i, offsets[i]);
  page->Put<uint16_t>(entry + 2, kLong);
  if (count > 1) page->Put<uint32_t>(entry + 8, base + static_cast<uint32_t>(to));
  return true;
}

bool MoveEntry(PageBytes* page, size_t entry, uint32_t base) {
  const auto tag = page->Get<uint16_t>(entry);
  if (tag == kStripOffsets || tag == kTileOffsets) return MoveOffsets(page, entry, base);
  const size_t bytes = TypeBytes(page->Get<uint16_t>(entry + 2));
  if (bytes == 0) return false;
  if (bytes * page->Get<uint32_t>(entry + 4) > 4) {
    page->Put<uint32_t>(entry + 8, base + page->Get<uint32_t>(entry + 8));
  }
  return true;
}

}  // namespace

bool AppendTiffPage(TiffChain* chain, std::vector<uint8_t>* page, uint32_t* directory) {
  PageBytes bytes(page);
  const auto start = bytes.Get<uint32_t>(4);
  const auto entries = bytes.Get<uint16_t>(start);
  const size_t link = start + 2 + kEntryBytes * entries;
  if (start < kHeaderBytes || entries == 0 || !bytes.Holds(link, 4)) return false;
  const uint32_t base = chain->size;
  // Half the range left over, so that no offset below can pass the end while it is moved.
  if (page->size() > std::numeric_limits<uint32_t>::max() - base - page->size() / 2) return false;

  if (base > 0) {
    for (size_t i = 0; i < entries; ++i) {
      if (!MoveEntry(&bytes, start + 2 + kEntryBytes * i, base)) return false;
    }
  }
  bytes.Put<uint32_t>(link, 0);
  (void)bytes.Extend(0);
  *directory = base + start;
  chain->link = base + static_cast<uint32_t>(link);
  chain->size = base + static_cast<uint32_t>(page->size());
  return true;
}

}  // namespace vorlane::files
