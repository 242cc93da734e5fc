#include "rotate/rotate_image.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "frame/lock.h"
#include "frame/scratch.h"
#include "frame/settings.h"
#include "rotate/plain_rotation.h"
#include "rotate/rotate_job.h"

namespace vorlanepic {
namespace {

// Each half of an output is computed under its own lock: calls that overlap take turns.
Lock FirstHalfLock;
Lock SecondHalfLock;

// Output pixels below which starting a thread costs more than it saves.
constexpr int64_t kThreadWorthPixels = 8192;

bool IsPossibleTurn(const ImageRec& source, const RowSpans& region, const Turn& turn) {
  return turn.outWidth > 0 && turn.outHeight > 0 &&            //
         turn.centerX >= 0 && turn.centerX < source.width &&   //
         turn.centerY >= 0 && turn.centerY < source.height &&  //
         (turn.interpolation == INTERP_BILINEAR || turn.interpolation == INTERP_BICUBIC ||
          turn.interpolation == INTERP_NEAREST) &&
         region.top >= 0 && region.bottom < source.height && region.top < region.bottom;
}

void RotateFirstHalf(const RotateJob& job) {
  const std::lock_guard lock(FirstHalfLock);
  RotateRowsPlain(job, 0, job.halfHeight());
}

void RotateSecondHalf(const RotateJob& job) {
  const std::lock_guard lock(SecondHalfLock);
  RotateRowsPlain(job, job.halfHeight() + 1, job.turn.outHeight - 1);
}

// Starts the first half on a thread of its own. A thread that does not run: the half was computed
// here.
std::thread StartFirstHalf(const RotateJob& job) {
  if (int64_t{job.turn.outWidth} * job.turn.outHeight >= kThreadWorthPixels) {
    try {
      return std::thread([&job] { RotateFirstHalf(job); });
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): no thread to be had
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch): no room for a thread
    }
  }
  RotateFirstHalf(job);
  return {};
}

}  // namespace

int32_t RotateImage(const ImageRec* source, ImageRec* target, const RowSpans* spans,
                    const Turn& turn, const uint8_t* fill) {
  if (source == nullptr || target == nullptr || spans == nullptr || fill == nullptr) {
    return BAD_ARGUMENT;
  }
  int32_t status = Imgbuf_Check(source);
  if (status != STATUS_OK) return status;
  if (!IsPossibleTurn(*source, *spans, turn)) return BAD_ARGUMENT;

  if (settings.ImageNum == 0) return STATUS_OK;
  const int32_t depth = source->bitsPerPixel;
  if (depth != 1 && depth != 8 && depth != 24) return STATUS_OK;

  ScratchImage output;
  status = Imgbuf_New(output.rec(), turn.outWidth, turn.outHeight, depth, 0);
  if (status != STATUS_OK) return status;

  RotateJob job{*source, *output.rec(), *spans, turn, fill, {}};
  const int32_t mostSteps = std::max(job.halfWidth(), job.halfHeight());
  if (!job.steps.Build(turn.angle, static_cast<size_t>(mostSteps) + 11)) return OUT_OF_MEMORY;

  std::thread firstHalf = StartFirstHalf(job);
  RotateSecondHalf(job);
  if (firstHalf.joinable()) firstHalf.join();

  *target = output.Take();
  return STATUS_OK;
}

}  // namespace vorlanepic
