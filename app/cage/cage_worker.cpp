#include "app/cage/cage_worker.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <ctime>
#include <system_error>
#include <utility>

#include <sys/resource.h>
#include <sys/wait.h>

#include "app/cage/wire.h"
#include "app/cage/worker_main.h"
#include "app/files/page_image.h"

namespace vorlane::cage {
namespace {

using Clock = std::chrono::steady_clock;

// Of an answer without pixels: metadata mostly, or the places of a million pages.
constexpr uint64_t kMostAnswered = uint64_t{1} << 28;

template <size_t kCount>
std::array<uint64_t, kCount> NumbersOf(const Message& message) {
  std::array<uint64_t, kCount> numbers{};
  if (message.bytes.size() != sizeof(numbers)) throw ChannelError("what came are no numbers");
  std::memcpy(numbers.data(), message.bytes.data(), sizeof(numbers));
  return numbers;
}

std::string TextOf(const Message& message) { return {message.bytes.begin(), message.bytes.end()}; }

// The process took more than it may.
struct Overrun : std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string Whole(double number) { return std::to_string(static_cast<int64_t>(number)); }

}  // namespace

// A question on its way.
struct CageWorker::Job {
  const files::ByteSource& source;
  const files::ReadLimits& limits;
  uint64_t pixels = 0;   // that were admitted
  uint64_t edges = 0;    // the longest side of these, for the padding of rows
  double startedAt = 0;  // by the process's own clock, in seconds
  double waited = 0;
  double seconds = 0;  // that it may take
  Clock::time_point lastLook = Clock::now();
  bool isAnswered = false;  // the process waits for the next question
};

CageWorker::CageWorker(Keeper* keeper, const CageLimits& limits)
    : keeper_(keeper), limits_(limits) {
  try {
    Ends ends = NewEnds();
    process_ = keeper_->Start(ends.there);
    ends.there.Close();
    channel_ = Channel(std::move(ends.here));
    Begin();
  } catch (const CageError&) {
    (void)EndingWords();
    throw;
  } catch (const std::exception& error) {
    (void)EndingWords();
    throw CageError(error.what());
  }
}

CageWorker::~CageWorker() {
  if (process_ > 0) (void)EndingWords();
}

void CageWorker::Begin() {
  channel_.Send(kBegin, {}, arena_.handle());
  const Message answer = channel_.Receive(kMostAnswered, false);
  if (answer.kind != kReady) throw CageError(TextOf(answer));
  ownMemory_ = NumbersOf<1>(answer)[0];
  rlimit limit{};
  if (::getrlimit(RLIMIT_AS, &limit) == 0) mostMemory_ = limit.rlim_max;
}

// What went wrong between the processes becomes the page's error, and the process's end.
template <class Action>
void CageWorker::Guarded(Job* job, const Action& action) {
  try {
    action();
  } catch (const ChannelError&) {
    throw files::DecodeError(EndingWords());
  } catch (const Overrun& error) {
    (void)EndingWords();
    throw files::DecodeError(error.what());
  } catch (const WireError&) {
    (void)EndingWords();
    throw files::DecodeError("the decoder's answer makes no sense; its process was ended");
  } catch (...) {
    if (!job->isAnswered) (void)EndingWords();
    throw;
  }
}

files::FileContents CageWorker::Look(const files::ByteSource& source,
                                     const files::ReadLimits& limits) {
  files::FileContents contents;
  Job job{source, limits};
  Guarded(&job, [&] {
    Ask(kLook, &job, {});
    const Message answer = Answer(&job);
    if (answer.kind != kContents) throw WireError("no contents");
    contents = ContentsOf(answer.bytes);
    if (contents.count > limits.mostPages) throw WireError("more pages than are allowed");
  });
  return contents;
}

void CageWorker::Decode(const files::ByteSource& source, const files::PicturePlace& place,
                        const files::ReadLimits& limits, files::Page* page) {
  Job job{source, limits};
  Guarded(&job, [&] {
    Ask(kDecode, &job, place);
    TakePage(Answer(&job), &job, page);
  });
}

void CageWorker::Ask(uint32_t kind, Job* job, const files::PicturePlace& place) {
  if (job->source.handle() < 0) throw files::DecodeError("can be read from the disk only");
  job->startedAt = ProcessorSeconds();
  job->seconds = limits_.seconds;
  LimitMemory(*job);
  Question question{job->source.size(), job->limits.mostPixels, job->limits.mostPages, place};
  channel_.Send(kind, BytesOf(question), job->source.handle());
}

// Serves what the process asks for on its way to an answer.
Message CageWorker::Answer(Job* job) {
  for (;;) {
    Message message = Receive(job, kMostAnswered);
    switch (message.kind) {
      case kGate:
        Admit(message, job);
        break;
      case kRoom:
        MakeRoom(message, *job);
        break;
      case kDamage:
        job->isAnswered = true;
        throw files::DecodeError(TextOf(message));
      case kNoMemory:
        job->isAnswered = true;
        throw files::DecodeError("there is not enough memory for this page; its decoder may take " +
                                 std::to_string(MemoryFor(*job) >> 20) + " MB");
      default:
        job->isAnswered = message.kind != kPageWithPixels;
        return message;
    }
  }
}

Message CageWorker::Receive(Job* job, uint64_t most) {
  return channel_.Receive(most, false, [this, job] { Watch(job); });
}

void CageWorker::Admit(const Message& message, Job* job) {
  const auto [width, height] = NumbersOf<2>(message);
  files::CheckSize(width, height, job->limits);  // and waits where there is no memory yet
  job->pixels = std::max(job->pixels, width * height);
  job->edges = std::max({job->edges, width, height});
  job->seconds =
      limits_.seconds + limits_.secondsAMegapixel * static_cast<double>(job->pixels) / 1e6;
  job->lastLook = Clock::now();
  LimitMemory(*job);
  channel_.Send(kYes, {});
}

void CageWorker::MakeRoom(const Message& message, const Job& job) {
  const uint64_t bytes = NumbersOf<1>(message)[0];
  const uint64_t most = 3 * job.pixels + 4 * job.edges;
  const bool isMade = bytes <= most && arena_.Grow(static_cast<size_t>(bytes));
  if (isMade) LimitMemory(job);
  channel_.Send(isMade ? kYes : kNo, {});
}

void CageWorker::TakePage(const Message& message, Job* job, files::Page* page) {
  if (message.kind != kPage && message.kind != kPageWithPixels) throw WireError("no page");
  const PictureShape shape = ReadPage(message.bytes, page);
  const uint64_t pixels = uint64_t(shape.width) * uint64_t(shape.height);
  if (pixels > job->pixels) {
    files::CheckSize(uint64_t(shape.width), uint64_t(shape.height), job->limits);
  }
  files::MakeImage(shape.width, shape.height, shape.bitsPerPixel, page);
  const ImageRec& image = *page->image.rec();
  const auto bytes = static_cast<size_t>(image.imageBytes);
  if (message.kind == kPage) {
    if (bytes > arena_.size()) throw WireError("no pixels");
    std::copy_n(arena_.data(), bytes, image.pixels);
    arena_.Trim();
    return;
  }
  const Message sent = Receive(job, bytes);
  job->isAnswered = true;
  if (sent.kind != kPixels || sent.bytes.size() != bytes) throw WireError("no pixels");
  std::copy_n(sent.bytes.begin(), bytes, image.pixels);
}

int64_t CageWorker::MemoryFor(const Job& job) const {
  return limits_.memory + limits_.memoryAPixel * static_cast<int64_t>(job.pixels) +
         limits_.memoryAByte * static_cast<int64_t>(job.source.size());
}

void CageWorker::LimitMemory(const Job& job) const {
  if (ownMemory_ == 0) return;
  const rlim_t most = ownMemory_ + arena_.size() + static_cast<rlim_t>(MemoryFor(job));
  const rlimit limit{std::min(most, mostMemory_), mostMemory_};
  (void)::prlimit(process_, RLIMIT_AS, &limit, nullptr);
}

// Of the clock only what passes while we look on counts: a run that was suspended goes on.
void CageWorker::Watch(Job* job) const {
  constexpr double kMostAtOnce = 2.0 * Channel::kIdleMilliseconds / 1000;
  const Clock::time_point now = Clock::now();
  job->waited += std::min(std::chrono::duration<double>(now - job->lastLook).count(), kMostAtOnce);
  job->lastLook = now;
  if (ProcessorSeconds() - job->startedAt > job->seconds) {
    throw Overrun("the decoder took longer than " + Whole(job->seconds) +
                  " s of a processor's time and was ended");
  }
  if (job->waited > job->seconds + limits_.waiting) {
    throw Overrun("the decoder gave no answer for " + Whole(job->seconds + limits_.waiting) +
                  " s and was ended");
  }
}

double CageWorker::ProcessorSeconds() const {
  clockid_t clock{};
  timespec time{};
  if (::clock_getcpuclockid(process_, &clock) != 0 || ::clock_gettime(clock, &time) != 0) return 0;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::string CageWorker::EndingWords() {
  channel_ = Channel(Descriptor());
  const pid_t process = std::exchange(process_, -1);
  if (process <= 0) return "";
  int status = 0;
  try {
    status = keeper_->End(process);
  } catch (const ChannelError&) {
    return "the process that starts decoders is gone";
  }
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    const char* name = ::sigdescr_np(signal);
    return "the decoder was ended by signal " + std::to_string(signal) +
           (name == nullptr ? "" : std::string(" (") + name + ")");
  }
  return "the decoder ended by itself with the exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace vorlane::cage
