// Memory that is kept from one page to the next.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/evidence/page_levels.h"
#include "frame/scratch.h"
#include "rotate/row_spans.h"

namespace vorlane::apply {

struct Workspace {
  evidence::PageLevels levels;                      // of the page that is looked at
  vorlanepic::frame::ScratchArray<uint8_t> pixels;  // the page, in a form that the core reads
  vorlanepic::frame::ScratchArray<uint8_t> bands;   // rows on their way to 32 bits
  vorlanepic::frame::ScratchArray<uint8_t*> sourceRows;
  vorlanepic::frame::ScratchArray<uint8_t*> targetRows;
  vorlanepic::rotate::RowSpans region;
};

}  // namespace vorlane::apply
