// The stages that both image services begin with: band, row scan and column scan.
#pragma once

#include <cstdint>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// Finds the band and the traces of the four sides at `page->levels` and notes each stage that
// succeeded. Returns STATUS_OK or the status of the first stage that failed.
int32_t TraceBorders(const frame::Settings& settings, const ImageRec& image, PageRecords* page);

}  // namespace vorlanepic::deskew
