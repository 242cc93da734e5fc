// Drawn pages as device-independent images.
#pragma once

#include <cstdint>

#include "support/guarded_memory.h"
#include "support/page_drawing.h"
#include "vorlanepic/imgbuf.h"

namespace vorlanepic::testing {

// A device-independent image with storage of its own between guards.
class TestDib {
 public:
  // The picture of `image`, bottom row first. `pixelsPerMetre` is its horizontal resolution.
  explicit TestDib(const TestImage& image, int32_t pixelsPerMetre = 0);
  TestDib(const TestDib&) = delete;
  TestDib(TestDib&&) noexcept = default;
  TestDib& operator=(const TestDib&) = delete;

  DibRec* rec() { return &rec_; }
  const DibRec* rec() const { return &rec_; }

  // Overwrites a field of the information header.
  void SetField(int32_t offset, int32_t value);

 private:
  GuardedBytes fileHeader_;
  GuardedBytes infoHeader_;
  GuardedBytes bits_;
  DibRec rec_{};
};

// A field of the information header.
int32_t DibField(const DibRec& dib, int32_t offset);

// Whether the picture of `dib`, as it stands in memory, is that of `image` row by row.
bool SameRows(const DibRec& dib, const ImageRec& image);

}  // namespace vorlanepic::testing
