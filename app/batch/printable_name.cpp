#include "app/batch/printable_name.h"

#include <charconv>
#include <cstdint>

namespace vorlane::batch {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

// The length of the character that `bytes` begin with and its code; 0 when it is no UTF-8.
size_t CharacterAt(std::string_view bytes, uint32_t* code) {
  const auto first = static_cast<uint8_t>(bytes[0]);
  *code = first;
  if (first < 0x80) return 1;
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || bytes.size() < length) return 0;
  *code = first & (0x7FU >> length);
  for (size_t i = 1; i < length; ++i) {
    const auto next = static_cast<uint8_t>(bytes[i]);
    if ((next & 0xC0) != 0x80) return 0;
    *code = *code << 6 | (next & 0x3FU);
  }
  static constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = *code >= 0xD800 && *code <= 0xDFFF;
  return *code < kLeast[length] || *code > 0x10FFFF || isSurrogate ? 0 : length;
}

// Controls, and marks that turn the direction of the text behind them.
bool Acts(uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

void AppendEscaped(std::string_view bytes, std::string* text) {
  for (const char c : bytes) {
    if (c == '\n' || c == '\t') {
      *text += c == '\n' ? "\\n" : "\\t";
      continue;
    }
    text->append("\\x").append(ToHex({&c, 1}));
  }
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  uint32_t code = 0;
  while (!bytes.empty()) {
    const size_t length = CharacterAt(bytes, &code);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string Printable(std::string_view name) {
  std::string text;
  while (!name.empty()) {
    uint32_t code = 0;
    const size_t length = CharacterAt(name, &code);
    const std::string_view bytes = name.substr(0, length == 0 ? 1 : length);
    if (length == 0 || Acts(code)) {
      AppendEscaped(bytes, &text);
    } else {
      text.append(code == '\\' ? "\\\\" : bytes);
    }
    name.remove_prefix(bytes.size());
  }
  return text;
}

std::string ToHex(std::string_view bytes) {
  std::string digits;
  digits.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<uint8_t>(c);
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 15];
  }
  return digits;
}

std::string FromHex(std::string_view digits) {
  std::string bytes;
  if (digits.size() % 2 != 0) return bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    uint8_t byte = 0;
    const char* end = digits.data() + i + 2;
    const auto [at, error] = std::from_chars(digits.data() + i, end, byte, 16);
    if (error != std::errc{} || at != end) return "";
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

}  // namespace vorlane::batch
