#include "deskew/turn_and_cut.h"

#include "deskew/image_region.h"
#include "frame/scratch.h"
#include "frame/settings.h"

namespace vorlanepic::deskew {
namespace {

ImageRegion RegionOf(const ContentBounds& bounds) {
  return {bounds.left, bounds.top, bounds.right - bounds.left + 1, bounds.bottom - bounds.top + 1};
}

int32_t FindTurnedContent(const ImageRec& turned, const TurnAndCut& how, PageRecords* page) {
  page->turnedWidth = turned.width;
  page->turnedHeight = turned.height;
  page->stage = PageStage::kTurned;
  frame::settings.CropPixelFlag = how.cropPixelFlag;
  const ContentSearch search{static_cast<uint32_t>(frame::settings.SearchLimitNum),
                             static_cast<uint32_t>(frame::settings.CropPixelNum), how.threshold,
                             kSearchRowsAndColumns};
  return FindContentBounds(&turned, search, &page->turnedContent);
}

}  // namespace

int32_t TurnAndCutSet(std::span<const ImageRec> sources, const TurnAndCut& how,
                      std::span<ImageRec> results, PageRecords* page, int32_t* release) {
  for (size_t i = 0; i < sources.size(); ++i) {
    frame::ScratchImage turned;
    int32_t status = RotateImageRegion(&sources[i], turned.rec(), how.fill, RegionOf(how.content),
                                       how.degrees, how.interpolation);
    if (status != STATUS_OK) return status;
    if (i == 0) {
      status = FindTurnedContent(*turned.rec(), how, page);
      if (status != STATUS_OK) return status;
    }
    status = CopyImageRegion(turned.rec(), &results[i], RegionOf(page->turnedContent));
    if (status != STATUS_OK) return status;
    *release = turned.Release();
  }
  page->stage = PageStage::kCropped;
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
