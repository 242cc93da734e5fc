#include "frame/profile_line.h"

namespace vorlanepic::frame {

bool ProfileLines::Next(ProfileText* line) {
  line->length = 0;
  if (rest_.empty()) return false;
  while (line->length < kProfileLineCapacity && !rest_.empty()) {
    const char byte = rest_.front();
    rest_ = rest_.subspan(1);
    switch (byte) {
      case '\r':
        if (!rest_.empty() && rest_.front() == '\n') rest_ = rest_.subspan(1);
        return true;
      case '\n':
      case '\0':
        return true;
      default:
        line->text[line->length++] = byte;
        if (byte == '\f' || byte == 0x1A) return true;
    }
  }
  return true;
}

}  // namespace vorlanepic::frame
