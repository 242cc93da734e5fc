#include "app/files/jpeg_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "app/files/exif.h"
#include "app/files/jpeg_codec.h"
#include "app/files/jpeg_frame.h"
#include "app/files/jpeg_tables.h"
#include "app/files/page_image.h"
#include "app/files/row_converter.h"

namespace vorlane::files {
namespace {

using namespace std::string_view_literals;

constexpr uint8_t kApp0 = JPEG_APP0;
constexpr unsigned kLongest = 0xFFFF;

constexpr std::string_view kExifName = "Exif\0\0"sv;
constexpr std::string_view kXmpName = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kPhotoshopName = "Photoshop 3.0\0"sv;

// Every call of the library stands in a function of its own that holds no object with a
// destructor: an error jumps out of it.
class JpegDecoder {
 public:
  explicit JpegDecoder(std::span<const uint8_t> bytes) {
    info_.err = &errors_.manager;
    if (setjmp(errors_.jump) != 0) {
      jpeg_destroy_decompress(&info_);
      Fail();
    }
    jpeg_create_decompress(&info_);
    jpeg_mem_src(&info_, bytes.data(), static_cast<unsigned long>(bytes.size()));
    for (int i = 1; i < 16; ++i) jpeg_save_markers(&info_, kApp0 + i, kLongest);
    jpeg_save_markers(&info_, JPEG_COM, kLongest);
  }
  JpegDecoder(const JpegDecoder&) = delete;
  JpegDecoder& operator=(const JpegDecoder&) = delete;
  ~JpegDecoder() { jpeg_destroy_decompress(&info_); }

  void ReadHeader() {
    if (setjmp(errors_.jump) != 0) Fail();
    (void)jpeg_read_header(&info_, TRUE);
    // Until here they are about segments that are not looked at.
    errors_.warnings = 0;
  }

  void Start(J_COLOR_SPACE colours) {
    if (setjmp(errors_.jump) != 0) Fail();
    info_.out_color_space = colours;
    (void)jpeg_start_decompress(&info_);
    if (errors_.warnings > 0) FailByWarning();  // a progressive file is read whole here
  }

  void ReadRow(uint8_t* row) {
    if (setjmp(errors_.jump) != 0) Fail();
    JSAMPROW rows[1] = {row};
    (void)jpeg_read_scanlines(&info_, rows, 1);
    if (errors_.warnings > 0) FailByWarning();
  }

  void ExpectEndAt(int32_t rowOfBlocks) { errors_.endsAtRow = static_cast<unsigned>(rowOfBlocks); }

  void Finish() {
    if (setjmp(errors_.jump) != 0) Fail();
    (void)jpeg_finish_decompress(&info_);
    if (errors_.warnings > 0) FailByWarning();
  }

  const jpeg_decompress_struct& info() const { return info_; }

 private:
  [[noreturn]] void Fail() { throw DecodeError(errors_.error); }
  [[noreturn]] void FailByWarning() { throw DecodeError(errors_.warning); }

