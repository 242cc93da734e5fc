#include "app/files/decoders.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "app/files/bmp_reader.h"
#include "app/files/jpeg_reader.h"
#include "app/files/other_reader.h"
#include "app/files/png_chunks.h"
#include "app/files/png_reader.h"
#include "app/files/pnm_reader.h"
#include "app/files/source_stream.h"
#include "app/files/tiff_reader.h"

namespace vorlane::files {
namespace {

constexpr size_t kHeadBytes = 16;
using Head = std::array<uint8_t, kHeadBytes>;

bool IsPnm(const Head& head) {
  const bool isBlank = head[2] == ' ' || head[2] == '#' || (head[2] >= '\t' && head[2] <= '\r');
  return head[0] == 'P' && head[1] >= '1' && head[1] <= '6' && isBlank;
}

bool IsJpeg(const Head& head) { return head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF; }

bool IsPdf(const ByteSource& source) {
  constexpr std::string_view kMark = "%PDF-";
  std::array<uint8_t, 1024> head{};  // readers look for the mark as far
  const size_t got = source.ReadAt(0, head);
  const auto end = head.begin() + static_cast<ptrdiff_t>(got);
  return std::search(head.begin(), end, kMark.begin(), kMark.end()) != end;
}

void CountTiffPages(const ByteSource& source, size_t most, FileContents* contents) {
  contents->tiffHeader = ReadTiffHeader(source).value();
  contents->tiffPages = FindDirectories(source, contents->tiffHeader, most);
  const TiffPages& pages = contents->tiffPages;
  const size_t found = pages.directories.size();
  const bool isDamaged = !pages.damage.empty();
  if (isDamaged && (found == 0 || found >= most)) throw DecodeError(pages.damage);
  if (found == 0) throw DecodeError("holds no pages");
  contents->count = static_cast<int32_t>(found + (isDamaged ? 1 : 0));
}

}  // namespace

FileKind KindOf(const ByteSource& source) {
  Head head{};
  (void)source.ReadAt(0, head);
  if (ReadTiffHeader(source)) return FileKind::kTiff;
  if (std::equal(kPngSignature.begin(), kPngSignature.end(), head.begin())) return FileKind::kPng;
  if (IsJpeg(head)) return FileKind::kJpeg;
  if (head[0] == 'B' && head[1] == 'M') return FileKind::kBmp;
  if (IsPnm(head)) return FileKind::kPnm;
  if (IsPdf(source)) return FileKind::kPdf;
  if (IsOtherFormat(head)) return FileKind::kOther;
  throw DecodeError("is no image file (TIFF, PNG, JPEG, BMP, PNM or PDF), or is damaged");
}

FileContents OwnDecoders::Look(const ByteSource& source, const ReadLimits& limits) const {
  FileContents contents;
  contents.kind = KindOf(source);
  const auto most = static_cast<size_t>(limits.mostPages);
  if (contents.kind == FileKind::kTiff) CountTiffPages(source, most, &contents);
  if (contents.kind == FileKind::kPdf) {
    contents.pdfPages = LookAtPdf(StreamOf(source), most);
    contents.count = static_cast<int32_t>(contents.pdfPages.size());
  }
  return contents;
}

void OwnDecoders::Decode(const ByteSource& source, const PicturePlace& place,
                         const ReadLimits& limits, Page* page) const {
  switch (place.kind) {
    case FileKind::kTiff:
      ReadTiffPage(source, place.tiffHeader, place.tiffDirectory, limits, page);
      break;
    case FileKind::kPng:
      ReadPng(ReadAll(source), limits, page);
      break;
    case FileKind::kJpeg:
      ReadJpeg(ReadAll(source), limits, page);
      break;
    case FileKind::kJpegData:
      ReadJpegPicture(ReadAll(source), limits, page);
      break;
    case FileKind::kBmp:
      ReadBmp(ReadAll(source), limits, page);
      break;
    case FileKind::kPnm:
      ReadPnm(ReadAll(source), limits, page);
      break;
    default:
      ReadOther(ReadAll(source), limits, page);
  }
}

const Decoders& DecodersOf(const ReadLimits& limits) {
  static const OwnDecoders kOwn;
  return limits.decoders != nullptr ? *limits.decoders : kOwn;
}

}  // namespace vorlane::files
