// Bytes that a decoder reads from: a file's or some in memory.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vorlane::files {

// May be read from several threads at once.
class ByteSource {
 public:
  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  virtual uint64_t size() const = 0;

  // Copies the bytes from `offset` on into `out` and returns how many there were: fewer than asked
  // for at the end only. Throws DecodeError when the system cannot read them.
  virtual size_t ReadAt(uint64_t offset, std::span<uint8_t> out) const = 0;

  // The open file, for what reads it by itself; -1: there is none.
  virtual int handle() const { return -1; }
};

class MemorySource : public ByteSource {
 public:
  // The bytes outlive the source.
  explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes) {}
  uint64_t size() const override { return bytes_.size(); }
  size_t ReadAt(uint64_t offset, std::span<uint8_t> out) const override;

 private:
  std::span<const uint8_t> bytes_;
};

class FileSource : public ByteSource {
 public:
  // Throws FileError, which names the file, unless it is an ordinary file that can be opened and
  // holds something. A pipe or a device is refused and never waited for.
  explicit FileSource(const std::string& path);
  // Takes over an open file whose first `size` bytes are the source.
  FileSource(int handle, uint64_t size) : handle_(handle), size_(size) {}
  ~FileSource() override;
  uint64_t size() const override { return size_; }
  size_t ReadAt(uint64_t offset, std::span<uint8_t> out) const override;
  int handle() const override { return handle_; }

 private:
  int handle_ = -1;
  uint64_t size_ = 0;
};

// All bytes of a source. Throws DecodeError.
std::vector<uint8_t> ReadAll(const ByteSource& source);

}  // namespace vorlane::files
