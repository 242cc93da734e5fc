#include "engine/apply/turn_page.h"

#include <algorithm>

#include "engine/apply/page_format.h"
#include "engine/apply/pixel_rows.h"
#include "engine/apply/result_geometry.h"
#include "engine/apply/shares.h"
#include "frame/row_table.h"
#include "rotate/rotation.h"

namespace vorlane::apply {
namespace {

using vorlanepic::rotate::Rotation;
using vorlanepic::rotate::Turn;

// Output pixels below which starting a thread costs more than it saves.
constexpr int64_t kShareWorthPixels = 8192;

// Rows that a thread makes before it widens them to 32 bits: few enough to stay in its cache, and a
// whole tile of the rotation.
constexpr int32_t kBandRows = 16;

// A page as the core wants it: rows one behind the other in memory, top row first. One whose rows
// lie bottom first is taken for its mirror image, which is turned the other way.
struct CorePage {
  ImageRec source{};
  Turn turn{};
  bool isMirrored = false;
};

int32_t SharesOf(const Turn& turn, int32_t threads) {
  const int64_t worth = int64_t{turn.outWidth} * turn.outHeight / kShareWorthPixels;
  const int64_t most = std::min<int64_t>(worth, turn.outHeight);
  return static_cast<int32_t>(std::clamp<int64_t>(most, 1, threads));
}

// The page in the workspace, without its fourth bytes. False when there is no memory.
bool NarrowPage(const vorlane_image& page, int32_t shares, Workspace& space,
                vorlane_image* narrow) {
  const size_t rowBytes = RowBytes(24, page.width);
  if (!space.pixels.Reserve(rowBytes * static_cast<size_t>(page.height))) return false;
  InShares(page.height, std::min(shares, page.height), [&](int32_t, int32_t first, int32_t last) {
    for (int32_t y = first; y <= last; ++y) {
      DropFourthBytes(page.pixels + y * page.stride, page.width,
                      &space.pixels[static_cast<size_t>(y) * rowBytes]);
    }
  });
  *narrow = {space.pixels.data(), static_cast<ptrdiff_t>(rowBytes), page.width, page.height,
             VORLANE_BGR24};
  return true;
}

Turn MirrorTurn(const Turn& turn, int32_t sourceHeight) {
  // The mirrored output's centre row is another one when there is no middle row.
  const SourcePixel centre = PixelBelowCentre(turn, turn.outHeight % 2 == 0 ? 1 : 0);
  Turn mirrored = turn;
  mirrored.angle = -turn.angle;
  mirrored.quarterTurns = (4 - turn.quarterTurns) % 4;
  mirrored.centerX = centre.x;
  mirrored.centerY = sourceHeight - 1 - centre.y;
  return mirrored;
}

// Lays the core's records around the page. The core's records know no pixels that are only read; it
// reads these.
bool LayOut(const vorlane_image& page, const Turn& turn, Workspace& space, CorePage* core) {
  const auto rows = static_cast<size_t>(page.height);
  if (!space.sourceRows.Reserve(rows) || !space.region.spans.Reserve(rows)) return false;

  const int32_t bits = FormatOf(page.format).bitsPerPixel;
  core->isMirrored = page.stride < 0 && page.height > 1;
  core->turn = core->isMirrored ? MirrorTurn(turn, page.height) : turn;
  const uint8_t* lowest = core->isMirrored ? page.pixels + (page.height - 1) * page.stride  //
                                           : page.pixels;
  ImageRec& source = core->source;
  source.width = page.width;
  source.height = page.height;
  source.bitsPerPixel = bits;
  source.lineBytes = page.height == 1 ? static_cast<int32_t>(RowBytes(bits, page.width))
                                      : static_cast<int32_t>(std::abs(page.stride));
  source.imageBytes = source.lineBytes * page.height;
  source.pixels = const_cast<uint8_t*>(lowest);
  vorlanepic::frame::LayRows(space.sourceRows.data(), &source);

  space.region.top = 0;
  space.region.bottom = page.height - 1;
  std::fill_n(space.region.spans.data(), rows, vorlanepic::rotate::RowSpan{0, page.width - 1});
  return true;
}

// Where output row y of the core belongs.
uint8_t* ResultRow(const CorePage& core, const vorlane_result& result, int32_t y) {
  return result.pixels + (core.isMirrored ? core.turn.outHeight - 1 - y : y) * result.stride;
}

ImageRec TargetOf(const CorePage& core, Workspace& space) {
  ImageRec target{};
  target.width = core.turn.outWidth;
  target.height = core.turn.outHeight;
  target.bitsPerPixel = core.source.bitsPerPixel;
  target.lineBytes = static_cast<int32_t>(RowBytes(target.bitsPerPixel, target.width));
  target.rows = space.targetRows.data();
  return target;
}

vorlane_status TurnInPlace(const CorePage& core, const std::array<uint8_t, 3>& fill, int32_t shares,
                           Workspace& space, const vorlane_result& result) {
  for (int32_t y = 0; y < core.turn.outHeight; ++y) {
    space.targetRows[static_cast<size_t>(y)] = ResultRow(core, result, y);
  }
  const ImageRec target = TargetOf(core, space);
  Rotation rotation(core.source, target, space.region, core.turn, fill.data());
  if (!rotation.Build()) return VORLANE_NO_MEMORY;
  InShares(core.turn.outHeight, shares,
           [&](int32_t, int32_t first, int32_t last) { rotation.RotateRows(first, last); });
  return VORLANE_OK;
}

// By way of bands of 24 bits, one a share.
vorlane_status TurnWidening(const CorePage& core, const std::array<uint8_t, 3>& fill,
                            int32_t shares, Workspace& space, const vorlane_result& result) {
  const ImageRec target = TargetOf(core, space);
  const auto rowBytes = static_cast<size_t>(target.lineBytes);
  if (!space.bands.Reserve(rowBytes * kBandRows * static_cast<size_t>(shares))) {
    return VORLANE_NO_MEMORY;
  }
  Rotation rotation(core.source, target, space.region, core.turn, fill.data());
  if (!rotation.Build()) return VORLANE_NO_MEMORY;
  InShares(target.height, shares, [&](int32_t share, int32_t first, int32_t last) {
    uint8_t* band = &space.bands[rowBytes * kBandRows * static_cast<size_t>(share)];
    for (int32_t top = first; top <= last; top += kBandRows) {
      const int32_t bottom = std::min(top + kBandRows - 1, last);
      for (int32_t y = top; y <= bottom; ++y) {
        target.rows[y] = band + static_cast<size_t>(y - top) * rowBytes;
      }
      rotation.RotateRows(top, bottom);
      for (int32_t y = top; y <= bottom; ++y) {
        AddFourthBytes(target.rows[y], target.width, ResultRow(core, result, y));
      }
    }
  });
  return VORLANE_OK;
}

}  // namespace

vorlane_status TurnPage(const vorlane_image& page, const Turn& turn,
                        const std::array<uint8_t, 3>& fill, int32_t threads, Workspace& space,
                        const vorlane_result& result) {
  const int32_t shares = SharesOf(turn, threads);
  const bool isWide = FormatOf(page.format).bitsPerPixel == 32;
  vorlane_image readable = page;
  if (isWide && !NarrowPage(page, shares, space, &readable)) return VORLANE_NO_MEMORY;

  CorePage core;
  if (!LayOut(readable, turn, space, &core)) return VORLANE_NO_MEMORY;
  if (!space.targetRows.Reserve(static_cast<size_t>(turn.outHeight))) return VORLANE_NO_MEMORY;
  return isWide ? TurnWidening(core, fill, shares, space, result)
                : TurnInPlace(core, fill, shares, space, result);
}

}  // namespace vorlane::apply
