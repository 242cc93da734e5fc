#include "app/files/tiff_directory.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <unordered_set>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

constexpr uint16_t kExifPointer = 34665;
constexpr uint16_t kGpsPointer = 34853;
constexpr uint16_t kInteroperabilityPointer = 40965;

constexpr uint16_t kTypeByte = 1;
constexpr uint16_t kTypeText = 2;
constexpr uint16_t kTypeShort = 3;
constexpr uint16_t kTypeLong = 4;
constexpr uint16_t kTypeRational = 5;
constexpr uint16_t kTypeSignedRational = 10;
constexpr uint16_t kTypeLong8 = 16;

// EXIF data hangs three deep at most.
constexpr int kDeepest = 3;
constexpr uint64_t kMostEntries = 4096;

struct TypeSizes {
  size_t bytes;  // of one value
  size_t unit;   // what byte order is a matter of: half a rational
};

// 0 for a type that the format does not know.
TypeSizes SizesOf(uint16_t type) {
  static constexpr TypeSizes kSizes[] = {{0, 0}, {1, 1}, {1, 1}, {2, 2}, {4, 4}, {8, 4}, {1, 1},
                                         {1, 1}, {2, 2}, {4, 4}, {8, 4}, {4, 4}, {8, 8}, {4, 4},
                                         {0, 0}, {0, 0}, {8, 8}, {8, 8}, {8, 8}};
  return type < std::size(kSizes) ? kSizes[type] : TypeSizes{0, 0};
}

bool PointsToDirectory(uint16_t tag) {
  return tag == kExifPointer || tag == kGpsPointer || tag == kInteroperabilityPointer;
}

void SwapUnits(uint8_t* bytes, size_t count, size_t unit) {
  for (size_t at = 0; unit > 1 && at + unit <= count; at += unit) {
    std::reverse(bytes + at, bytes + at + unit);
  }
}

// The layout of directories in files of 32-bit and of 64-bit offsets.
struct Shape {
  size_t countBytes;
  size_t entryBytes;
  size_t valueBytes;
};
Shape ShapeOf(bool isBig) { return isBig ? Shape{8, 20, 8} : Shape{2, 12, 4}; }

template <typename T>
T NumberAt(const uint8_t* bytes, bool isSwapped) {
  uint8_t copy[sizeof(T)];
  std::memcpy(copy, bytes, sizeof(T));
  if (isSwapped) std::reverse(copy, copy + sizeof(T));
  T value = 0;
  std::memcpy(&value, copy, sizeof(T));
  return value;
}

uint64_t OffsetAt(const uint8_t* bytes, const TiffHeader& header) {
  return header.isBig ? NumberAt<uint64_t>(bytes, header.isSwapped)
                      : NumberAt<uint32_t>(bytes, header.isSwapped);
}

uint64_t CountAt(const uint8_t* bytes, const TiffHeader& header) {
  return header.isBig ? NumberAt<uint64_t>(bytes, header.isSwapped)
                      : NumberAt<uint16_t>(bytes, header.isSwapped);
}

// Where the next directory is; nothing when this one runs over the end of the file.
std::optional<uint64_t> LinkOf(const ByteSource& source, const TiffHeader& header,
                               uint64_t offset) {
  const Shape shape = ShapeOf(header.isBig);
  uint8_t block[1024];  // most directories are read at once
  const size_t got = source.ReadAt(offset, block);
  if (got < shape.countBytes) return std::nullopt;
  const uint64_t entries = CountAt(block, header);
  if (entries == 0 || entries > kMostEntries) return std::nullopt;
  const uint64_t link = shape.countBytes + entries * shape.entryBytes;
  if (link + shape.valueBytes <= got) return OffsetAt(block + link, header);
  uint8_t value[8];
  const std::span<uint8_t> wanted(value, shape.valueBytes);
  if (source.ReadAt(offset + link, wanted) < wanted.size()) return std::nullopt;
  return OffsetAt(value, header);
}

