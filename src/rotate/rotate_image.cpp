#include "rotate/rotate_image.h"

#include <new>
#include <system_error>
#include <thread>

#include "frame/pixel_format.h"
#include "frame/scratch.h"
#include "rotate/rotation.h"

namespace vorlanepic::rotate {
namespace {

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

// Computes the output's upper rows up to the centre row, and the rest, where it pays each on its
// own thread.
void RotateHalves(const Rotation& rotation, const Turn& turn) {
  const int32_t centerRow = (turn.outHeight - 1) >> 1;
  const auto firstHalf = [&] { rotation.RotateRows(0, centerRow); };

  std::thread worker;
  if (int64_t{turn.outWidth} * turn.outHeight >= kThreadWorthPixels) {
    try {
      worker = std::thread(firstHalf);
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): no thread to be had
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch): no room for a thread
    }
  }
  if (!worker.joinable()) firstHalf();
  rotation.RotateRows(centerRow + 1, turn.outHeight - 1);
  if (worker.joinable()) worker.join();
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

  const int32_t depth = source->bitsPerPixel;
  if (!frame::IsPageDepth(depth)) return STATUS_OK;

  frame::ScratchImage output;
  status = Imgbuf_New(output.rec(), turn.outWidth, turn.outHeight, depth, 0);
  if (status != STATUS_OK) return status;

  Rotation rotation(*source, *output.rec(), *spans, turn, fill);
  if (!rotation.Build()) return OUT_OF_MEMORY;
  RotateHalves(rotation, turn);

  *target = output.Take();
  return STATUS_OK;
}

}  // namespace vorlanepic::rotate
