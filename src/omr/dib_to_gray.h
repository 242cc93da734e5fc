// Grey images from device-independent images.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "omr/grey_view.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::omr {

// A grey image whose pixels are its own or those of the image that it was read from.
struct GreyImage {
  GreyView view{nullptr, 0, 0};
  frame::ScratchArray<uint8_t> own;
};

// Reads a device-independent image of 1, 8 or 24 bits per pixel. 8 bits are taken as grey levels,
// in place, set bits as 255 and clear ones as 0, and of 24 bits the third byte, red; colour tables
// are not looked at.
//
// False for a null image or part of it, headers that don't begin with 0x42 0x4D, a size below 1,
// another depth, and when there is no memory.
bool DibToGray(const DibRec* image, GreyImage* grey);

}  // namespace vorlanepic::omr
