// A decoder's process as ours sees it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include <sys/resource.h>
#include <sys/types.h>

#include "app/cage/channel.h"
#include "app/cage/keeper.h"
#include "app/cage/page_wire.h"
#include "app/cage/pixel_arena.h"
#include "app/files/decoders.h"

namespace vorlane::cage {

// What decoding may take. Beyond, the process is ended, or gets no more memory.
struct CageLimits {
  double seconds = 60;  // of a processor, for whatever size, and for each megapixel
  double secondsAMegapixel = 1;
  double waiting = 1200;              // seconds by the clock beyond these, for a slow disk
  int64_t memory = int64_t{1} << 30;  // bytes of address space, for whatever size ...
  int64_t memoryAPixel = 32;          // ... for each pixel, and for each byte of the file
  int64_t memoryAByte = 4;
};

// There can be no walls here; the text says why.
struct CageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class CageWorker {
 public:
  // Starts a process. Throws CageError when it can't go behind its walls or can't be started.
  CageWorker(Keeper* keeper, const CageLimits& limits);
  CageWorker(const CageWorker&) = delete;
  CageWorker& operator=(const CageWorker&) = delete;
  ~CageWorker();

  // Whether it still waits for questions.
  bool IsAlive() const { return process_ > 0 && !channel_.IsBroken(); }

  // One at a time. They throw DecodeError: the decoder's words, or how its process ended; it is
  // alive no more then.
  files::FileContents Look(const files::ByteSource& source, const files::ReadLimits& limits);
  void Decode(const files::ByteSource& source, const files::PicturePlace& place,
              const files::ReadLimits& limits, files::Page* page);

 private:
  struct Job;

  template <class Action>
  void Guarded(Job* job, const Action& action);

  void Begin();
  void Ask(uint32_t kind, Job* job, const files::PicturePlace& place);
  Message Answer(Job* job);
  Message Receive(Job* job, uint64_t most);
  void Admit(const Message& message, Job* job);
  void MakeRoom(const Message& message, const Job& job);
  void TakePage(const Message& message, Job* job, files::Page* page);
  int64_t MemoryFor(const Job& job) const;
  void LimitMemory(const Job& job) const;
  void Watch(Job* job) const;
  double ProcessorSeconds() const;
  std::string EndingWords();

  Keeper* keeper_;
  CageLimits limits_;
  Channel channel_{Descriptor()};
  PixelArena arena_;
  pid_t process_ = -1;
  rlim_t mostMemory_ = RLIM_INFINITY;  // that the system allows
  uint64_t ownMemory_ = 0;             // of its address space before any question; 0: unknown
};

}  // namespace vorlane::cage