  JpegErrors errors_;
  jpeg_decompress_struct info_{};
};

std::span<const uint8_t> DataOf(const jpeg_marker_struct& segment) {
  return {segment.data, segment.data_length};
}

bool BeginsWith(std::span<const uint8_t> data, std::string_view name) {
  return data.size() >= name.size() && std::memcmp(data.data(), name.data(), name.size()) == 0;
}

Bytes Behind(std::span<const uint8_t> data, std::string_view name) {
  const auto rest = data.subspan(name.size());
  return {rest.begin(), rest.end()};
}

// The IPTC block among the resources of a Photoshop segment: each is "8BIM", a number, a name and
// data, both brought to an even length.
Bytes IptcOf(std::span<const uint8_t> data) {
  constexpr uint32_t kIptcResource = 0x0404;
  size_t at = kPhotoshopName.size();
  while (at + 12 <= data.size() && BeginsWith(data.subspan(at), "8BIM"sv)) {
    const uint32_t number = static_cast<uint32_t>(data[at + 4]) << 8 | data[at + 5];
    at += 6 + (data[at + 6] + 2U) / 2 * 2;
    if (at + 4 > data.size()) break;
    const size_t length = static_cast<size_t>(data[at]) << 24 |
                          static_cast<size_t>(data[at + 1]) << 16 |
                          static_cast<size_t>(data[at + 2]) << 8 | data[at + 3];
    at += 4;
    if (length > data.size() - at) break;
    if (number == kIptcResource) {
      const auto found = data.subspan(at, length);
      return {found.begin(), found.end()};
    }
    at += (length + 1) / 2 * 2;
  }
  return {};
}

void AddComment(std::span<const uint8_t> data, Metadata* metadata) {
  metadata->texts.push_back({"Comment", std::string(data.begin(), data.end())});
}

// The segments that the JPEG library itself writes are told apart from those handed on.
void TakeSegment(const jpeg_marker_struct& segment, Metadata* metadata) {
  constexpr uint8_t kAdobe = kApp0 + 14;
  constexpr uint8_t kFlashPix = kApp0 + 2;  // ICC profiles besides, and previews of other sizes
  const std::span<const uint8_t> data = DataOf(segment);
  if (BeginsWith(data, kExifName) && segment.marker == kApp0 + 1) {
    metadata->exif = Behind(data, kExifName);
    return;
  }
  if (segment.marker == kAdobe || segment.marker == kFlashPix) return;
  if (segment.marker == kApp0 + 1 && BeginsWith(data, kXmpName)) {
    metadata->xmp = Behind(data, kXmpName);
  }
  if (segment.marker == kApp0 + 13 && BeginsWith(data, kPhotoshopName)) {
    metadata->iptc = IptcOf(data);
  }
  if (segment.marker == JPEG_COM) AddComment(data, metadata);
  metadata->jpegSegments.push_back({segment.marker, {data.begin(), data.end()}});
}

Bytes IccOf(const JpegDecoder& decoder) {
  JOCTET* profile = nullptr;
  unsigned length = 0;
  // Reads what is saved and calls for nothing that can fail by a jump.
  if (jpeg_read_icc_profile(const_cast<jpeg_decompress_struct*>(&decoder.info()), &profile,
                            &length) == FALSE) {
    return {};
  }
  Bytes icc(profile, profile + length);
  std::free(profile);
  return icc;
}

Resolution DensityOf(const jpeg_decompress_struct& info) {
  constexpr double kCentimetresPerInch = 2.54;
  const double factor = info.density_unit == 2 ? kCentimetresPerInch : 1;
  if (info.saw_JFIF_marker == FALSE || info.density_unit == 0) return {};
  return {info.X_density * factor, info.Y_density * factor, info.density_unit == 2};
}

uint32_t TakeMetadata(const JpegDecoder& decoder, Metadata* metadata) {
  for (const jpeg_marker_struct* at = decoder.info().marker_list; at != nullptr; at = at->next) {
    TakeSegment(*at, metadata);
  }
  metadata->icc = IccOf(decoder);
  const ExifFacts facts = ReadExifFacts(metadata->exif);
  metadata->resolution = DensityOf(decoder.info());
  if (metadata->resolution.x <= 0) metadata->resolution = facts.resolution;
  return facts.orientation;
}

void FillCoding(const jpeg_decompress_struct& info, PageCoding* coding) {
  coding->format = FileFormat::kJpeg;
  coding->jpeg.isProgressive = info.progressive_mode != FALSE;
  if (info.num_components >= 3) {
    coding->jpeg.horizontal =
        info.comp_info[0].h_samp_factor / std::max(1, info.comp_info[1].h_samp_factor);
    coding->jpeg.vertical =
        info.comp_info[0].v_samp_factor / std::max(1, info.comp_info[1].v_samp_factor);
  }
}

// Colours in the order of page images; inks as they are, which Adobe's writers store inverted.
SampleLayout LayoutOf(const jpeg_decompress_struct& info, J_COLOR_SPACE* colours) {
  SampleLayout layout;
  layout.channels = info.num_components;
  if (info.num_components == 1) {
    *colours = JCS_GRAYSCALE;
    return layout;
  }
  layout.model = info.num_components == 4 ? ColourModel::kCmyk : ColourModel::kBgr;
  *colours = info.num_components == 4 ? JCS_CMYK : JCS_EXT_BGR;
  if (info.num_components == 2 || info.num_components > 4) {
    throw DecodeError(std::to_string(info.num_components) + " colour channels are not served");
  }
  return layout;
}

// The data has no checksum, and a changed code mostly moves all blocks that follow. Such a picture
// has blocks left behind its last one: the decoder is told of one row of blocks more, of which a
// whole picture must have nothing.
class RowBehind {
 public:
  // Changes the height in `bytes` where that can be done.
  explicit RowBehind(Bytes* bytes) : frame_(FindFrame(*bytes)) {
    if (!frame_ || !frame_->isSequential || frame_->blockHeight == 0) return;
    // A single channel is stored block by block, whatever its sampling says.
    const bool isPlainGrey = frame_->channels == 1 && frame_->blockHeight == DCTSIZE;
    if (!isPlainGrey && frame_->channels != 3) return;
    uint8_t* at = bytes->data() + frame_->heightAt;
    height_ = at[0] << 8 | at[1];
    rows_ = (height_ + frame_->blockHeight - 1) / frame_->blockHeight;
    const int32_t taller = (rows_ + 1) * frame_->blockHeight;
    if (height_ == 0 || taller > JPEG_MAX_DIMENSION) return;
    at[0] = static_cast<uint8_t>(taller >> 8);
    at[1] = static_cast<uint8_t>(taller);
    extra_ = taller - height_;
  }

