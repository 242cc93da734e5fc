// What the stages of the pruned rotation find on a page.
#pragma once

#include "deskew/deskew_settings.h"
#include "deskew/page_records.h"
#include "deskew/pruned_rotation.h"

namespace vorlanepic::bench {

// The settings of a straightening that is told none.
inline frame::Settings PageSettings() {
  frame::Settings settings{};
  deskew::AssignPageSettings(&settings);
  return settings;
}

// The records of a run that ends with the angle; check their stage.
inline deskew::PageRecords FindPage(const ImageRec& source) {
  frame::Settings settings = PageSettings();
  settings.AngleOnlyFlag = 1;
  constexpr uint8_t kBlack[3] = {0, 0, 0};
  deskew::PageRecords page;
  double angle = 0;
  (void)deskew::RunPrunedRotation(settings, std::span(&source, 1),
                                  {INTERP_NEAREST, 0, 0, 0, kBlack}, &angle, {}, &page);
  return page;
}

}  // namespace vorlanepic::bench
