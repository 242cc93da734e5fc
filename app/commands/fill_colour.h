// The colour of places outside the page.
#pragma once

#include <array>
#include <cstdint>

#include <CLI/CLI.hpp>

namespace vorlane::commands {

struct FillColour {
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;
};

// The default, and what there is to say of it.
inline constexpr const char* kContentFill =
    "black]; light fills count as content where the turned page is cut to its content";

// --fill black|white|LEVEL|#RRGGBB. `ending` completes the option's text from the default on.
void AddFillOption(CLI::App* app, FillColour* fill, const char* ending);

// The fill value of an image of 1, 8 or 24 bits, as the services take it.
std::array<uint8_t, 3> FillBytes(const FillColour& fill, int32_t bitsPerPixel);

}  // namespace vorlane::commands
