#include "deskew/border_tracing.h"

#include "analysis/border_scan.h"

namespace vorlanepic::deskew {

int32_t TraceBorders(const frame::Settings& settings, const ImageRec& image, PageRecords* page) {
  int32_t status = analysis::FindBand(settings, image, page->levels.low, &page->band);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kBand;

  analysis::BorderTraces& traces = page->traces;
  status = analysis::ScanRows(settings, image, page->band, page->levels, &traces.left,
                              &traces.right, &page->extremes);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kRowScan;

  status = analysis::ScanColumns(settings, image, page->band, page->levels, &traces.top,
                                 &traces.bottom, &page->extremes);
  if (status != STATUS_OK) return status;
  page->stage = PageStage::kColumnScan;
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
