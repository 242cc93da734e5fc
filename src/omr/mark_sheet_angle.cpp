#include <cmath>

#include "frame/settings.h"
#include "frame/trigonometry.h"
#include "omr/bar_records.h"
#include "omr/block_marking.h"
#include "omr/dib_to_gray.h"
#include "omr/reference_bar.h"
#include "omr/sheet_area.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {
namespace {

// What the angle functions return.
enum { BAR_FOUND = 0, BAR_NOT_FOUND = -1 };

// Radians by which the two edges of a bar may differ, in single precision.
constexpr float kEdgeAgreement = 0.01F;

// A block set that is released with its scope.
class ScratchBlocks {
 public:
  ScratchBlocks() = default;
  ScratchBlocks(const ScratchBlocks&) = delete;
  ScratchBlocks& operator=(const ScratchBlocks&) = delete;
  ~ScratchBlocks() { DestoryBlockSetRec(&set_); }

  BlockSetRec* set() { return &set_; }

 private:
  BlockSetRec set_{};
};

// Marks the dark blocks of the sheet that may be long enough for a bar. What can't be marked can't
// be chosen, so a failure needs no answer of its own.
void MarkLongBlocks(const GreyView& image, int32_t threshold, const SheetArea& sheet,
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

// Sets *angle only where a bar is found.
int32_t MeasureBar(const GreyView& image, int32_t threshold, const BarLimits& limits,
                   double* angle) {
  if (angle == nullptr) return BAR_NOT_FOUND;
  BarRecords scratch;
  BarRecords& records =
      frame::settings.barRecords != nullptr ? *frame::settings.barRecords : scratch;
  records = {};
  const int32_t status = FindBarAngle(image, threshold, limits, &records);
  if (status == BAR_FOUND) *angle = records.angle;
  return status;
}

}  // namespace
}  // namespace vorlanepic::omr

using namespace vorlanepic;
using namespace vorlanepic::omr;

int32_t VORLANEPIC_CDECL get_angle_omr(const uint8_t* pixels, int32_t height, int32_t width,
                                       int32_t threshold, int32_t minLength, int32_t minThickness,
                                       int32_t maxThickness, double* angle) noexcept {
  if (pixels == nullptr || height < 1 || width < 1) return BAR_NOT_FOUND;
  return MeasureBar({pixels, height, width}, threshold, {minLength, minThickness, maxThickness},
                    angle);
}

int32_t VORLANEPIC_CDECL GetAngleOMR(const DibRec* image, int32_t threshold, int32_t minLength,
                                     int32_t minThickness, int32_t maxThickness,
                                     double* angle) noexcept {
  GreyImage grey;
  if (!DibToGray(image, &grey)) return BAR_NOT_FOUND;
  return MeasureBar(grey.view, threshold, {minLength, minThickness, maxThickness}, angle);
}
