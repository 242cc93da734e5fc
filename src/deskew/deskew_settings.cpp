#include "deskew/deskew_settings.h"

#include "frame/profile_reader.h"

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

void AssignPageSettings(frame::Settings* settings) {
  settings->ImageNum = 1;
  AssignPrunedRotationSettings(kDefaultParam, 1, settings);
}

bool AssignPrunedRotationSettings(const DeskewCropParam& param, int32_t method,
                                  frame::Settings* settings) {
  settings->SegmentMaxGap = 6;
  settings->SegmentPointNum = 6;
  settings->SegmentMinPointNum = 4;
  settings->ExtremeAnchorFlag = method == 3 ? 1.0 : 0.0;
  settings->BorderMethod = method;
  if (IsProfileUsed(param)) {
    const ProfileSection profile(param.profilePath, kPrunedSection);
    settings->SearchBorderPixelNum = profile.Int("SearchBorderPixelNum", 2);
    settings->ToLineMixDis = profile.Int("ToLineMixDis", 5);
    settings->ToLineDistance = profile.Int("ToLineDistance", 8);
    settings->parallel = profile.Real("parallel", "3.5");
    settings->perpendicular = profile.Real("perpendicular", "2");
  } else {
    settings->SearchBorderPixelNum = param.SearchBorderPixelNum;
    settings->ToLineMixDis = param.ToLineMixDis;
    settings->ToLineDistance = param.ToLineDistance;
    settings->parallel = param.parallel;
    settings->perpendicular = param.perpendicular;
  }
  return IsWithin(settings->SearchBorderPixelNum, 1, 10) &&
         IsWithin(settings->ToLineMixDis, 1, 20) && IsWithin(settings->ToLineDistance, 1, 20) &&
         IsWithin(settings->parallel, 0.0, 5.0) && IsWithin(settings->perpendicular, 0.0, 5.0);
}

bool AssignDeskewCropSettings(const DeskewCropParam& param, frame::Settings* settings) {
  settings->SegmentMaxGap = 1;
  settings->SegmentPointNum = 1;
  settings->SegmentMinPointNum = 1;
  if (IsProfileUsed(param)) {
    const ProfileSection profile(param.profilePath, kCropSection);
    settings->SearchBorderPixelNum = profile.Int("SearchBorderPixelNum", 2);
    settings->SegmentLen = profile.Int("SegmentLen", 10);
    settings->SearchLimitNum = profile.Int("SearchLimitNum", 3);
    settings->PixelNum = profile.Int("PixelNum", 5);
    settings->ToLineDistance = profile.Int("ToLineDistance", 8);
    settings->CropPixelNum = profile.Int("CropPixelNum", 8);
    settings->CropPixelFlag = profile.Int("CropPixelFlag", 0);
    settings->AngleMode = profile.Int("AngleMode", 0);
    settings->GroupAngle = profile.Real("GroupAngle", "2");
  } else {
    settings->SearchBorderPixelNum = param.SearchBorderPixelNum;
    settings->SegmentLen = param.SegmentLen;
    settings->SearchLimitNum = param.SearchLimitNum;
    settings->PixelNum = param.PixelNum;
    settings->ToLineDistance = param.ToLineDistance;
    settings->CropPixelNum = param.CropPixelNum;
    settings->CropPixelFlag = 0;
    settings->AngleMode = 0;
    settings->GroupAngle = param.GroupAngle;
  }
  return IsWithin(settings->SearchBorderPixelNum, 1, 10) && IsWithin(settings->SegmentLen, 5, 50) &&
         IsWithin(settings->SearchLimitNum, 1, 10) && IsWithin(settings->PixelNum, 1, 20) &&
         IsWithin(settings->ToLineDistance, 1, 20) && settings->CropPixelNum >= 1 &&
         IsWithin(settings->GroupAngle, 1.0, 5.0);
}

omr::BarLimits AssignLineGuidedSettings(const DeskewCropParam& param, frame::Settings* settings) {
  if (!IsProfileUsed(param)) {
    settings->SearchLimitNum = param.SearchLimitNum;
    settings->PixelNum = param.PixelNum;
    settings->CropPixelNum = param.CropPixelNum;
    return {600, 4, 20};
  }
  const ProfileSection profile(param.profilePath, kLineSection);
  settings->SearchLimitNum = profile.Int("SearchLimitNum", 3);
  settings->PixelNum = profile.Int("PixelNum", 5);
  settings->CropPixelNum = profile.Int("CropPixelNum", 200);
  return {profile.Int("LineMixLength", 500), profile.Int("LineMinThickness", 4),
          profile.Int("LineMaxThickness", 20)};
}

}  // namespace vorlanepic::deskew
