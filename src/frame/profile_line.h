// The lines of a profile.
#pragma once

#include <cstddef>
#include <span>
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

// The bytes of a profile, as they stand in its file, line after line.
class ProfileLines {
 public:
  explicit ProfileLines(std::span<const char> bytes) : rest_(bytes) {}

  // Puts the next line into *line, without its end; false when no byte is left. A line ends with
  // LF, CR, CR LF or a zero byte; with a form feed or 0x1A, which stays its last character; after
  // kProfileLineCapacity characters, where the rest of the line, even if only its end is left,
  // makes the next one; or at the end of the bytes.
  bool Next(ProfileText* line);

 private:
  std::span<const char> rest_;
};

}  // namespace vorlanepic::frame
