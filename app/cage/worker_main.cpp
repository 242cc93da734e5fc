#include "app/cage/worker_main.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>

#include <sys/resource.h>

#include "app/cage/page_wire.h"
#include "app/cage/pixel_arena.h"
#include "app/walls/call_filter.h"

namespace vorlane::cage {
namespace {

constexpr uint64_t kMostAsked = 4096;  // bytes of a question

template <class... Number>
Bytes NumbersOf(Number... numbers) {
  const std::array<uint64_t, sizeof...(numbers)> all = {static_cast<uint64_t>(numbers)...};
  Bytes bytes(sizeof(all));
  std::memcpy(bytes.data(), all.data(), sizeof(all));
  return bytes;
}

std::span<const uint8_t> BytesOfText(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// 0 where the system does not say.
uint64_t AddressSpace() {
  std::ifstream file("/proc/self/statm");
  uint64_t pages = 0;
  file >> pages;
  return pages * static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
}

void Limit(__rlimit_resource resource, rlim_t most) {
  const rlimit limit{most, most};
  (void)::setrlimit(resource, &limit);
}

class Worker {
 public:
  Worker(Descriptor end, const files::Decoders& decoders)
      : channel_(std::move(end)), decoders_(decoders) {}

  void Begin() {
    Message begin = channel_.Receive(kMostAsked, true);
    arena_ = std::make_unique<PixelArena>(std::move(begin.file));
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, 0);
    Limit(RLIMIT_NOFILE, 32);
    const uint64_t size = AddressSpace();
    const int error = walls::CallFilter::ForDecoders().Apply();
    if (error != 0) {
      throw std::runtime_error(std::string("no call filter (seccomp): ") + std::strerror(error));
    }
    channel_.Send(kReady, NumbersOf(size));
  }

  void Refuse(const char* words) { channel_.Send(kRefused, BytesOfText(words)); }

  void AnswerOne() {
    Message asked = channel_.Receive(kMostAsked, true);
    try {
      Answer(std::move(asked));
    } catch (const ChannelError&) {
      throw;
    } catch (const std::bad_alloc&) {
      channel_.Send(kNoMemory, {});
    } catch (const std::exception& error) {
      channel_.Send(kDamage, BytesOfText(error.what()));
    }
  }

 private:
  void Answer(Message asked) {
    const Question question = QuestionOf(asked.bytes);
    const files::FileSource source(asked.file.Take(), question.size);
    files::ReadLimits limits;
    limits.mostPixels = question.mostPixels;
    limits.mostPages = question.mostPages;
    if (asked.kind == kLook) {
      channel_.Send(kContents, BytesOf(decoders_.Look(source, limits)));
      return;
    }
    uint64_t admitted = 0;
    limits.gate = [&](uint64_t width, uint64_t height) {
      if (width * height <= admitted) return;
      (void)Ask(kGate, NumbersOf(width, height));
      admitted = width * height;
    };
    files::Page page;
    page.image.MakeIn([this](size_t bytes) { return HasRoom(bytes) ? arena_->data() : nullptr; });
    decoders_.Decode(source, question.place, limits, &page);
    SendPage(page);
  }

  uint32_t Ask(uint32_t kind, const Bytes& bytes) {
    channel_.Send(kind, bytes);
    return channel_.Receive(kMostAsked, false).kind;
  }

  bool HasRoom(size_t bytes) {
    return bytes <= arena_->size() || (Ask(kRoom, NumbersOf(bytes)) == kYes && arena_->Map(bytes));
  }

  void SendPage(const files::Page& page) {
    const ImageRec& image = *page.image.rec();
    const auto bytes = static_cast<size_t>(image.imageBytes);
    if (HasRoom(bytes)) {
      if (image.pixels != arena_->data()) std::copy_n(image.pixels, bytes, arena_->data());
      channel_.Send(kPage, BytesOf(page));
    } else {
      channel_.Send(kPageWithPixels, BytesOf(page));
      channel_.Send(kPixels, {image.pixels, bytes});
    }
  }

  Channel channel_;
  const files::Decoders& decoders_;
  std::unique_ptr<PixelArena> arena_;
};

}  // namespace

void DecodeWhatIsAsked(Descriptor end, const files::Decoders& decoders) {
  Worker worker(std::move(end), decoders);
  try {
    worker.Begin();
  } catch (const ChannelError&) {
    return;
  } catch (const std::exception& error) {
    worker.Refuse(error.what());
    return;
  }
  try {
    for (;;) worker.AnswerOne();
  } catch (const ChannelError&) {
    // Nobody asks any more.
  }
}

}  // namespace vorlane::cage