template <typename T>
void PutNumber(std::vector<uint8_t>* bytes, size_t at, T value) {
  std::memcpy(bytes->data() + at, &value, sizeof(T));
}

void PutOffset(std::vector<uint8_t>* bytes, size_t at, uint64_t value, bool isBig) {
  if (isBig) {
    PutNumber<uint64_t>(bytes, at, value);
  } else {
    PutNumber<uint32_t>(bytes, at, static_cast<uint32_t>(value));
  }
}

// Room for `count` bytes at the end, on an even offset as the format asks.
size_t Extend(std::vector<uint8_t>* bytes, size_t count) {
  const size_t at = (bytes->size() + 1) / 2 * 2;
  bytes->resize(at + count);
  return at;
}

class DirectoryReader {
 public:
  DirectoryReader(const ByteSource& source, const TiffHeader& header, size_t* lost)
      : source_(source), header_(header), shape_(ShapeOf(header.isBig)), lost_(lost) {}

  std::vector<TiffEntry> Read(uint64_t offset, int depth) {
    uint8_t head[8];
    const std::span<uint8_t> headBytes(head, shape_.countBytes);
    if (source_.ReadAt(offset, headBytes) < headBytes.size()) Refuse();
    const uint64_t count = CountAt(head, header_);
    if (count > kMostEntries) Refuse();
    std::vector<uint8_t> table(static_cast<size_t>(count) * shape_.entryBytes);
    if (source_.ReadAt(offset + shape_.countBytes, table) < table.size()) Refuse();
    std::vector<TiffEntry> entries;
    for (size_t at = 0; at < table.size(); at += shape_.entryBytes) {
      std::optional<TiffEntry> entry = ReadEntry(table.data() + at, depth);
      if (entry) entries.push_back(std::move(*entry));
    }
    return entries;
  }

 private:
  [[noreturn]] static void Refuse() {
    throw DecodeError("a directory lies beyond the end of the file");
  }

  std::optional<TiffEntry> ReadEntry(const uint8_t* bytes, int depth) {
    TiffEntry entry;
    entry.tag = NumberAt<uint16_t>(bytes, header_.isSwapped);
    entry.type = NumberAt<uint16_t>(bytes + 2, header_.isSwapped);
    entry.count = header_.isBig ? NumberAt<uint64_t>(bytes + 4, header_.isSwapped)
                                : NumberAt<uint32_t>(bytes + 4, header_.isSwapped);
    const TypeSizes sizes = SizesOf(entry.type);
    if (sizes.bytes == 0) return std::nullopt;
    if (entry.count > source_.size() / sizes.bytes) return Lost();
    const uint8_t* value = bytes + shape_.entryBytes - shape_.valueBytes;
    entry.data.resize(static_cast<size_t>(entry.count) * sizes.bytes);
    if (entry.data.size() <= shape_.valueBytes) {
      std::copy_n(value, entry.data.size(), entry.data.begin());
    } else if (source_.ReadAt(OffsetAt(value, header_), entry.data) < entry.data.size()) {
      return Lost();
    }
    // Writers call IPTC data longs, but it is a row of bytes.
    constexpr uint16_t kIptc = 33723;
    if (header_.isSwapped && entry.tag != kIptc) {
      SwapUnits(entry.data.data(), entry.data.size(), sizes.unit);
    }
    if (PointsToDirectory(entry.tag) && !ReadBelow(&entry, depth)) return Lost();
    return entry;
  }

  std::optional<TiffEntry> Lost() {
    ++*lost_;
    return std::nullopt;
  }

  bool ReadBelow(TiffEntry* entry, int depth) {
    if (depth >= kDeepest || entry->count != 1) return false;
    try {
      entry->directories.push_back(Read(NumberOf(*entry), depth + 1));
    } catch (const DecodeError&) {
      return false;
    }
    return true;
  }

  const ByteSource& source_;
  const TiffHeader& header_;
  Shape shape_;
  size_t* lost_;
};

// Writes one directory with its values behind it into the block that stands at `base`.
class DirectoryWriter {
 public:
  DirectoryWriter(bool isBig, uint64_t base, std::vector<uint8_t>* block)
      : isBig_(isBig), shape_(ShapeOf(isBig)), base_(base), block_(block) {}

