// Messages between two processes.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <vector>

namespace vorlane::cage {

// The other side is gone, or what it sent is no message.
struct ChannelError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Bytes = std::vector<uint8_t>;

// An open descriptor, closed with its scope.
class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
  Descriptor(Descriptor&& other) noexcept : value_(other.Take()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { Close(); }

  int value() const { return value_; }
  int Take();
  void Close();

 private:
  int value_;
};

// The two ends of a new connection, neither of them kept by programs that are started. Throws
// std::system_error.
struct Ends {
  Descriptor here;
  Descriptor there;
};
Ends NewEnds();

struct Message {
  uint32_t kind = 0;
  Bytes bytes;
  Descriptor file;  // that was sent along; -1: none
};

// One end of a connection. Its errors are ChannelErrors.
class Channel {
 public:
  explicit Channel(Descriptor end) : end_(std::move(end)) {}

  // `file` goes along where it is not -1; the other side gets a descriptor of its own.
  void Send(uint32_t kind, std::span<const uint8_t> bytes, int file = -1);

  // Waits for a message of at most `most` bytes; memory is taken as they come in. A file is taken
  // only where `takesFile`, else it is closed by the system. `onIdle` is called each time nothing
  // has come for `kIdleMilliseconds`, and may throw.
  Message Receive(uint64_t most, bool takesFile, const std::function<void()>& onIdle = nullptr);

  // Whether the other side has hung up.
  bool IsBroken() const;

  int handle() const { return end_.value(); }

  static constexpr int kIdleMilliseconds = 250;

 private:
  size_t Get(std::span<uint8_t> to, Descriptor* file);
  void GetAll(std::span<uint8_t> to, Descriptor* file, const std::function<void()>& onIdle);

  Descriptor end_;
};

}  // namespace vorlane::cage
