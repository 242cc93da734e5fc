#include "deskew/turn_and_cut.h"

#include "deskew/image_region.h"
#include "frame/scratch.h"

namespace vorlanepic::deskew {
namespace {

int32_t FindTurnedContent(const frame::Settings& settings, const ImageRec& turned,
                          const TurnAndCut& how, PageRecords* page) {
  page->turnedWidth = turned.width;
  page->turnedHeight = turned.height;
  page->stage = PageStage::kTurned;
  const ContentSearch search{static_cast<uint32_t>(settings.SearchLimitNum),
                             static_cast<uint32_t>(settings.CropPixelNum), how.threshold,
                             kSearchRowsAndColumns, settings.CropPixelFlag == 1};
  return FindContentBounds(turned, search, &page->turnedContent);
}

}  // namespace

int32_t TurnAndCutSet(const frame::Settings& settings, std::span<const ImageRec> sources,
                      const TurnAndCut& how, std::span<ImageRec> results, PageRecords* page,
                      int32_t* release) {
  for (size_t i = 0; i < sources.size(); ++i) {
    frame::ScratchImage turned;
    int32_t status = RotateImageRegion(&sources[i], turned.rec(), how.fill, how.content,
                                       how.degrees, how.interpolation);
    if (status != STATUS_OK) return status;
    if (i == 0) {
      status = FindTurnedContent(settings, *turned.rec(), how, page);
      if (status != STATUS_OK) return status;
    }
    status = CopyImageRegion(turned.rec(), &results[i], page->turnedContent);
    if (status != STATUS_OK) return status;
    *release = turned.Release();
  }
  page->stage = PageStage::kCropped;
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