  // Returns where in the block the directory begins.
  size_t Write(std::vector<TiffEntry> entries) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
    const size_t start =
        Extend(block_, shape_.countBytes + entries.size() * shape_.entryBytes + shape_.valueBytes);
    if (isBig_) {
      PutNumber<uint64_t>(block_, start, entries.size());
    } else {
      PutNumber(block_, start, static_cast<uint16_t>(entries.size()));
    }
    size_t at = start + shape_.countBytes;
    for (const TiffEntry& entry : entries) {
      WriteEntry(entry, at);
      at += shape_.entryBytes;
    }
    return start;
  }

 private:
  static TiffEntry Narrowed(const TiffEntry& wide) {
    TiffEntry narrow{wide.tag, kTypeLong, wide.count, {}, {}};
    narrow.data.resize(static_cast<size_t>(wide.count) * sizeof(uint32_t));
    for (size_t i = 0; i < wide.count; ++i) {
      PutNumber(&narrow.data, sizeof(uint32_t) * i, static_cast<uint32_t>(NumberOf(wide, i)));
    }
    return narrow;
  }

  void WriteEntry(const TiffEntry& entry, size_t at) {
    if (entry.type == kTypeLong8 && !isBig_) {
      WriteEntry(Narrowed(entry), at);
      return;
    }
    const bool isPointer = !entry.directories.empty();
    PutNumber(block_, at, entry.tag);
    PutNumber(block_, at + 2, isPointer ? (isBig_ ? kTypeLong8 : kTypeLong) : entry.type);
    PutOffset(block_, at + 4, entry.count, isBig_);
    const size_t value = at + shape_.entryBytes - shape_.valueBytes;
    if (isPointer) {
      const size_t below = DirectoryWriter(isBig_, base_, block_).Write(entry.directories[0]);
      PutOffset(block_, value, base_ + below, isBig_);
    } else if (entry.data.size() <= shape_.valueBytes) {
      std::copy(entry.data.begin(), entry.data.end(),
                block_->begin() + static_cast<ptrdiff_t>(value));
    } else {
      const size_t to = Extend(block_, entry.data.size());
      std::copy(entry.data.begin(), entry.data.end(), block_->begin() + static_cast<ptrdiff_t>(to));
      PutOffset(block_, value, base_ + to, isBig_);
    }
  }

  bool isBig_;
  Shape shape_;
  uint64_t base_;
  std::vector<uint8_t>* block_;
};

}  // namespace

uint64_t NumberOf(const TiffEntry& entry, size_t index) {
  const size_t bytes = SizesOf(entry.type).bytes;
  const size_t at = index * bytes;
  if (bytes == 0 || at + bytes > entry.data.size()) return 0;
  const uint8_t* from = entry.data.data() + at;
  switch (entry.type) {
    case kTypeByte:
      return *from;
    case kTypeShort:
      return NumberAt<uint16_t>(from, false);
    case kTypeLong:
    case 13:  // a directory's offset
      return NumberAt<uint32_t>(from, false);
    case kTypeLong8:
    case 18:
      return NumberAt<uint64_t>(from, false);
    default:
      return 0;
  }
}

double RationalOf(const TiffEntry& entry) {
  const bool isRational = entry.type == kTypeRational || entry.type == kTypeSignedRational;
  if (!isRational || entry.data.size() < 8) return 0;
  const auto above = NumberAt<uint32_t>(entry.data.data(), false);
  const auto below = NumberAt<uint32_t>(entry.data.data() + 4, false);
  return below == 0 ? 0 : static_cast<double>(above) / below;
}

std::string TextOf(const TiffEntry& entry) {
  std::string text(entry.data.begin(), entry.data.end());
  while (!text.empty() && text.back() == '\0') text.pop_back();
  return text;
}

bool IsWhole(const TiffEntry& entry) {
  const size_t bytes = SizesOf(entry.type).bytes;
  return bytes > 0 && entry.data.size() % bytes == 0 && entry.data.size() / bytes == entry.count;
}

