#include "omr/block_marking.h"
#include "omr/selection_order.h"

namespace vorlanepic::omr {
namespace {

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
}  // namespace vorlanepic::omr

using namespace vorlanepic;
using namespace vorlanepic::omr;

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
