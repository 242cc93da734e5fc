#include "frame/profile_reader.h"

#include <algorithm>
#include <cstring>

namespace vorlanepic::frame {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

std::string_view TrimLeftBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

std::string_view TrimRightBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view TrimBlanks(std::string_view text) { return TrimRightBlanks(TrimLeftBlanks(text)); }

bool IsSkipped(std::string_view line) { return line.empty() || line.front() == '#'; }

int32_t SeekSection(ProfileFile* file, std::string_view section) {
  ProfileText line;
  for (;;) {
    const LineResult result = file->ReadProfileLine(&line);
    if (result == LineResult::kEndOfFile) return kProfileNoSection;
    if (result == LineResult::kReadError) return kProfileReadError;

    const std::string_view header = TrimBlanks(line.view());
    // "[]" and "[" name no section and are let pass.
    if (header.size() <= 2 || header.front() != '[') continue;
    if (header.back() != ']') return kProfileMalformedLine;
    if (header.substr(1, header.size() - 2) == section) return kProfileFound;
  }
}

// Makes `text` the whole of *line.
void Assign(std::string_view text, ProfileText* line) {
  std::memmove(line->text, text.data(), text.size());
  line->length = text.size();
}

// Replaces the '+' at the end of *line by the lines that continue it.
int32_t AppendContinuation(ProfileFile* file, ProfileText* line) {
  --line->length;
  ProfileText next;
  for (bool goesOn = true; goesOn;) {
    const LineResult result = file->ReadProfileLine(&next);
    if (result == LineResult::kEndOfFile) return kProfileFound;
    if (result == LineResult::kReadError) return kProfileReadError;

    std::string_view more = TrimLeftBlanks(next.view());
    goesOn = !more.empty() && more.back() == '+';
    if (goesOn) more.remove_suffix(1);
    if (line->length + more.size() > kProfileLineCapacity) return kProfileValueTooLong;
    std::memcpy(line->text + line->length, more.data(), more.size());
    line->length += more.size();
  }
  return kProfileFound;
}

// Splits a line at its first '='. False when there is none or the line begins with it.
bool SplitKeyValue(std::string_view line, std::string_view* key, std::string_view* value) {
  const size_t equals = line.find('=');
  if (equals == std::string_view::npos || equals == 0) return false;
  *key = TrimRightBlanks(line.substr(0, equals));
  *value = TrimLeftBlanks(line.substr(equals + 1));
  return true;
}

// Reads the section that begins with the next line, up to `wanted`.
int32_t SeekKey(ProfileFile* file, std::string_view wanted, ProfileText* valueOut) {
  ProfileText* line = valueOut;
  for (;;) {
    const LineResult result = file->ReadProfileLine(line);
    if (result == LineResult::kEndOfFile) return kProfileNoKey;
    if (result == LineResult::kReadError) return kProfileReadError;

    Assign(TrimBlanks(line->view()), line);
    if (IsSkipped(line->view())) continue;
    if (line->text[0] == '[') return kProfileNoKey;
    if (line->view().back() == '+') {
      const int32_t status = AppendContinuation(file, line);
      if (status != kProfileFound) return status;
    }

    std::string_view key;
    std::string_view value;
    if (!SplitKeyValue(line->view(), &key, &value)) return kProfileMalformedLine;
    if (key != wanted) continue;
    Assign(value, valueOut);
    valueOut->text[valueOut->length] = '\0';
    return kProfileFound;
  }
}

bool IsNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

// The sign, and behind it the text that begins with the number's digits.
struct SignedText {
  bool negative;
  std::string_view digits;
};

SignedText SplitSign(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool isSigned = !text.empty() && (text.front() == '+' || text.front() == '-');
  const bool negative = isSigned && text.front() == '-';
  return {negative, text.substr(isSigned ? 1 : 0)};
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int32_t ParseNonNegative(std::string_view text) {
  const SignedText number = SplitSign(text);
  int64_t magnitude = 0;
  for (const char c : number.digits) {
    if (!IsDigit(c)) break;
    magnitude = std::min<int64_t>(magnitude * 10 + (c - '0'), INT32_MAX);
  }
  return number.negative ? 0 : static_cast<int32_t>(magnitude);
}

}  // namespace

int32_t FindProfileValue(const char* path, const char* section, const char* key,
                         ProfileText* value) {
  if (path == nullptr || section == nullptr || key == nullptr || value == nullptr) {
    return kProfileNullArgument;
  }
  ProfileFile file(path);
  if (!file.isOpen()) return kProfileNotOpened;
  const int32_t status = SeekSection(&file, section);
  return status == kProfileFound ? SeekKey(&file, key, value) : status;
}

int32_t ReadProfileInt(const char* section, const char* key, int32_t defaultValue,
                       const char* path) {
  if (IsNullOrEmpty(section) || IsNullOrEmpty(key) || IsNullOrEmpty(path)) return 0;
  ProfileText value;
  if (FindProfileValue(path, section, key, &value) != kProfileFound) return defaultValue;
  return value.length > 0 ? ParseNonNegative(value.view()) : defaultValue;
}

uint32_t ReadProfileText(const char* section, const char* key, const char* defaultText, char* out,
                         uint32_t size, const char* path) {
  if (out == nullptr || size == 0) return 0;
  if (IsNullOrEmpty(section) || IsNullOrEmpty(key) || IsNullOrEmpty(path)) return 0;

  ProfileText value;
  std::string_view source = defaultText != nullptr ? defaultText : "";
  if (FindProfileValue(path, section, key, &value) == kProfileFound) source = value.view();
  const size_t length = source.size() > size ? size - 1 : source.size();
  std::memcpy(out, source.data(), length);
  out[length] = '\0';
  return static_cast<uint32_t>(length);
}

double ParseDecimal(std::string_view text) {
  const SignedText number = SplitSign(text);
  double magnitude = 0.0;
  double scale = 1.0;  // both exact up to 15 digits, so that one division rounds
  bool pointSeen = false;
  for (const char c : number.digits) {
    if (c == '.' && !pointSeen) {
      pointSeen = true;
    } else if (IsDigit(c)) {
      magnitude = magnitude * 10.0 + (c - '0');
      if (pointSeen) scale *= 10.0;
    } else {
      break;
    }
  }
  const double value = magnitude / scale;
  return number.negative ? -value : value;
}

}  // namespace vorlanepic::frame
