#include "app/cage/keeper.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include <sys/prctl.h>
#include <sys/wait.h>

namespace vorlane::cage {
namespace {

enum Kind : uint32_t { kStart = 1, kEnd, kAnswer };

std::array<uint8_t, sizeof(int)> BytesOfNumber(int value) {
  std::array<uint8_t, sizeof(int)> bytes{};
  std::memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

int ValueOf(const Message& message) {
  int value = 0;
  if (message.bytes.size() != sizeof(value)) throw ChannelError("what came is no number");
  std::memcpy(&value, message.bytes.data(), sizeof(value));
  return value;
}

void EndWith(pid_t parent) {
  (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(0);  // it is gone already
}

// Keeps nothing open but the standard streams, which lead nowhere, and `end`.
Descriptor CloseOthers(Descriptor end) {
  const int nothing = ::open("/dev/null", O_RDWR);
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::dup2(nothing, handle) != handle) ::_exit(1);
  }
  constexpr int kPlace = STDERR_FILENO + 1;
  if (end.value() != kPlace && ::dup2(end.value(), kPlace) != kPlace) ::_exit(1);
  if (::fcntl(kPlace, F_SETFD, FD_CLOEXEC) != 0) ::_exit(1);
  (void)end.Take();
  if (::close_range(kPlace + 1, ~0U, 0) != 0) ::_exit(1);
  return Descriptor(kPlace);
}

int StartOne(const Keeper::Work& work, Descriptor end) {
  const pid_t keeper = ::getpid();
  const pid_t process = ::fork();
  if (process != 0) return process;
  (void)::prctl(PR_SET_NAME, "vorlane-decoder");
  EndWith(keeper);
  work(CloseOthers(std::move(end)));
  ::_exit(0);
}

int EndOne(pid_t process) {
  // Of one that has ended by itself it changes nothing.
  (void)::kill(process, SIGKILL);
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return status;
}

[[noreturn]] void Keep(Channel channel, const Keeper::Work& work) {
  try {
    for (;;) {
      Message asked = channel.Receive(sizeof(int), true);
      const int answer =
          asked.kind == kStart ? StartOne(work, std::move(asked.file)) : EndOne(ValueOf(asked));
      channel.Send(kAnswer, BytesOfNumber(answer));
    }
  } catch (const std::exception&) {
    // Nobody asks any more.
  }
  (void)::kill(0, SIGKILL);  // the group: all that were started, and this one
  ::_exit(0);
}

}  // namespace

Keeper::Keeper(const Work& work) {
  Ends ends = NewEnds();
  const pid_t parent = ::getpid();
  process_ = ::fork();
  if (process_ < 0) throw std::system_error(errno, std::system_category(), "a process");
  if (process_ == 0) {
    (void)::prctl(PR_SET_NAME, "vorlane-keeper");
    (void)::setpgid(0, 0);
    EndWith(parent);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) (void)std::signal(signal, SIG_IGN);
    ends.here.Close();
    Keep(Channel(CloseOthers(std::move(ends.there))), work);
  }
  channel_ = Channel(std::move(ends.here));
}

Keeper::~Keeper() {
  channel_ = Channel(Descriptor());  // by which it is told
  while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

int Keeper::Ask(uint32_t kind, int value, int file) {
  const std::lock_guard lock(mutex_);
  channel_.Send(kind, BytesOfNumber(value), file);
  return ValueOf(channel_.Receive(sizeof(int), false));
}

pid_t Keeper::Start(const Descriptor& end) {
  const pid_t process = Ask(kStart, 0, end.value());
  if (process < 0) throw ChannelError("no process can be started");
  return process;
}

int Keeper::End(pid_t process) { return Ask(kEnd, process, -1); }

}  // namespace vorlane::cage