const TiffEntry* FindEntry(const std::vector<TiffEntry>& entries, uint16_t tag) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [tag](const TiffEntry& entry) { return entry.tag == tag; });
  return found == entries.end() ? nullptr : &*found;
}

TiffEntry TextEntryOf(uint16_t tag, const std::string& text) {
  TiffEntry entry{tag, kTypeText, text.size() + 1, {text.begin(), text.end()}, {}};
  entry.data.push_back(0);
  return entry;
}

TiffEntry BytesEntryOf(uint16_t tag, const std::vector<uint8_t>& bytes) {
  constexpr uint16_t kTypeUndefined = 7;
  return {tag, kTypeUndefined, bytes.size(), bytes, {}};
}

TiffEntry OffsetsEntryOf(uint16_t tag, const std::vector<uint64_t>& offsets) {
  TiffEntry entry{tag, kTypeLong8, offsets.size(), {}, {}};
  entry.data.resize(offsets.size() * sizeof(uint64_t));
  std::memcpy(entry.data.data(), offsets.data(), entry.data.size());
  return entry;
}

std::optional<TiffHeader> ReadTiffHeader(const ByteSource& source) {
  uint8_t head[16];
  const size_t got = source.ReadAt(0, head);
  if (got < 8) return std::nullopt;
  const bool isLittle = head[0] == 'I' && head[1] == 'I';
  const bool isLargest = head[0] == 'M' && head[1] == 'M';
  if (!isLittle && !isLargest) return std::nullopt;
  TiffHeader header;
  header.isSwapped = isLittle != (std::endian::native == std::endian::little);
  const auto version = NumberAt<uint16_t>(head + 2, header.isSwapped);
  if (version != 42 && version != 43) return std::nullopt;
  header.isBig = version == 43;
  if (header.isBig && got < 16) return std::nullopt;
  header.first = OffsetAt(header.isBig ? head + 8 : head + 4, header);
  return header;
}

TiffPages FindDirectories(const ByteSource& source, const TiffHeader& header, size_t most) {
  TiffPages pages;
  std::unordered_set<uint64_t> seen;
  uint64_t offset = header.first;
  while (offset != 0) {
    if (pages.directories.size() >= most) {
      pages.damage = "it has more than " + std::to_string(most) + " pages";
      return pages;
    }
    if (!seen.insert(offset).second) {
      pages.damage = "its list of pages runs in a circle";
      return pages;
    }
    const std::optional<uint64_t> next = LinkOf(source, header, offset);
    if (!next) {
      pages.damage = "its list of pages breaks off";
      return pages;
    }
    pages.directories.push_back(offset);
    offset = *next;
  }
  return pages;
}

std::vector<TiffEntry> ReadDirectory(const ByteSource& source, const TiffHeader& header,
                                     uint64_t offset, size_t* lost) {
  return DirectoryReader(source, header, lost).Read(offset, 1);
}

DirectoryBytes WriteDirectory(std::vector<TiffEntry> entries, bool isBig, uint64_t base) {
  DirectoryBytes written;
  const Shape shape = ShapeOf(isBig);
  const size_t count = entries.size();
  const size_t start = DirectoryWriter(isBig, base, &written.bytes).Write(std::move(entries));
  written.link = base + start + shape.countBytes + count * shape.entryBytes;
  (void)Extend(&written.bytes, 0);
  return written;
}

std::vector<uint8_t> WriteTiffHeader(bool isBig, uint64_t first) {
  const uint8_t order = std::endian::native == std::endian::little ? 'I' : 'M';
  std::vector<uint8_t> head(isBig ? 16 : 8);
  head[0] = head[1] = order;
  PutNumber<uint16_t>(&head, 2, isBig ? 43 : 42);
  if (isBig) PutNumber<uint16_t>(&head, 4, 8);  // bytes of an offset
  PutOffset(&head, isBig ? 8 : 4, first, isBig);
  return head;
}

}  // namespace vorlane::files
