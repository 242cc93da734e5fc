#include "rotate/rotate_image.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "frame/lock.h"
#include "frame/scratch.h"
#include "frame/settings.h"
#include "rotate/plain_rotation.h"
#include "rotate/rotate_job.h"
#include "rotate/tiled_rotation.h"

namespace vorlanepic::rotate {
namespace {

// Each half of an output is computed under its own lock: calls that overlap take turns.
frame::Lock FirstHalfLock;
frame::Lock SecondHalfLock;

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

// Calls rotateRows(first, last) for the output's upper rows up to the centre row, and for the rest,
// each under its half's lock and, where it pays, each on its own thread.
template <typename RotateRows>
void RotateHalves(const RotateJob& job, RotateRows rotateRows) {
  const auto firstHalf = [&] {
    const std::lock_guard lock(FirstHalfLock);
    rotateRows(0, job.halfHeight());
  };
  const auto secondHalf = [&] {
    const std::lock_guard lock(SecondHalfLock);
    rotateRows(job.halfHeight() + 1, job.turn.outHeight - 1);
  };

  std::thread worker;
  if (int64_t{job.turn.outWidth} * job.turn.outHeight >= kThreadWorthPixels) {
    try {
      worker = std::thread(firstHalf);
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): no thread to be had
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch): no room for a thread
    }
  }
  if (!worker.joinable()) firstHalf();
  secondHalf();
  if (worker.joinable()) worker.join();
}

// Fills the target. False when there is no memory for the tables.
bool Rotate(RotateJob& job) {
  const auto mostSteps = static_cast<size_t>(std::max(job.halfWidth(), job.halfHeight()));
  if (!job.steps.Build(job.turn.angle, mostSteps + kMostNeighbours)) return false;

  if (!TiledRotation::Suits(job)) {
    RotateHalves(job, [&](int32_t first, int32_t last) { RotateRowsPlain(job, first, last); });
    return true;
  }
  TiledRotation rotation(job);
  if (!rotation.Build()) return false;
  RotateHalves(job, [&](int32_t first, int32_t last) { rotation.RotateRows(first, last); });
  return true;
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

  if (frame::settings.ImageNum == 0) return STATUS_OK;
  const int32_t depth = source->bitsPerPixel;
  if (depth != 1 && depth != 8 && depth != 24) return STATUS_OK;

  frame::ScratchImage output;
  status = Imgbuf_New(output.rec(), turn.outWidth, turn.outHeight, depth, 0);
  if (status != STATUS_OK) return status;

  RotateJob job{*source, *output.rec(), *spans, turn, fill, {}};
  if (!Rotate(job)) return OUT_OF_MEMORY;

  *target = output.Take();
  return STATUS_OK;
}

}  // namespace vorlanepic::rotate
