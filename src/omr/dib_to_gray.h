// Grey buffers from device-independent images.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "omr/grey_view.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic {

// A grey image with pixels of its own, one byte each, top row first.
struct GreyBuffer {
  int32_t height = 0;
  int32_t width = 0;
  ScratchArray<uint8_t> pixels;

  GreyView view() const { return {pixels.data(), height, width}; }
};

// Reads a device-independent image of 1, 8 or 24 bits per pixel. 8 bits are taken as grey levels,
// set bits as 255 and clear ones as 0, and of 24 bits the third byte, red; colour tables are not
// looked at.
//
// False for a null image or part of it, headers that don't begin with 0x42 0x4D, a size below 1,
// another depth, and when there is no memory.
bool DibToGray(const DibRec* image, GreyBuffer* grey);

}  // namespace vorlanepic
