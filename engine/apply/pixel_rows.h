// Rows of pixels from one form into another.
#pragma once

#include <cstdint>

#include "engine/apply/workspace.h"
#include "vorlane/vorlane.h"

namespace vorlane::apply {

// `width` pixels of four bytes into three, and back; the fourth byte becomes 255.
void DropFourthBytes(const uint8_t* from, int32_t width, uint8_t* to);
void AddFourthBytes(const uint8_t* from, int32_t width, uint8_t* to);

// Lets *light be `page` with set bits light, in the workspace; the bits behind a row's last pixel
// are 0. The page is one of bits. False when there is no memory.
[[nodiscard]] bool InvertBits(const vorlane_image& page, Workspace& space, vorlane_image* light);

}  // namespace vorlane::apply
