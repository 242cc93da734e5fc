// Bar angle: get_angle_omr and GetAngleOMR. Nothing is shared between calls.
#include "omr/mark_sheet_angle.h"
#include "vorlanepic/vorlanepic.h"

using namespace vorlanepic;

int32_t VORLANEPIC_CDECL get_angle_omr(const uint8_t* pixels, int32_t height, int32_t width,
                                       int32_t threshold, int32_t minLength, int32_t minThickness,
                                       int32_t maxThickness, double* angle) noexcept {
  if (pixels == nullptr || height < 1 || width < 1) return omr::BAR_NOT_FOUND;
  omr::BarRecords records;
  return omr::MeasureBar({pixels, height, width}, threshold,
                         {minLength, minThickness, maxThickness}, &records, angle);
}

int32_t VORLANEPIC_CDECL GetAngleOMR(const DibRec* image, int32_t threshold, int32_t minLength,
                                     int32_t minThickness, int32_t maxThickness,
                                     double* angle) noexcept {
  omr::BarRecords records;
  return omr::MeasureBarOfDib(image, threshold, {minLength, minThickness, maxThickness}, &records,
                              angle);
}
