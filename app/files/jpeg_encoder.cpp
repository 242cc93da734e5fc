#include "app/files/jpeg_encoder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "app/files/exif.h"
#include "app/files/icc.h"
#include "app/files/jpeg_codec.h"

namespace vorlane::files {
namespace {

using namespace std::string_view_literals;

constexpr size_t kLongestSegment = 65533;
constexpr double kCentimetresPerInch = 2.54;

// From this quality on, colours are stored as finely as greys where nothing else is said.
constexpr int32_t kFineColours = 90;

// Every call of the library stands in a function that holds no object with a destructor: an error
// jumps out of it.
class JpegEncoder {
 public:
  JpegEncoder() {
    info_.err = &errors_.manager;
    if (setjmp(errors_.jump) != 0) {
      jpeg_destroy_compress(&info_);
      Fail();
    }
    jpeg_create_compress(&info_);
    jpeg_mem_dest(&info_, &bytes_, &size_);
  }
  JpegEncoder(const JpegEncoder&) = delete;
  JpegEncoder& operator=(const JpegEncoder&) = delete;
  ~JpegEncoder() {
    jpeg_destroy_compress(&info_);
    std::free(bytes_);
  }

  void SetPicture(const ImageRec& image) {
    if (setjmp(errors_.jump) != 0) Fail();
    const bool isColour = image.bitsPerPixel == 24;
    info_.image_width = static_cast<JDIMENSION>(image.width);
    info_.image_height = static_cast<JDIMENSION>(image.height);
    info_.input_components = isColour ? 3 : 1;
    info_.in_color_space = isColour ? JCS_EXT_BGR : JCS_GRAYSCALE;
    jpeg_set_defaults(&info_);
  }

  void SetQuality(int32_t quality) {
    if (setjmp(errors_.jump) != 0) Fail();
    jpeg_set_quality(&info_, quality, TRUE);
  }

  void SetTables(const std::vector<JpegTable>& tables) {
    if (setjmp(errors_.jump) != 0) Fail();
    constexpr int kUnscaled = 100;
    for (size_t i = 0; i < std::min<size_t>(tables.size(), 2); ++i) {
      unsigned values[64];
      std::copy(tables[i].begin(), tables[i].end(), values);
      jpeg_add_quant_table(&info_, static_cast<int>(i), values, kUnscaled, FALSE);
    }
    // One table serves all where the page had one.
    for (int c = 1; c < info_.num_components && tables.size() == 1; ++c) {
      info_.comp_info[c].quant_tbl_no = 0;
    }
  }

  void SetShape(int32_t horizontal, int32_t vertical, bool isProgressive) {
    if (setjmp(errors_.jump) != 0) Fail();
    if (info_.num_components == 3) {
      info_.comp_info[0].h_samp_factor = horizontal;
      info_.comp_info[0].v_samp_factor = vertical;
    }
    if (isProgressive) jpeg_simple_progression(&info_);
  }

  void SetDensity(uint8_t unit, uint16_t x, uint16_t y) {
    info_.density_unit = unit;
    info_.X_density = x;
    info_.Y_density = y;
  }

  void Start() {
    if (setjmp(errors_.jump) != 0) Fail();
    jpeg_start_compress(&info_, TRUE);
  }

  void PutSegment(uint8_t marker, std::span<const uint8_t> data) {
    if (setjmp(errors_.jump) != 0) Fail();
    jpeg_write_marker(&info_, marker, data.data(), static_cast<unsigned>(data.size()));
  }

  void PutProfile(std::span<const uint8_t> icc) {
    if (setjmp(errors_.jump) != 0) Fail();
    jpeg_write_icc_profile(&info_, icc.data(), static_cast<unsigned>(icc.size()));
  }

  void PutRow(const uint8_t* row) {
    if (setjmp(errors_.jump) != 0) Fail();
    JSAMPROW rows[1] = {const_cast<uint8_t*>(row)};
    (void)jpeg_write_scanlines(&info_, rows, 1);
  }

  void Finish() {
    if (setjmp(errors_.jump) != 0) Fail();
    jpeg_finish_compress(&info_);
  }

  std::span<const uint8_t> bytes() const { return {bytes_, size_}; }

 private:
  [[noreturn]] void Fail() { throw EncodeError(errors_.error); }

