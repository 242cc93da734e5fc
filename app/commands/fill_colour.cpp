#include "app/commands/fill_colour.h"

#include <charconv>
#include <optional>
#include <string>

namespace vorlane::commands {
namespace {

std::optional<uint32_t> ParseNumber(const std::string& text, int base) {
  uint32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc{} || at != end || text.empty()) return std::nullopt;
  return value;
}

std::optional<FillColour> ParseFill(const std::string& text) {
  if (text == "black") return FillColour{};
  if (text == "white") return FillColour{255, 255, 255};
  if (text.size() == 7 && text[0] == '#') {
    const auto rgb = ParseNumber(text.substr(1), 16);
    if (!rgb) return std::nullopt;
    return FillColour{static_cast<uint8_t>(*rgb >> 16), static_cast<uint8_t>(*rgb >> 8),
                      static_cast<uint8_t>(*rgb)};
  }
  const auto level = ParseNumber(text, 10);
  if (!level || *level > 255) return std::nullopt;
  const auto grey = static_cast<uint8_t>(*level);
  return FillColour{grey, grey, grey};
}

}  // namespace

void AddFillOption(CLI::App* app, FillColour* fill, const char* ending) {
  app->add_option_function<std::string>(
         "--fill", [fill](const std::string& text) { *fill = ParseFill(text).value(); },
         std::string("Colour outside the page: black, white, a grey level or #RRGGBB [") + ending)
      ->check(CLI::Validator(
          [](const std::string& text) {
            return ParseFill(text) ? std::string() : "not black, white, 0..255 or #RRGGBB: " + text;
          },
          "COLOUR"));
}

std::array<uint8_t, 3> FillBytes(const FillColour& fill, int32_t bitsPerPixel) {
  if (bitsPerPixel == 24) return {fill.blue, fill.green, fill.red};
  const int grey = (299 * fill.red + 587 * fill.green + 114 * fill.blue + 500) / 1000;
  if (bitsPerPixel == 8) return {static_cast<uint8_t>(grey), 0, 0};
  return {static_cast<uint8_t>(grey > 127 ? 0xFF : 0), 0, 0};
}

}  // namespace vorlane::commands
