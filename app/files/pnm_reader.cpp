#include "app/files/pnm_reader.h"

#include <algorithm>
#include <cstring>

#include "app/files/page_image.h"
#include "app/files/row_converter.h"

namespace vorlane::files {
namespace {

bool IsBlank(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(uint8_t c) { return c >= '0' && c <= '9'; }

// The words of the header, and of plain files also the samples.
class PnmText {
 public:
  explicit PnmText(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  uint32_t Number() {
    SkipBlanks();
    uint64_t value = 0;
    const size_t start = at_;
    for (; at_ < bytes_.size() && IsDigit(bytes_[at_]) && value < UINT32_MAX; ++at_) {
      value = 10 * value + (bytes_[at_] - '0');
    }
    if (at_ == start || value > UINT32_MAX) throw DecodeError("a number is missing or damaged");
    return static_cast<uint32_t>(value);
  }

  // Bits of plain files need no blanks between them.
  uint32_t Bit() {
    SkipBlanks();
    if (at_ >= bytes_.size() || (bytes_[at_] != '0' && bytes_[at_] != '1')) {
      throw DecodeError("a pixel is missing or damaged");
    }
    return static_cast<uint32_t>(bytes_[at_++] - '0');
  }

  // What follows the one blank behind the header.
  std::span<const uint8_t> Rest() const { return bytes_.subspan(std::min(at_ + 1, bytes_.size())); }

 private:
  void SkipBlanks() {
    while (at_ < bytes_.size() && (IsBlank(bytes_[at_]) || bytes_[at_] == '#')) {
      if (bytes_[at_] == '#') {
        while (at_ < bytes_.size() && bytes_[at_] != '\n') ++at_;
      } else {
        ++at_;
      }
    }
  }

  std::span<const uint8_t> bytes_;
  size_t at_ = 2;
};

struct PnmHeader {
  char kind = 0;  // '1' to '6'
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t most = 1;  // the largest sample

  bool IsPlain() const { return kind <= '3'; }
  bool IsBits() const { return kind == '1' || kind == '4'; }
  uint32_t Channels() const { return kind == '3' || kind == '6' ? 3 : 1; }
  size_t SampleBytes() const { return most > 255 ? 2 : 1; }
  size_t RowSamples() const { return size_t{width} * Channels(); }
  size_t RowBytes() const {
    return IsBits() ? (size_t{width} + 7) / 8 : RowSamples() * SampleBytes();
  }
};

// Rows of bits, or of samples of 8 or 16 bits whose largest value is 255 or 65535.
class PnmRows {
 public:
  PnmRows(const PnmHeader& header, PnmText* text) : header_(header), text_(*text) {
    if (header.IsPlain()) return;
    rest_ = text->Rest();
    if (rest_.size() / header.RowBytes() < header.height) throw DecodeError("it was cut short");
  }

  void Read(uint32_t y, Bytes* row) {
    row->assign(header_.RowBytes(), 0);
    if (header_.IsBits()) {
      ReadBits(y, row);
      return;
    }
    if (!header_.IsPlain() && header_.most == 255) {
      std::memcpy(row->data(), rest_.data() + y * row->size(), row->size());
      return;
    }
    for (size_t i = 0; i < header_.RowSamples(); ++i) {
      const uint32_t value = SampleAt(y, i);
      if (value > header_.most) throw DecodeError("a sample is larger than the largest");
      if (header_.SampleBytes() == 1) {
        (*row)[i] = static_cast<uint8_t>((value * 255 + header_.most / 2) / header_.most);
      } else {
        const auto scaled =
            static_cast<uint16_t>((value * uint64_t{65535} + header_.most / 2) / header_.most);
        std::memcpy(row->data() + 2 * i, &scaled, sizeof(scaled));
      }
    }
  }

 private:
  void ReadBits(uint32_t y, Bytes* row) {
    if (!header_.IsPlain()) {
      std::memcpy(row->data(), rest_.data() + y * row->size(), row->size());
      return;
    }
    for (uint32_t x = 0; x < header_.width; ++x) {
      (*row)[x / 8] |= static_cast<uint8_t>(text_.Bit() << (7 - x % 8));
    }
  }

  uint32_t SampleAt(uint32_t y, size_t index) {
    if (header_.IsPlain()) return text_.Number();
    const uint8_t* at = rest_.data() + y * header_.RowBytes() + index * header_.SampleBytes();
    return header_.SampleBytes() == 1 ? at[0] : static_cast<uint32_t>(at[0]) << 8 | at[1];
  }

  const PnmHeader& header_;
  PnmText& text_;
  std::span<const uint8_t> rest_;
};

PnmHeader HeaderOf(std::span<const uint8_t> bytes, PnmText* text) {
  PnmHeader header;
  header.kind = static_cast<char>(bytes[1]);
  header.width = text->Number();
  header.height = text->Number();
  if (!header.IsBits()) header.most = text->Number();
  if (header.most == 0 || header.most > 65535)
    throw DecodeError("its largest sample makes no sense");
  return header;
}

// Every pixel of a plain file takes a byte at least.
void RefuseTooShort(const PnmHeader& header, size_t bytes) {
  if (header.IsPlain() && bytes / header.height < header.RowSamples()) {
    throw DecodeError("it was cut short");
  }
}

}  // namespace

void ReadPnm(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page) {
  if (bytes.size() < 3 || bytes[0] != 'P' || bytes[1] < '1' || bytes[1] > '6') {
    throw DecodeError("it does not begin as a PNM file does");
  }
  PnmText text(bytes);
  const PnmHeader header = HeaderOf(bytes, &text);
  CheckSize(header.width, header.height, limits);
  RefuseTooShort(header, bytes.size());
  PnmRows rows(header, &text);
  SampleLayout layout;
  layout.channels = static_cast<int32_t>(header.Channels());
  layout.bits = header.IsBits() ? 1 : static_cast<int32_t>(8 * header.SampleBytes());
  layout.model = header.IsBits()          ? ColourModel::kInvertedGrey
                 : header.Channels() == 3 ? ColourModel::kRgb
                                          : ColourModel::kGrey;
  RowConverter converter(layout, static_cast<int32_t>(header.width));
  MakeImage(static_cast<int32_t>(header.width), static_cast<int32_t>(header.height),
            converter.depth(), page);
  Bytes row;
  for (uint32_t y = 0; y < header.height; ++y) {
    rows.Read(y, &row);
    converter.Convert(row.data(), page->image.rec()->rows[y]);
  }
  if (!converter.Note().empty()) page->notes.push_back(converter.Note());
  page->coding.format = FileFormat::kPnm;
}

}  // namespace vorlane::files
