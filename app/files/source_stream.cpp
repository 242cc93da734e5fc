#include "app/files/source_stream.h"

#include <memory>
#include <new>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

struct Position {
  const ByteSource& source;
  uint64_t at = 0;
};

ssize_t Read(void* cookie, char* to, size_t count) {
  auto* position = static_cast<Position*>(cookie);
  try {
    const size_t got =
        position->source.ReadAt(position->at, {reinterpret_cast<uint8_t*>(to), count});
    position->at += got;
    return static_cast<ssize_t>(got);
  } catch (const DecodeError&) {
    return -1;
  }
}

int Seek(void* cookie, off64_t* offset, int whence) {
  auto* position = static_cast<Position*>(cookie);
  const uint64_t from = whence == SEEK_CUR   ? position->at
                        : whence == SEEK_END ? position->source.size()
                                             : 0;
  int64_t to = 0;
  if (__builtin_add_overflow(static_cast<int64_t>(from), *offset, &to) || to < 0) return -1;
  position->at = static_cast<uint64_t>(to);
  *offset = to;
  return 0;
}

int Close(void* cookie) {
  delete static_cast<Position*>(cookie);
  return 0;
}

}  // namespace

std::FILE* StreamOf(const ByteSource& source) {
  auto position = std::make_unique<Position>(Position{source});
  const cookie_io_functions_t functions = {Read, nullptr, Seek, Close};
  std::FILE* stream = ::fopencookie(position.get(), "rb", functions);
  if (stream == nullptr) throw std::bad_alloc();
  (void)position.release();  // closed with the stream
  return stream;
}

}  // namespace vorlane::files
