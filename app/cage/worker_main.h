// What a decoder's process does: it goes behind its walls, then decodes what it is asked to.
#pragma once

#include <cstdint>

#include "app/cage/channel.h"
#include "app/files/decoders.h"

namespace vorlane::cage {

// Messages between a decoder's process and ours. The first one brings it the shared memory.
enum MessageKind : uint32_t {
  kBegin = 1,       // to it, with the shared memory
  kReady,           // from it: the bytes of address space that it has, a uint64
  kRefused,         // from it: why there can be no walls, in words
  kLook,            // to it, with the file: a Question
  kDecode,          // to it, with the file: a Question
  kGate,            // from it: the width and height of what it is about to decode, two uint64
  kRoom,            // from it: a uint64, bytes that it needs in the shared memory
  kYes,             // to it
  kNo,              // to it: there is no such room
  kContents,        // from it
  kPage,            // from it; the pixels are in the shared memory
  kPageWithPixels,  // from it; the pixels follow as a message of their own
  kPixels,          // from it
  kDamage,          // from it: what is wrong with the file, in words
  kNoMemory,        // from it
};

// Returns when the other side hangs up.
void DecodeWhatIsAsked(Descriptor end, const files::Decoders& decoders);

}  // namespace vorlane::cage
