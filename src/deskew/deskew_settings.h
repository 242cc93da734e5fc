// The settings of the deskew-and-crop methods, from a parameter record or from its profile.
#pragma once

#include <cstdint>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// The method that `param` asks for: 1 or 3, anything else is method 2.
int32_t ChosenMethod(const DeskewCropParam& param);

// Assign the settings of methods 1 and 3, or of method 2. False when one of them is out of range;
// they stay assigned.
bool AssignPrunedRotationSettings(const DeskewCropParam& param, int32_t method);
bool AssignDeskewCropSettings(const DeskewCropParam& param);

// The smallest and largest length and thickness of the bar that guides a form, in pixels at 200
// dots per inch.
struct BarLimits {
  int32_t minLength;
  int32_t minThickness;
  int32_t maxThickness;
};

// Assigns the settings of the line-guided deskew, which are not range-checked, and returns the
// limits of its bar.
BarLimits AssignLineGuidedSettings(const DeskewCropParam& param);

}  // namespace vorlanepic::deskew
