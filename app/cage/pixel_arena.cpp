#include "app/cage/pixel_arena.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include <sys/mman.h>

namespace vorlane::cage {

PixelArena::PixelArena() : memory_(::memfd_create("pixels", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
  // It never shrinks: reading what we have mapped cannot be made to fail from the other side.
  if (memory_.value() < 0 || ::fcntl(memory_.value(), F_ADD_SEALS, F_SEAL_SHRINK) != 0) {
    throw std::system_error(errno, std::system_category(), "shared memory");
  }
}

PixelArena::~PixelArena() {
  if (data_ != nullptr) (void)::munmap(data_, size_);
}

bool PixelArena::Grow(size_t bytes) {
  if (bytes <= size_) return true;
  return ::ftruncate(memory_.value(), static_cast<off_t>(bytes)) == 0 && Map(bytes);
}

bool PixelArena::Map(size_t bytes) {
  if (bytes <= size_) return true;
  void* mapped = data_ == nullptr ? ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED,
                                           memory_.value(), 0)
                                  : ::mremap(data_, size_, bytes, MREMAP_MAYMOVE);
  if (mapped == MAP_FAILED) return false;
  data_ = static_cast<uint8_t*>(mapped);
  size_ = bytes;
  return true;
}

void PixelArena::Trim() {
  if (size_ <= kKept) return;
  (void)::fallocate(memory_.value(), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE,
                    static_cast<off_t>(kKept), static_cast<off_t>(size_ - kKept));
}

}  // namespace vorlane::cage
