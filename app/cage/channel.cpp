#include "app/cage/channel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <sys/socket.h>

namespace vorlane::cage {
namespace {

constexpr size_t kStep = size_t{1} << 20;

struct Head {
  uint32_t kind;
  uint32_t mark;
  uint64_t size;
};

// Tells a message's beginning from bytes that were left over of another.
constexpr uint32_t kMark = 0x45474143;

union FileMessage {
  cmsghdr head;
  std::array<char, CMSG_SPACE(sizeof(int))> bytes;
};

[[noreturn]] void Fail(const char* what) {
  throw ChannelError(std::string(what) + ": " + std::strerror(errno));
}

Descriptor FileOf(msghdr* message) {
  Descriptor file;
  for (cmsghdr* at = CMSG_FIRSTHDR(message); at != nullptr; at = CMSG_NXTHDR(message, at)) {
    if (at->cmsg_level != SOL_SOCKET || at->cmsg_type != SCM_RIGHTS) continue;
    int handle = -1;
    std::memcpy(&handle, CMSG_DATA(at), sizeof(handle));
    file = Descriptor(handle);
  }
  return file;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    Close();
    value_ = other.Take();
  }
  return *this;
}

int Descriptor::Take() { return std::exchange(value_, -1); }

void Descriptor::Close() {
  if (value_ >= 0) (void)::close(Take());
}

Ends NewEnds() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::system_category(), "a connection");
  }
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

void Channel::Send(uint32_t kind, std::span<const uint8_t> bytes, int file) {
  Head head{kind, kMark, bytes.size()};
  std::array<iovec, 2> parts{
      {{&head, sizeof(head)}, {const_cast<uint8_t*>(bytes.data()), bytes.size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  FileMessage control{};
  if (file >= 0) {
    message.msg_control = &control;
    message.msg_controllen = sizeof(control);
    cmsghdr* at = CMSG_FIRSTHDR(&message);
    at->cmsg_level = SOL_SOCKET;
    at->cmsg_type = SCM_RIGHTS;
    at->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(at), &file, sizeof(file));
  }
  for (size_t left = sizeof(head) + bytes.size(); left > 0;) {
    const ssize_t sent = ::sendmsg(end_.value(), &message, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) Fail("nothing can be sent");
    left -= static_cast<size_t>(sent);
    message.msg_control = nullptr;  // it went with the first bytes
    message.msg_controllen = 0;
    auto done = static_cast<size_t>(sent);
    for (iovec& part : parts) {
      const size_t of = std::min(done, part.iov_len);
      part.iov_base = static_cast<uint8_t*>(part.iov_base) + of;
      part.iov_len -= of;
      done -= of;
    }
  }
}

size_t Channel::Get(std::span<uint8_t> to, Descriptor* file) {
  iovec part{to.data(), to.size()};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  FileMessage control{};
  if (file != nullptr) {
    message.msg_control = &control;
    message.msg_controllen = sizeof(control);
  }
  const ssize_t got = ::recvmsg(end_.value(), &message, MSG_CMSG_CLOEXEC);
  if (got < 0 && errno == EINTR) return 0;
  if (got < 0) Fail("nothing can be received");
  if (got == 0) throw ChannelError("the other side is gone");
  if (file != nullptr && message.msg_controllen > 0) *file = FileOf(&message);
  return static_cast<size_t>(got);
}

void Channel::GetAll(std::span<uint8_t> to, Descriptor* file, const std::function<void()>& onIdle) {
  while (!to.empty()) {
    if (onIdle) {
      pollfd wait{end_.value(), POLLIN, 0};
      const int ready = ::poll(&wait, 1, kIdleMilliseconds);
      if (ready == 0) onIdle();
      if (ready <= 0) continue;
    }
    to = to.subspan(Get(to, file));
  }
}

Message Channel::Receive(uint64_t most, bool takesFile, const std::function<void()>& onIdle) {
  Head head{};
  Message message;
  GetAll({reinterpret_cast<uint8_t*>(&head), sizeof(head)}, takesFile ? &message.file : nullptr,
         onIdle);
  if (head.mark != kMark || head.size > most) throw ChannelError("what came is no message");
  message.kind = head.kind;
  while (message.bytes.size() < head.size) {
    const size_t before = message.bytes.size();
    message.bytes.resize(before + std::min<uint64_t>(kStep, head.size - before));
    GetAll(std::span(message.bytes).subspan(before), nullptr, onIdle);
  }
  return message;
}

bool Channel::IsBroken() const {
  pollfd look{end_.value(), 0, 0};
  return ::poll(&look, 1, 0) != 0;
}

}  // namespace vorlane::cage
