// The settings of the deskew-and-crop methods, from a parameter record or from its profile.
#pragma once

#include <cstdint>

#include "frame/profile_reader.h"
#include "frame/settings.h"
#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// What a profile without keys gives.
inline constexpr DeskewCropParam kDefaultParam{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};

// Assigns the settings of a page that is straightened without any being asked for: those of method
// 1 with their defaults.
void AssignPageSettings(frame::Settings* settings);

// Reads the profile that `param` asks for into *profile; leaves it alone when it asks for none. A
// file that cannot be read is no failure: every setting then has its default.
// Returns STATUS_OK or OUT_OF_MEMORY.
int32_t LoadProfile(const DeskewCropParam& param, frame::Profile* profile);

// The functions below take the profile that LoadProfile read for `param`.

// The method that `param` asks for: 1 or 3, anything else is method 2.
int32_t ChosenMethod(const DeskewCropParam& param, const frame::Profile& profile);

// Assign the settings of methods 1 and 3, or of method 2. False when one of them is out of range;
// they stay assigned.
bool AssignPrunedRotationSettings(const DeskewCropParam& param, const frame::Profile& profile,
                                  int32_t method, frame::Settings* settings);
bool AssignDeskewCropSettings(const DeskewCropParam& param, const frame::Profile& profile,
                              frame::Settings* settings);

// Assigns the settings of the line-guided deskew, which are not range-checked, and returns the
// limits of its bar in pixels at 200 dots per inch.
omr::BarLimits AssignLineGuidedSettings(const DeskewCropParam& param, const frame::Profile& profile,
                                        frame::Settings* settings);

}  // namespace vorlanepic::deskew
