#include "frame/profile_line.h"

namespace vorlanepic::frame {

int ProfileFile::Peek() {
  if (next_ == filled_ && !atEnd_) {
    next_ = 0;
    filled_ = std::fread(buffer_, 1, sizeof buffer_, file_);
    atEnd_ = filled_ < sizeof buffer_;
  }
  return next_ < filled_ ? buffer_[next_] : kNoByte;
}

int ProfileFile::Take() {
  const int byte = Peek();
  if (byte != kNoByte) ++next_;
  return byte;
}

LineResult ProfileFile::ReadProfileLine(ProfileText* line) {
  line->length = 0;
  while (line->length < kProfileLineCapacity) {
    const int byte = Take();
    switch (byte) {
      case kNoByte:
        if (std::ferror(file_) != 0) return LineResult::kReadError;
        return line->length > 0 ? LineResult::kLine : LineResult::kEndOfFile;
      case '\r':
        if (Peek() == '\n') Take();
        return LineResult::kLine;
      case '\n':
      case '\0':
        return LineResult::kLine;
      default:
        line->text[line->length++] = static_cast<char>(byte);
        if (byte == '\f' || byte == 0x1A) return LineResult::kLine;
    }
  }
  return LineResult::kLine;
}

}  // namespace vorlanepic::frame
