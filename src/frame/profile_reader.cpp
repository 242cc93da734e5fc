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

ProfileStatus SeekSection(ProfileLines* lines, std::string_view section) {
  ProfileText line;
  while (lines->Next(&line)) {
    const std::string_view header = TrimBlanks(line.view());
    // "[]" and "[" name no section and are let pass.
    if (header.size() <= 2 || header.front() != '[') continue;
    if (header.back() != ']') return ProfileStatus::kMalformedLine;
    if (header.substr(1, header.size() - 2) == section) return ProfileStatus::kFound;
  }
  return ProfileStatus::kNoSection;
}

// Makes `text` the whole of *line.
void Assign(std::string_view text, ProfileText* line) {
  std::memmove(line->text, text.data(), text.size());
  line->length = text.size();
}

// Replaces the '+' at the end of *line by the lines that continue it. False when it gets too long.
bool AppendContinuation(ProfileLines* lines, ProfileText* line) {
  --line->length;
  ProfileText next;
  for (bool goesOn = true; goesOn && lines->Next(&next);) {
    std::string_view more = TrimLeftBlanks(next.view());
    goesOn = !more.empty() && more.back() == '+';
    if (goesOn) more.remove_suffix(1);
    if (line->length + more.size() > kProfileLineCapacity) return false;
    std::memcpy(line->text + line->length, more.data(), more.size());
    line->length += more.size();
  }
  return true;
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
ProfileStatus SeekKey(ProfileLines* lines, std::string_view wanted, ProfileText* valueOut) {
  ProfileText* line = valueOut;
  while (lines->Next(line)) {
    Assign(TrimBlanks(line->view()), line);
    if (IsSkipped(line->view())) continue;
    if (line->text[0] == '[') return ProfileStatus::kNoKey;
    if (line->view().back() == '+' && !AppendContinuation(lines, line)) {
      return ProfileStatus::kValueTooLong;
    }

    std::string_view key;
    std::string_view value;
    if (!SplitKeyValue(line->view(), &key, &value)) return ProfileStatus::kMalformedLine;
    if (key != wanted) continue;
    Assign(value, valueOut);
    valueOut->text[valueOut->length] = '\0';
    return ProfileStatus::kFound;
  }
  return ProfileStatus::kNoKey;
}

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

FileRead Profile::Load(const char* path) {
  hasName_ = path != nullptr && *path != '\0';
  bytes_ = {};
  return hasName_ ? ReadRegularFile(path, kProfileMost, &bytes_) : FileRead::kNotOpened;
}

ProfileStatus Profile::Find(std::string_view section, std::string_view key,
                            ProfileText* value) const {
  ProfileLines lines(bytes_.span());
  const ProfileStatus status = SeekSection(&lines, section);
  return status == ProfileStatus::kFound ? SeekKey(&lines, key, value) : status;
}

int32_t Profile::Int(std::string_view section, std::string_view key, int32_t defaultValue) const {
  if (!hasName_) return 0;
  ProfileText value;
  if (Find(section, key, &value) != ProfileStatus::kFound) return defaultValue;
  return value.length > 0 ? ParseNonNegative(value.view()) : defaultValue;
}

size_t Profile::Text(std::string_view section, std::string_view key, std::string_view defaultText,
                     char* out, size_t size) const {
  ProfileText value;
  std::string_view source = hasName_ ? defaultText : "";
  if (Find(section, key, &value) == ProfileStatus::kFound) source = value.view();
  const size_t length = source.size() > size ? size - 1 : source.size();
  std::memcpy(out, source.data(), length);
  out[length] = '\0';
  return length;
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