  JpegErrors errors_;
  jpeg_compress_struct info_{};
  unsigned char* bytes_ = nullptr;
  unsigned long size_ = 0;
};

void SetCoding(const EncodeJob& job, JpegEncoder* encoder) {
  const JpegCoding& own = job.source.coding.jpeg;
  const bool isAsked = job.options.jpegQuality > 0;
  const int32_t usual = own.quality > 0 ? own.quality : kUsualJpegQuality;
  const int32_t quality = isAsked ? job.options.jpegQuality : usual;
  encoder->SetQuality(quality);
  if (!isAsked && !own.tables.empty()) encoder->SetTables(own.tables);
  if (!own.tables.empty()) {
    // Other ratios than these are not written by anyone.
    const bool isUsual = own.horizontal <= 4 && own.vertical <= 4;
    encoder->SetShape(isUsual ? own.horizontal : 1, isUsual ? own.vertical : 1, own.isProgressive);
  } else {
    const int32_t colours = quality >= kFineColours ? 1 : 2;
    encoder->SetShape(colours, colours, false);
  }
}

// The format holds whole numbers only.
void SetDensity(const EncodeJob& job, JpegEncoder* encoder) {
  constexpr uint8_t kInch = 1;
  constexpr uint8_t kCentimetre = 2;
  const Resolution& resolution = job.source.metadata.resolution;
  if (resolution.x <= 0 || resolution.y <= 0) return;
  const double factor = resolution.isMetric ? 1 / kCentimetresPerInch : 1;
  const auto whole = [factor](double dpi) {
    return static_cast<uint16_t>(std::clamp(std::round(dpi * factor), 1.0, 65535.0));
  };
  encoder->SetDensity(resolution.isMetric ? kCentimetre : kInch, whole(resolution.x),
                      whole(resolution.y));
  if (std::abs(whole(resolution.x) - resolution.x * factor) > 0.01) {
    job.notes->emplace_back("resolution rounded to whole dots");
  }
}

Bytes Named(std::string_view name, std::span<const uint8_t> data) {
  Bytes named(name.begin(), name.end());
  named.insert(named.end(), data.begin(), data.end());
  return named;
}

// A Photoshop segment with nothing but the IPTC block: "8BIM", its number, an empty name, its
// length.
Bytes IptcSegment(const Bytes& iptc) {
  Bytes data = Named("Photoshop 3.0\0008BIM\x04\x04\0\0"sv, {});
  for (const int shift : {24, 16, 8, 0}) data.push_back(static_cast<uint8_t>(iptc.size() >> shift));
  data.insert(data.end(), iptc.begin(), iptc.end());
  if (iptc.size() % 2 != 0) data.push_back(0);
  return data;
}

class SegmentWriter {
 public:
  SegmentWriter(const EncodeJob& job, JpegEncoder* encoder) : job_(job), encoder_(*encoder) {}

  void PutAll() {
    const Metadata& metadata = job_.source.metadata;
    Bytes exif = metadata.exif;
    if (!exif.empty()) {
      ResetExif(job_.image.width, job_.image.height, &exif);
      Put(JPEG_APP0 + 1, Named("Exif\0\0"sv, exif), "EXIF");
    }
    if (job_.source.coding.format == FileFormat::kJpeg) {
      for (const JpegSegment& segment : metadata.jpegSegments) {
        Put(segment.marker, segment.data, "a segment");
      }
    } else {
      PutCommon(metadata);
    }
    PutProfile(metadata.icc);
  }

 private:
  void PutCommon(const Metadata& metadata) {
    if (!metadata.xmp.empty()) {
      Put(JPEG_APP0 + 1, Named("http://ns.adobe.com/xap/1.0/\0"sv, metadata.xmp), "XMP");
    }
    if (!metadata.iptc.empty()) Put(JPEG_APP0 + 13, IptcSegment(metadata.iptc), "IPTC");
    for (const TextEntry& text : metadata.texts) {
      const std::string line =
          text.keyword == "Comment" ? text.text : text.keyword + ": " + text.text;
      Put(JPEG_COM, Named(line, {}), "text");
    }
  }

  void Put(int marker, std::span<const uint8_t> data, const char* name) {
    if (data.size() > kLongestSegment) {
      job_.notes->push_back(std::string(name) + " dropped, which is too long for JPEG");
    } else {
      encoder_.PutSegment(static_cast<uint8_t>(marker), data);
    }
  }

  void PutProfile(const Bytes& icc) {
    if (icc.empty()) return;
    if (IccFits(icc, job_.image.bitsPerPixel)) {
      encoder_.PutProfile(icc);
    } else {
      job_.notes->emplace_back("the colour profile, which is for other colours, dropped");
    }
  }

  const EncodeJob& job_;
  JpegEncoder& encoder_;
};

void PutRows(const ImageRec& image, JpegEncoder* encoder) {
  if (image.bitsPerPixel != 1) {
    for (int32_t y = 0; y < image.height; ++y) encoder->PutRow(image.rows[y]);
    return;
  }
  Bytes row(static_cast<size_t>(image.width));
  for (int32_t y = 0; y < image.height; ++y) {
    for (size_t x = 0; x < row.size(); ++x) {
      row[x] = (image.rows[y][x / 8] & (0x80 >> (x % 8))) != 0 ? 255 : 0;
    }
    encoder->PutRow(row.data());
  }
}

}  // namespace

EncodedPage EncodeJpeg(const EncodeJob& job) {
  JpegEncoder encoder;
  encoder.SetPicture(job.image);
  SetCoding(job, &encoder);
  SetDensity(job, &encoder);
  encoder.Start();
  SegmentWriter(job, &encoder).PutAll();
  PutRows(job.image, &encoder);
  encoder.Finish();
  if (job.image.bitsPerPixel == 1) job.notes->emplace_back("1-bit page stored as 8-bit grey");
  EncodedPage page;
  page.bytes.assign(encoder.bytes().begin(), encoder.bytes().end());
  return page;
}

}  // namespace vorlane::files
