// Memory that is kept from one page to the next.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
#include "rotate/row_spans.h"

namespace vorlane::apply {

struct Workspace {
  vorlanepic::frame::ScratchArray<uint8_t> pixels;  // the page, in a form that the core reads
  vorlanepic::frame::ScratchArray<uint8_t> bands;   // rows on their way to 32 bits
  vorlanepic::frame::ScratchArray<uint8_t*> sourceRows;
  vorlanepic::frame::ScratchArray<uint8_t*> targetRows;
  vorlanepic::rotate::RowSpans region;
};

// Lets `kept` have room for `size` elements at least; what it held may be gone. False when there is
// no memory.
template <typename T>
[[nodiscard]] bool Reserve(vorlanepic::frame::ScratchArray<T>& kept, size_t size) {
  return kept.size() >= size || kept.Allocate(size);
}

}  // namespace vorlane::apply
