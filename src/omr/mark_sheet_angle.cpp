#include "omr/mark_sheet_angle.h"

#include <cmath>

#include "frame/trigonometry.h"
#include "omr/block_marking.h"
#include "omr/block_set.h"
#include "omr/dib_to_gray.h"
#include "omr/reference_bar.h"
#include "omr/sheet_area.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {
namespace {

// Radians by which the two edges of a bar may differ, in single precision.
constexpr float kEdgeAgreement = 0.01F;

// A block set that is released with its scope.
class ScratchBlocks {
 public:
  ScratchBlocks() = default;
  ScratchBlocks(const ScratchBlocks&) = delete;
  ScratchBlocks& operator=(const ScratchBlocks&) = delete;
  ~ScratchBlocks() { ReleaseBlocks(&set_); }

  BlockSetRec* set() { return &set_; }

 private:
  BlockSetRec set_{};
};

// Marks the dark blocks of the sheet that may be long enough for a bar. What can't be marked can't
// be chosen, so a failure needs no answer of its own.
void MarkLongBlocks(const GreyView& image, int32_t threshold, const frame::PixelRect& sheet,
                    int32_t minLength, BlockSetRec* set) {
  const SearchRect rect{sheet.left, sheet.top, int64_t{sheet.right} - sheet.left + 1,
                        int64_t{sheet.bottom} - sheet.top + 1};
  MarkBlocks(DarkPixels{static_cast<uint8_t>(threshold)}, image, BlockMarkParam{}, rect, minLength,
             set);
}

bool AngleOfEdges(BarRecords* records) {
  const double first = frame::ArcTangent(records->lines.first.slope);
  const double second = frame::ArcTangent(records->lines.second.slope);
  records->angle = (first + second) * 0.5;
  return std::fabs(first - second) <= static_cast<double>(kEdgeAgreement);
}

int32_t FindBarAngle(const GreyView& image, int32_t threshold, const BarLimits& limits,
                     BarRecords* records) {
  if (!FindSheetArea(image, threshold, limits.minLength / 2, &records->sheet)) return BAR_NOT_FOUND;
  records->stage = BarStage::kSheet;

  ScratchBlocks blocks;
  MarkLongBlocks(image, threshold, records->sheet, limits.minLength, blocks.set());
  const BlockRec* bar = SelectReferenceBar(*blocks.set(), limits, records);
  if (bar == nullptr) return BAR_NOT_FOUND;
  records->stage = BarStage::kBar;

  if (!TraceBarEdges(*bar, records)) return BAR_NOT_FOUND;
  records->stage = BarStage::kTraced;

  const auto fit = records->isTall ? FitTallBarEdges : FitWideBarEdges;
  if (!fit(records->samples.span(), &records->lines)) return BAR_NOT_FOUND;
  records->stage = BarStage::kFitted;

  if (!AngleOfEdges(records)) return BAR_NOT_FOUND;
  records->stage = BarStage::kAngle;
  return BAR_FOUND;
}

}  // namespace

int32_t MeasureBar(const GreyView& image, int32_t threshold, const BarLimits& limits,
                   BarRecords* records, double* angle) {
  if (angle == nullptr) return BAR_NOT_FOUND;
  const int32_t status = FindBarAngle(image, threshold, limits, records);
  if (status == BAR_FOUND) *angle = records->angle;
  return status;
}

int32_t MeasureBarOfDib(const DibRec* image, int32_t threshold, const BarLimits& limits,
                        BarRecords* records, double* angle) {
  GreyImage grey;
  if (!DibToGray(image, &grey)) return BAR_NOT_FOUND;
  return MeasureBar(grey.view, threshold, limits, records, angle);
}

}  // namespace vorlanepic::omr
