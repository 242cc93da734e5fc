// Memory for the pixels of one page at a time that a decoder's process shares with ours.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/cage/channel.h"

namespace vorlane::cage {

// It stays mapped from page to page: fresh shared memory costs several times what copying out of it
// does, since it comes in small pages.
class PixelArena {
 public:
  // New and empty. Throws std::system_error.
  PixelArena();
  // The other side's, made there.
  explicit PixelArena(Descriptor memory) : memory_(std::move(memory)) {}
  PixelArena(const PixelArena&) = delete;
  PixelArena& operator=(const PixelArena&) = delete;
  ~PixelArena();

  int handle() const { return memory_.value(); }
  size_t size() const { return size_; }
  uint8_t* data() { return data_; }
  const uint8_t* data() const { return data_; }

  // Makes it at least this long on both sides. False when the system has no memory, or none of that
  // size for a file; the other side then sends pixels as a message.
  bool Grow(size_t bytes);

  // Maps it as far as the side that made it has grown it. False when there is no memory.
  bool Map(size_t bytes);

  // Gives back what is more than kKept; what it holds there is lost.
  void Trim();

  // A page of A4 in colour at 300 dots per inch has 26 MB.
  static constexpr size_t kKept = size_t{32} << 20;

 private:
  Descriptor memory_;
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace vorlane::cage
