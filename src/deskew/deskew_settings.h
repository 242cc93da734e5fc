// The settings of the deskew-and-crop methods, from a parameter record or from its profile.
#pragma once

#include <cstdint>

#include "frame/settings.h"
#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// What a profile without keys gives.
inline constexpr DeskewCropParam kDefaultParam{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};

// Assigns the settings of a page that is straightened without any being asked for: those of method
// 1 with their defaults.
void AssignPageSettings(frame::Settings* settings);

// The method that `param` asks for: 1 or 3, anything else is method 2.
int32_t ChosenMethod(const DeskewCropParam& param);

// Assign the settings of methods 1 and 3, or of method 2. False when one of them is out of range;
// they stay assigned.
bool AssignPrunedRotationSettings(const DeskewCropParam& param, int32_t method,
                                  frame::Settings* settings);
bool AssignDeskewCropSettings(const DeskewCropParam& param, frame::Settings* settings);

// Assigns the settings of the line-guided deskew, which are not range-checked, and returns the
// limits of its bar in pixels at 200 dots per inch.
omr::BarLimits AssignLineGuidedSettings(const DeskewCropParam& param, frame::Settings* settings);

}  // namespace vorlanepic::deskew