  // The height without it.
  int32_t HeightOf(const jpeg_decompress_struct& info) const {
    return static_cast<int32_t>(info.image_height) - extra_;
  }

  void Announce(JpegDecoder* decoder) const {
    if (extra_ > 0) decoder->ExpectEndAt(rows_);
  }

  // Reads the extra rows, of which the last one is looked at: blocks that are missing come out at
  // middle grey, but for the first ones, which stand beside what the data ended in.
  void Check(JpegDecoder* decoder, size_t width) const {
    if (extra_ == 0) return;
    const auto channels = static_cast<size_t>(frame_->channels);
    Bytes row(width * channels);
    for (int32_t y = 0; y < extra_; ++y) decoder->ReadRow(row.data());
    constexpr uint8_t kMissing = 128;
    const size_t from = 3 * static_cast<size_t>(frame_->blockWidth) * channels;
    for (size_t i = from; i < row.size(); ++i) {
      if (row[i] != kMissing) {
        throw DecodeError("is damaged: its data does not end where its rows do");
      }
    }
  }

 private:
  std::optional<JpegFrame> frame_;
  int32_t height_ = 0;
  int32_t rows_ = 0;   // of blocks
  int32_t extra_ = 0;  // rows of pixels that were added
};

void DecodeRows(JpegDecoder* decoder, const SampleLayout& layout, int32_t height, Page* page) {
  const auto width = static_cast<int32_t>(decoder->info().image_width);
  RowConverter converter(layout, width);
  MakeImage(width, height, converter.depth(), page);
  const bool isInverted =
      layout.model == ColourModel::kCmyk && decoder->info().saw_Adobe_marker != FALSE;
  Bytes row(converter.IsInPlace() ? 0 : RowBytesOf(layout, width));
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* to = page->image.rec()->rows[y];
    if (converter.IsInPlace()) {
      decoder->ReadRow(to);
      continue;
    }
    decoder->ReadRow(row.data());
    if (isInverted) {
      for (uint8_t& sample : row) sample = static_cast<uint8_t>(~sample);
    }
    converter.Convert(row.data(), to);
  }
  if (!converter.Note().empty()) page->notes.push_back(converter.Note());
}

// Returns the orientation that the metadata ask for.
uint32_t Decode(Bytes bytes, const ReadLimits& limits, Page* page) {
  page->coding.jpeg = JpegCodingOf(bytes);
  const RowBehind behind(&bytes);
  JpegDecoder decoder(bytes);
  decoder.ReadHeader();
  behind.Announce(&decoder);
  const int32_t height = behind.HeightOf(decoder.info());
  CheckSize(decoder.info().image_width, static_cast<uint64_t>(height), limits);
  const uint32_t orientation = TakeMetadata(decoder, &page->metadata);
  FillCoding(decoder.info(), &page->coding);
  J_COLOR_SPACE colours = JCS_UNKNOWN;
  const SampleLayout layout = LayoutOf(decoder.info(), &colours);
  decoder.Start(colours);
  DecodeRows(&decoder, layout, height, page);
  behind.Check(&decoder, decoder.info().image_width);
  decoder.Finish();
  return orientation;
}

}  // namespace

void ReadJpeg(Bytes bytes, const ReadLimits& limits, Page* page) {
  ApplyOrientation(Decode(std::move(bytes), limits, page), page);
}

void ReadJpegPicture(Bytes bytes, const ReadLimits& limits, Page* page) {
  (void)Decode(std::move(bytes), limits, page);
  page->metadata = {};
}

}  // namespace vorlane::files
