#include "deskew/deskew_settings.h"

#include "frame/profile_reader.h"
#include "frame/settings.h"

namespace vorlanepic::deskew {
namespace {

constexpr char kMethodSection[] = "ImageDeskew";
constexpr char kPrunedSection[] = "ImageDeskew1";
constexpr char kCropSection[] = "ImageDeskew2";
constexpr char kLineSection[] = "ImageDeskewLine";

// One section of the profile that a parameter record names.
class ProfileSection {
 public:
  ProfileSection(const char* path, const char* name) : path_(path), name_(name) {}

  int32_t Int(const char* key, int32_t defaultValue) const {
    return frame::ReadProfileInt(name_, key, defaultValue, path_);
  }

  // Real numbers are short: of more than three characters the first two count.
  double Real(const char* key, const char* defaultText) const {
    constexpr uint32_t kCharacters = 3;
    char text[kCharacters + 1] = {};
    frame::ReadProfileText(name_, key, defaultText, text, kCharacters, path_);
    return frame::ParseDecimal(text);
  }

 private:
  const char* path_;
  const char* name_;
};

bool IsProfileUsed(const DeskewCropParam& param) { return param.useProfile == 1; }

// False also for a value that is not a number.
template <typename T>
bool IsWithin(T value, T smallest, T largest) {
  return value >= smallest && value <= largest;
}

}  // namespace

int32_t ChosenMethod(const DeskewCropParam& param) {
  if (!IsProfileUsed(param)) return param.DeskewMethod;
  return ProfileSection(param.profilePath, kMethodSection).Int("DeskewMethod", 2);
}

bool AssignPrunedRotationSettings(const DeskewCropParam& param, int32_t method) {
  frame::settings.SegmentMaxGap = 6;
  frame::settings.SegmentPointNum = 6;
  frame::settings.SegmentMinPointNum = 4;
  frame::settings.ExtremeAnchorFlag = method == 3 ? 1.0 : 0.0;
  frame::settings.BorderMethod = method;
  if (IsProfileUsed(param)) {
    const ProfileSection profile(param.profilePath, kPrunedSection);
    frame::settings.SearchBorderPixelNum = profile.Int("SearchBorderPixelNum", 2);
    frame::settings.ToLineMixDis = profile.Int("ToLineMixDis", 5);
    frame::settings.ToLineDistance = profile.Int("ToLineDistance", 8);
    frame::settings.parallel = profile.Real("parallel", "3.5");
    frame::settings.perpendicular = profile.Real("perpendicular", "2");
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

bool AssignDeskewCropSettings(const DeskewCropParam& param) {
  frame::settings.SegmentMaxGap = 1;
  frame::settings.SegmentPointNum = 1;
  frame::settings.SegmentMinPointNum = 1;
  if (IsProfileUsed(param)) {
    const ProfileSection profile(param.profilePath, kCropSection);
    frame::settings.SearchBorderPixelNum = profile.Int("SearchBorderPixelNum", 2);
    frame::settings.SegmentLen = profile.Int("SegmentLen", 10);
    frame::settings.SearchLimitNum = profile.Int("SearchLimitNum", 3);
    frame::settings.PixelNum = profile.Int("PixelNum", 5);
    frame::settings.ToLineDistance = profile.Int("ToLineDistance", 8);
    frame::settings.CropPixelNum = profile.Int("CropPixelNum", 8);
    frame::settings.CropPixelFlag = profile.Int("CropPixelFlag", 0);
    frame::settings.AngleMode = profile.Int("AngleMode", 0);
    frame::settings.GroupAngle = profile.Real("GroupAngle", "2");
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

BarLimits AssignLineGuidedSettings(const DeskewCropParam& param) {
  if (!IsProfileUsed(param)) {
    frame::settings.SearchLimitNum = param.SearchLimitNum;
    frame::settings.PixelNum = param.PixelNum;
    frame::settings.CropPixelNum = param.CropPixelNum;
    return {600, 4, 20};
  }
  const ProfileSection profile(param.profilePath, kLineSection);
  frame::settings.SearchLimitNum = profile.Int("SearchLimitNum", 3);
  frame::settings.PixelNum = profile.Int("PixelNum", 5);
  frame::settings.CropPixelNum = profile.Int("CropPixelNum", 200);
  return {profile.Int("LineMixLength", 500), profile.Int("LineMinThickness", 4),
          profile.Int("LineMaxThickness", 20)};
}

}  // namespace vorlanepic::deskew
