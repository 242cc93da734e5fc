#include "app/files/icc.h"

#include <algorithm>
#include <string_view>

namespace vorlane::files {

bool IccFits(std::span<const uint8_t> icc, int32_t bitsPerPixel) {
  constexpr size_t kColourSpaceAt = 16;
  const std::string_view wanted = bitsPerPixel == 24 ? "RGB " : "GRAY";
  return icc.size() >= kColourSpaceAt + wanted.size() &&
         std::equal(wanted.begin(), wanted.end(), icc.begin() + kColourSpaceAt);
}

}  // namespace vorlane::files
