#include "app/files/other_reader.h"

#include <utility>

#include "app/files/image_convert.h"
#include "app/files/page_image.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::files {

bool IsOtherFormat(std::span<const uint8_t> head) {
  int32_t format = IFF_UNKNOWN;
  if (findFileFormatBuffer(head.data(), &format) != 0) return false;
  return format == IFF_GIF || format == IFF_WEBP || format == IFF_JP2;
}

void ReadOther(std::span<const uint8_t> bytes, const ReadLimits& limits, Page* page) {
  int32_t width = 0;
  int32_t height = 0;
  if (pixReadHeaderMem(bytes.data(), bytes.size(), nullptr, &width, &height, nullptr, nullptr,
                       nullptr) == 0) {
    CheckSize(static_cast<uint64_t>(width), static_cast<uint64_t>(height), limits);
  }
  PixPtr pix(pixReadMem(bytes.data(), bytes.size()));
  if (!pix) throw DecodeError("is damaged or of a kind that cannot be read");
  page->metadata.resolution = {static_cast<double>(pixGetXRes(pix.get())),
                               static_cast<double>(pixGetYRes(pix.get()))};
  pix = ToServiceDepth(std::move(pix), &page->notes);
  if (!pix || PixToImage(pix, &page->image) != STATUS_OK) {
    throw DecodeError("there is not enough memory for this page");
  }
  page->coding.format = FileFormat::kPng;
}

}  // namespace vorlane::files
