#include "deskew/deskew_settings.h"

#include "frame/profile_reader.h"
#include "frame/settings.h"

namespace vorlanepic::deskew {
namespace {

constexpr char kMethodSection[] = "ImageDeskew";
constexpr char kPrunedSection[] = "ImageDeskew1";
constexpr char kCropSection[] = "ImageDeskew2";
constexpr char kLineSection[] = "ImageDeskewLine";

// One section of a profile.
class ProfileSection {
 public:
  ProfileSection(const frame::Profile& profile, const char* name)
      : profile_(profile), name_(name) {}

  int32_t Int(const char* key, int32_t defaultValue) const {
    return profile_.Int(name_, key, defaultValue);
  }

  // Real numbers are short: of more than three characters the first two count.
  double Real(const char* key, const char* defaultText) const {
    constexpr size_t kCharacters = 3;
    char text[kCharacters + 1];
    const size_t length = profile_.Text(name_, key, defaultText, text, kCharacters);
    return frame::ParseDecimal({text, length});
  }

 private:
  const frame::Profile& profile_;
  const char* name_;
};

bool IsProfileUsed(const DeskewCropParam& param) { return param.useProfile == 1; }

// False also for a value that is not a number.
template <typename T>
bool IsWithin(T value, T smallest, T largest) {
  return value >= smallest && value <= largest;
}

}  // namespace

int32_t LoadProfile(const DeskewCropParam& param, frame::Profile* profile) {
  if (!IsProfileUsed(param)) return STATUS_OK;
  const frame::FileRead read = profile->Load(param.profilePath);
  return read == frame::FileRead::kNoMemory ? OUT_OF_MEMORY : STATUS_OK;
}

int32_t ChosenMethod(const DeskewCropParam& param, const frame::Profile& profile) {
  if (!IsProfileUsed(param)) return param.DeskewMethod;
  return ProfileSection(profile, kMethodSection).Int("DeskewMethod", 2);
}

bool AssignPrunedRotationSettings(const DeskewCropParam& param, const frame::Profile& profile,
                                  int32_t method) {
  frame::settings.SegmentMaxGap = 6;
  frame::settings.SegmentPointNum = 6;
  frame::settings.SegmentMinPointNum = 4;
  frame::settings.ExtremeAnchorFlag = method == 3 ? 1.0 : 0.0;
  frame::settings.BorderMethod = method;
  if (IsProfileUsed(param)) {
    const ProfileSection section(profile, kPrunedSection);
    frame::settings.SearchBorderPixelNum = section.Int("SearchBorderPixelNum", 2);
    frame::settings.ToLineMixDis = section.Int("ToLineMixDis", 5);
    frame::settings.ToLineDistance = section.Int("ToLineDistance", 8);
    frame::settings.parallel = section.Real("parallel", "3.5");
    frame::settings.perpendicular = section.Real("perpendicular", "2");
  } else {
    frame::settings.SearchBorderPixelNum = param.SearchBorderPixelNum;
    frame::settings.ToLineMixDis = param.ToLineMixDis;
    frame::settings.ToLineDistance = param.ToLineDistance;
    frame::settings.parallel = param.parallel;
    frame::settings.perpendicular = param.perpendicular;
  }
  return IsWithin(frame::settings.SearchBorderPixelNum, 1, 10) &&
         IsWithin(frame::settings.ToLineMixDis, 1, 20) &&
         IsWithin(frame::settings.ToLineDistance, 1, 20) &&
         IsWithin(frame::settings.parallel, 0.0, 5.0) &&
         IsWithin(frame::settings.perpendicular, 0.0, 5.0);
}

bool AssignDeskewCropSettings(const DeskewCropParam& param, const frame::Profile& profile) {
  frame::settings.SegmentMaxGap = 1;
  frame::settings.SegmentPointNum = 1;
  frame::settings.SegmentMinPointNum = 1;
  if (IsProfileUsed(param)) {
    const ProfileSection section(profile, kCropSection);
    frame::settings.SearchBorderPixelNum = section.Int("SearchBorderPixelNum", 2);
    frame::settings.SegmentLen = section.Int("SegmentLen", 10);
    frame::settings.SearchLimitNum = section.Int("SearchLimitNum", 3);
    frame::settings.PixelNum = section.Int("PixelNum", 5);
    frame::settings.ToLineDistance = section.Int("ToLineDistance", 8);
    frame::settings.CropPixelNum = section.Int("CropPixelNum", 8);
    frame::settings.CropPixelFlag = section.Int("CropPixelFlag", 0);
    frame::settings.AngleMode = section.Int("AngleMode", 0);
    frame::settings.GroupAngle = section.Real("GroupAngle", "2");
  } else {
    frame::settings.SearchBorderPixelNum = param.SearchBorderPixelNum;
    frame::settings.SegmentLen = param.SegmentLen;
    frame::settings.SearchLimitNum = param.SearchLimitNum;
    frame::settings.PixelNum = param.PixelNum;
    frame::settings.ToLineDistance = param.ToLineDistance;
    frame::settings.CropPixelNum = param.CropPixelNum;
    frame::settings.CropPixelFlag = 0;
    frame::settings.AngleMode = 0;
    frame::settings.GroupAngle = param.GroupAngle;
  }
  return IsWithin(frame::settings.SearchBorderPixelNum, 1, 10) &&
         IsWithin(frame::settings.SegmentLen, 5, 50) &&
         IsWithin(frame::settings.SearchLimitNum, 1, 10) &&
         IsWithin(frame::settings.PixelNum, 1, 20) &&
         IsWithin(frame::settings.ToLineDistance, 1, 20) && frame::settings.CropPixelNum >= 1 &&
         IsWithin(frame::settings.GroupAngle, 1.0, 5.0);
}

BarLimits AssignLineGuidedSettings(const DeskewCropParam& param, const frame::Profile& profile) {
  if (!IsProfileUsed(param)) {
    frame::settings.SearchLimitNum = param.SearchLimitNum;
    frame::settings.PixelNum = param.PixelNum;
    frame::settings.CropPixelNum = param.CropPixelNum;
    return {600, 4, 20};
  }
  const ProfileSection section(profile, kLineSection);
  frame::settings.SearchLimitNum = section.Int("SearchLimitNum", 3);
  frame::settings.PixelNum = section.Int("PixelNum", 5);
  frame::settings.CropPixelNum = section.Int("CropPixelNum", 200);
  return {section.Int("LineMixLength", 500), section.Int("LineMinThickness", 4),
          section.Int("LineMaxThickness", 20)};
}

}  // namespace vorlanepic::deskew
