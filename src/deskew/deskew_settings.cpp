#include "deskew/deskew_settings.h"

#include "frame/profile_reader.h"

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

void AssignPageSettings(frame::Settings* settings) {
  settings->ImageNum = 1;
  AssignPrunedRotationSettings(kDefaultParam, {}, 1, settings);
}

bool AssignPrunedRotationSettings(const DeskewCropParam& param, const frame::Profile& profile,
                                  int32_t method, frame::Settings* settings) {
  settings->SegmentMaxGap = 6;
  settings->SegmentPointNum = 6;
  settings->SegmentMinPointNum = 4;
  settings->ExtremeAnchorFlag = method == 3 ? 1.0 : 0.0;
  settings->BorderMethod = method;
  if (IsProfileUsed(param)) {
    const ProfileSection section(profile, kPrunedSection);
    settings->SearchBorderPixelNum = section.Int("SearchBorderPixelNum", 2);
    settings->ToLineMixDis = section.Int("ToLineMixDis", 5);
    settings->ToLineDistance = section.Int("ToLineDistance", 8);
    settings->parallel = section.Real("parallel", "3.5");
    settings->perpendicular = section.Real("perpendicular", "2");
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

bool AssignDeskewCropSettings(const DeskewCropParam& param, const frame::Profile& profile,
                              frame::Settings* settings) {
  settings->SegmentMaxGap = 1;
  settings->SegmentPointNum = 1;
  settings->SegmentMinPointNum = 1;
  if (IsProfileUsed(param)) {
    const ProfileSection section(profile, kCropSection);
    settings->SearchBorderPixelNum = section.Int("SearchBorderPixelNum", 2);
    settings->SegmentLen = section.Int("SegmentLen", 10);
    settings->SearchLimitNum = section.Int("SearchLimitNum", 3);
    settings->PixelNum = section.Int("PixelNum", 5);
    settings->ToLineDistance = section.Int("ToLineDistance", 8);
    settings->CropPixelNum = section.Int("CropPixelNum", 8);
    settings->CropPixelFlag = section.Int("CropPixelFlag", 0);
    settings->AngleMode = section.Int("AngleMode", 0);
    settings->GroupAngle = section.Real("GroupAngle", "2");
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

omr::BarLimits AssignLineGuidedSettings(const DeskewCropParam& param, const frame::Profile& profile,
                                        frame::Settings* settings) {
  if (!IsProfileUsed(param)) {
    settings->SearchLimitNum = param.SearchLimitNum;
    settings->PixelNum = param.PixelNum;
    settings->CropPixelNum = param.CropPixelNum;
    return {600, 4, 20};
  }
  const ProfileSection section(profile, kLineSection);
  settings->SearchLimitNum = section.Int("SearchLimitNum", 3);
  settings->PixelNum = section.Int("PixelNum", 5);
  settings->CropPixelNum = section.Int("CropPixelNum", 200);
  return {section.Int("LineMixLength", 500), section.Int("LineMinThickness", 4),
          section.Int("LineMaxThickness", 20)};
}

}  // namespace vorlanepic::deskew
