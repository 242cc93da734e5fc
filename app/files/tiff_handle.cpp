#include "app/files/tiff_handle.h"

#include <cstdarg>
#include <cstdio>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

// A damaged strip can bring thousands.
constexpr size_t kMostMessages = 8;

int Keep(std::vector<std::string>* list, const char* module, const char* format, va_list values) {
  constexpr int kHandled = 1;
  if (list->size() >= kMostMessages) return kHandled;
  char text[512];
  (void)std::vsnprintf(text, sizeof(text), format, values);
  list->push_back(module == nullptr ? text : std::string(module) + ": " + text);
  return kHandled;
}

int KeepError(TIFF* /*tiff*/, void* messages, const char* module, const char* format,
              va_list values) {
  return Keep(&static_cast<TiffMessages*>(messages)->errors, module, format, values);
}

int KeepWarning(TIFF* /*tiff*/, void* messages, const char* module, const char* format,
                va_list values) {
  auto* kept = static_cast<TiffMessages*>(messages);
  return Keep(kept->warningsAreErrors ? &kept->errors : &kept->warnings, module, format, values);
}

}  // namespace

TIFFOpenOptions* MessageOptions(TiffMessages* messages) {
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (options == nullptr) throw std::bad_alloc();
  TIFFOpenOptionsSetErrorHandlerExtR(options, KeepError, messages);
  TIFFOpenOptionsSetWarningHandlerExtR(options, KeepWarning, messages);
  return options;
}

bool HasPredictor(uint16_t compression) {
  return compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE ||
         compression == COMPRESSION_DEFLATE || compression == COMPRESSION_LZMA ||
         compression == COMPRESSION_ZSTD;
}

bool IsFax(uint16_t compression) {
  return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTFAX3 ||
         compression == COMPRESSION_CCITTFAX4 || compression == COMPRESSION_CCITTRLEW;
}

std::string FirstError(const TiffMessages& messages) {
  return messages.errors.empty() ? "the TIFF library gives no reason" : messages.errors[0];
}

TiffHandle::TiffHandle(const ByteSource& source, TiffMessages* messages)
    : position_{source, messages} {
  TIFFOpenOptions* options = MessageOptions(messages);
  // r: read, m: through the calls below and not mapped, h: the header only.
  tiff_ = TIFFClientOpenExt("picture", "rmh", &position_, Read, Write, Seek, Close, Size, nullptr,
                            nullptr, options);
  TIFFOpenOptionsFree(options);
  if (tiff_ == nullptr) throw DecodeError(FirstError(*messages));
}

TiffHandle::~TiffHandle() { TIFFClose(tiff_); }

tmsize_t TiffHandle::Read(thandle_t handle, void* to, tmsize_t count) {
  auto* position = static_cast<Position*>(handle);
  try {
    const size_t got = position->source.ReadAt(
        position->at, {static_cast<uint8_t*>(to), static_cast<size_t>(count)});
    position->at += got;
    return static_cast<tmsize_t>(got);
  } catch (const DecodeError& error) {
    position->messages->errors.emplace_back(error.what());
    return -1;
  }
}

tmsize_t TiffHandle::Write(thandle_t /*handle*/, void* /*from*/, tmsize_t /*count*/) { return -1; }

toff_t TiffHandle::Seek(thandle_t handle, toff_t offset, int whence) {
  auto* position = static_cast<Position*>(handle);
  const uint64_t from = whence == SEEK_CUR   ? position->at
                        : whence == SEEK_END ? position->source.size()
                                             : 0;
  position->at = from + offset;
  return position->at;
}

int TiffHandle::Close(thandle_t /*handle*/) { return 0; }

toff_t TiffHandle::Size(thandle_t handle) { return static_cast<Position*>(handle)->source.size(); }

}  // namespace vorlane::files
