// Reads the lines of a profile file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace vorlanepic::frame {

// Characters of a line, and of a value joined from several lines.
inline constexpr size_t kProfileLineCapacity = 4096;

// A line or a value: `length` characters, followed by a zero once it is handed out.
struct ProfileText {
  char text[kProfileLineCapacity + 1];
  size_t length;

  std::string_view view() const { return {text, length}; }
};

enum class LineResult {
  kLine,       // a line, possibly empty
  kEndOfFile,  // no byte was left
  kReadError,
};

// An open profile, closed with its scope. Bytes stand as they are in the file, on every system.
class ProfileFile {
 public:
  explicit ProfileFile(const char* path) : file_(std::fopen(path, "rb")) {}
  ~ProfileFile() {
    if (file_ != nullptr) std::fclose(file_);
  }
  ProfileFile(const ProfileFile&) = delete;
  ProfileFile& operator=(const ProfileFile&) = delete;

  bool isOpen() const { return file_ != nullptr; }

  // Reads the next line into *line, without its end. A line ends with LF, CR, CR LF or a zero byte;
  // with a form feed or 0x1A, which stays its last character; after kProfileLineCapacity
  // characters, where the rest of the line, even if only its end is left, makes the next one; or at
  // the end of the file.
  LineResult ReadProfileLine(ProfileText* line);

 private:
  static constexpr int kNoByte = -1;

  // The next byte or kNoByte, left in place and taken.
  int Peek();
  int Take();

  std::FILE* file_;
  bool atEnd_ = false;
  size_t next_ = 0;
  size_t filled_ = 0;
  unsigned char buffer_[kProfileLineCapacity];
};

}  // namespace vorlanepic::frame
