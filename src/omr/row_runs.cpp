#include "omr/row_runs.h"

namespace vorlanepic::omr {

size_t FilterRuns(const BlockMarkParam& param, PixelRun* runs, size_t count) {
  const bool isLimited = param.minRunLen != 0 && param.maxRunLen != 0;
  size_t kept = 0;
  for (size_t i = 0; i < count; ++i) {
    const PixelRun run = runs[i];
    const int32_t length = Length(run);
    if (isLimited && (length < param.minRunLen || length > param.maxRunLen)) continue;
    const bool isJoined =
        param.joinGap != 0 && kept > 0 && run.start - (runs[kept - 1].end - 1) <= param.joinGap;
    if (!isJoined) {
      runs[kept++] = run;
      continue;
    }
    PixelRun& extended = runs[kept - 1];
    extended.end = run.end;
    // A joined run may not even reach the length that a single one may have.
    if (isLimited && Length(extended) >= param.maxRunLen) --kept;
  }
  return kept;
}

}  // namespace vorlanepic::omr
