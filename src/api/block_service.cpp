// Mark-sheet blocks: the markers, the labelling functions and the block set.
#include <algorithm>
#include <cmath>

#include "frame/arithmetic.h"
#include "omr/block_marking.h"
#include "omr/block_set.h"
#include "omr/selection_order.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;
using namespace vorlanepic::omr;

namespace {

template <typename Foreground>
int32_t MarkForHost(const Foreground& foreground, const GreyView& image,
                    const BlockMarkParam& param, const BlockRect& rect, BlockSetRec* set) {
  const SearchRect search{rect.x, rect.y, rect.w, rect.h};
  return MarkBlocks(foreground, image, param, search, 0, set);
}

// What the labelling functions return.
enum { LABEL_FAILED = 0, LABEL_DONE = 1 };

int32_t Label(const GreyView& image, const SearchRect& rect, int32_t BlockRec::*key,
              BlockSetRec* set) {
  if (image.pixels == nullptr || set == nullptr) return LABEL_FAILED;
  if (MarkBlocks(NonZeroPixels{}, image, BlockMarkParam{}, rect, 0, set) != STATUS_OK) {
    return LABEL_FAILED;
  }
  SelectionSort(set->blocks, set->count, key);
  return LABEL_DONE;
}

int32_t LabelImage(const GreyView& image, int32_t BlockRec::*key, BlockSetRec* set) {
  return Label(image, {0, 0, image.width, image.height}, key, set);
}

int32_t LabelInArea(const GreyView& image, const LabelArea* area, int32_t BlockRec::*key,
                    BlockSetRec* set) {
  if (area == nullptr) return LABEL_FAILED;
  const SearchRect rect{area->left, area->top, int64_t{area->right} - area->left + 1,
                        int64_t{area->bottom} - area->top + 1};
  return Label(image, rect, key, set);
}

}  // namespace

int32_t VORLANEPIC_CDECL ImageBlockMarkHorEx(const uint8_t* image, int32_t height, int32_t width,
                                             const BlockMarkParam* param, const BlockRect* rect,
                                             BlockSetRec* set) noexcept {
  if (image == nullptr || param == nullptr || rect == nullptr || set == nullptr) {
    return BAD_ARGUMENT;
  }
  return MarkForHost(DarkPixels{param->threshold}, {image, height, width}, *param, *rect, set);
}

int32_t VORLANEPIC_CDECL BWBlockMarkHorEx(const uint8_t* image, int32_t height, int32_t width,
                                          const BlockMarkParam* param, const BlockRect* rect,
                                          BlockSetRec* set) noexcept {
  if (image == nullptr || param == nullptr || rect == nullptr || set == nullptr) {
    return BAD_ARGUMENT;
  }
  return MarkForHost(NonZeroPixels{}, {image, height, width}, *param, *rect, set);
}

int32_t VORLANEPIC_CDECL bw_label_center(const uint8_t* image, int32_t height, int32_t width,
                                         BlockSetRec* set) noexcept {
  return LabelImage({image, height, width}, &BlockRec::centerX, set);
}

int32_t VORLANEPIC_CDECL bw_label_left(const uint8_t* image, int32_t height, int32_t width,
                                       BlockSetRec* set) noexcept {
  return LabelImage({image, height, width}, &BlockRec::left, set);
}

int32_t VORLANEPIC_CDECL bw_label_center_area(const uint8_t* image, int32_t height, int32_t width,
                                              const LabelArea* area, BlockSetRec* set) noexcept {
  return LabelInArea({image, height, width}, area, &BlockRec::centerX, set);
}

int32_t VORLANEPIC_CDECL bw_label_left_area(const uint8_t* image, int32_t height, int32_t width,
                                            const LabelArea* area, BlockSetRec* set) noexcept {
  return LabelInArea({image, height, width}, area, &BlockRec::left, set);
}

int32_t VORLANEPIC_CDECL overlap_len(int32_t a1, int32_t a2, int32_t b1, int32_t b2) noexcept {
  if (a1 > a2 || b1 > b2) return 0;
  const int32_t first = std::max(a1, b1);
  const int32_t last = std::min(a2, b2);
  return first <= last ? frame::WrapAdd(frame::WrapSub(last, first), 1) : 0;
}

double VORLANEPIC_CDECL block_distance(const BlockRec* blockA, const BlockRec* blockB) noexcept {
  if (blockA == nullptr || blockB == nullptr) return 0.0;
  const int32_t columns = overlap_len(blockA->left, blockA->right, blockB->left, blockB->right);
  const int32_t rows = overlap_len(blockA->top, blockA->bottom, blockB->top, blockB->bottom);
  return std::sqrt(static_cast<double>(
      frame::WrapAdd(frame::WrapMul(columns, columns), frame::WrapMul(rows, rows))));
}

int32_t VORLANEPIC_CDECL DestoryBlockSetRec(BlockSetRec* set) noexcept {
  if (set == nullptr) return BAD_ARGUMENT;
  ReleaseBlocks(set);
  return STATUS_OK;
}
