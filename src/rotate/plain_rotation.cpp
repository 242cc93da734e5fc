#include "rotate/plain_rotation.h"

#include <cstring>

#include "rotate/pixel_rule.h"

namespace vorlanepic::rotate {

void RotateRowsPlain(const RotateJob& job, int32_t first, int32_t last) {
  const PixelRule& rule = PixelRuleOf(job.source.bitsPerPixel, job.turn.interpolation);
  for (int32_t y = first; y <= last; ++y) {
    uint8_t* row = job.target.rows[y];
    if (rule.bitsPerPixel == 24) {
      FillPixels(job, row, 0, job.target.width - 1);
    } else {
      std::memset(row, job.fill[0], static_cast<size_t>(job.target.lineBytes));
    }
    for (int32_t x = 0; x < job.target.width; ++x) {
      const SourcePoint point = SourcePointOf(job, x, y);
      if (IsInRegion(job, point)) rule.sample(job, point, row, x);
    }
  }
}

}  // namespace vorlanepic::rotate
