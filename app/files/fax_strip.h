// Strips of the fax schemes, decoded with a look at where they end.
#pragma once

#include <cstdint>
#include <span>

namespace vorlane::files {

struct FaxStrip {
  std::span<const uint8_t> stored;
  uint32_t width = 0;
  uint32_t rows = 0;
  uint16_t compression = 0;  // as the TIFF tag has it
  uint32_t options = 0;      // of Group 3
  uint16_t fillOrder = 1;
};

// Decodes a strip into rows without gaps. The schemes have no checksum, and a changed code mostly
// turns all that follows into other rows of the right length. Such a strip has something left
// behind its last row: the library is asked for one row more, of which a whole strip must have
// nothing. Throws DecodeError, with the library's words, for a strip that is damaged or cut short.
void DecodeFaxStrip(const FaxStrip& strip, std::span<uint8_t> out);

}  // namespace vorlane::files
