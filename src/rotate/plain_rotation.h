// The rotation as anyone can check it by eye.
#pragma once

#include "rotate/rotate_job.h"

namespace vorlanepic::rotate {

// Computes rows first..last of the job's target pixel by pixel, row padding included. The source
// has 1, 8 or 24 bits per pixel.
void RotateRowsPlain(const RotateJob& job, int32_t first, int32_t last);

}  // namespace vorlanepic::rotate
