#include "deskew/deskew_settings.h"

#include <cmath>
#include <string>
#include <tuple>

#include "deskew/deskew_fixture.h"
#include "support/profile_file.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

DeskewCropParam FromProfile(const char* path) {
  DeskewCropParam param{};  // nothing of it counts
  param.profilePath = path;
  param.useProfile = 1;
  param.DeskewMethod = 1;
  return param;
}

frame::Profile Loaded(const DeskewCropParam& param) {
  frame::Profile profile;
  EXPECT_EQ(LoadProfile(param, &profile), STATUS_OK);
  return profile;
}

int32_t Method(const DeskewCropParam& param) { return ChosenMethod(param, Loaded(param)); }
class DeskewSettingsTest : public DeskewTest {
 protected:
  bool AssignPruned(const DeskewCropParam& param, int32_t method) {
    return AssignPrunedRotationSettings(param, Loaded(param), method, &settings_);
  }
  bool AssignCrop(const DeskewCropParam& param) {
    return AssignDeskewCropSettings(param, Loaded(param), &settings_);
  }
  omr::BarLimits AssignLine(const DeskewCropParam& param) {
    return AssignLineGuidedSettings(param, Loaded(param), &settings_);
  }
};

TEST_F(DeskewSettingsTest, TheMethodComesFromTheProfileWhenOneIsUsed) {
  const ProfileOnDisk file("[ImageDeskew]\nDeskewMethod=3\n");
  EXPECT_EQ(Method(FromProfile(file.path())), 3);
  EXPECT_EQ(Method(FromProfile("no/such/file.ini")), 2);
  EXPECT_EQ(Method(FromProfile(nullptr)), 0);
  DeskewCropParam param = FromProfile(file.path());
  param.useProfile = 2;
  EXPECT_EQ(Method(param), 1);
}

TEST_F(DeskewSettingsTest, EachMethodAssignsItsOwnOnly) {
  const auto segments = [this] {
    return std::tuple(settings_.SegmentMaxGap, settings_.SegmentPointNum,
                      settings_.SegmentMinPointNum);
  };
  const auto method = [this] {
    return std::tuple(settings_.BorderMethod, settings_.ExtremeAnchorFlag);
  };
  const auto crop = [this] { return std::tuple(settings_.SegmentLen, settings_.CropPixelFlag); };
  settings_.SegmentLen = 77;
  settings_.CropPixelFlag = 78;
  EXPECT_TRUE(AssignPruned(kParam, 3));
  EXPECT_EQ(segments(), std::tuple(6, 6, 4));
  EXPECT_EQ(method(), std::tuple(3, 1.0));
  EXPECT_EQ(crop(), std::tuple(77, 78));

  settings_.ToLineMixDis = 79;
  EXPECT_TRUE(AssignCrop(kParam));
  EXPECT_EQ(segments(), std::tuple(1, 1, 1));
  EXPECT_EQ(method(), std::tuple(3, 1.0));
  EXPECT_EQ(crop(), std::tuple(10, 0));
  EXPECT_EQ(settings_.ToLineMixDis, 79);
  EXPECT_EQ(settings_.ImageNum, 0);
  EXPECT_TRUE(AssignPruned(kParam, 1));
  EXPECT_EQ(method(), std::tuple(1, 0.0));
}

TEST_F(DeskewSettingsTest, ReadsRealNumbersOfThreeCharacters) {
  struct Case {
    const char* text;
    double value;
    bool good;
  };
  for (const Case& c : {Case{"2.75", 2.0, true}, Case{"0.5", 0.5, false}, Case{"", 0.0, false},
                        Case{"5", 5.0, true}, Case{"5.1", 5.1, false}, Case{"1e1", 1.0, true}}) {
    const ProfileOnDisk file(std::string("[ImageDeskew2]\nGroupAngle=") + c.text + "\n");
    EXPECT_EQ(AssignCrop(FromProfile(file.path())), c.good) << c.text;
    EXPECT_EQ(settings_.GroupAngle, c.value) << c.text;
  }
  // No path is not an unreadable file: every key is then 0.
  EXPECT_FALSE(AssignCrop(FromProfile(nullptr)));
  EXPECT_EQ(settings_.SegmentLen, 0);
  EXPECT_EQ(settings_.GroupAngle, 0.0);
}

TEST_F(DeskewSettingsTest, ChecksTheRanges) {
  struct Case {
    int32_t DeskewCropParam::*field;
    int32_t largest;  // the smallest is `smallest`
    bool pruned;
    bool crop;
    int32_t smallest = 1;
  };
  const Case cases[] = {
      {&DeskewCropParam::SearchBorderPixelNum, 10, true, true},
      {&DeskewCropParam::ToLineDistance, 20, true, true},
      {&DeskewCropParam::ToLineMixDis, 20, true, false},
      {&DeskewCropParam::SegmentLen, 50, false, true, 5},
      {&DeskewCropParam::SearchLimitNum, 10, false, true},
      {&DeskewCropParam::PixelNum, 20, false, true},
      {&DeskewCropParam::CropPixelNum, INT32_MAX, false, true},
  };
  for (const Case& c : cases) {
    const auto check = [&](int32_t value, bool good) {
      DeskewCropParam param = kParam;
      param.*c.field = value;
      EXPECT_EQ(AssignPruned(param, 1), good || !c.pruned) << value;
      EXPECT_EQ(AssignCrop(param), good || !c.crop) << value;
    };
    check(c.smallest, true);
    check(c.smallest - 1, false);
    check(c.largest, true);
    if (c.largest < INT32_MAX) check(c.largest + 1, false);
  }
  for (const double value : {-0.001, 5.001, std::nan(""), 0.999}) {
    for (const auto field : {&DeskewCropParam::parallel, &DeskewCropParam::perpendicular}) {
      DeskewCropParam param = kParam;
      param.*field = value;
      EXPECT_EQ(AssignPruned(param, 1), value == 0.999) << value;
    }
    DeskewCropParam param = kParam;
    param.GroupAngle = value;
    EXPECT_FALSE(AssignCrop(param)) << value;
  }
}

TEST_F(DeskewSettingsTest, TheLineGuidedServiceChecksNothing) {
  DeskewCropParam param = kParam;
  param.PixelNum = -4;
  param.SearchLimitNum = 0;
  omr::BarLimits limits = AssignLine(param);
  EXPECT_EQ(std::tuple(limits.minLength, limits.minThickness, limits.maxThickness),
            std::tuple(600, 4, 20));
  EXPECT_EQ(settings_.PixelNum, -4);

  const ProfileOnDisk file("[ImageDeskewLine]\nLineMinThickness=7\nCropPixelNum=-3\n");
  limits = AssignLine(FromProfile(file.path()));
  EXPECT_EQ(std::tuple(limits.minLength, limits.minThickness), std::tuple(500, 7));
  EXPECT_EQ(std::tuple(settings_.PixelNum, settings_.CropPixelNum), std::tuple(5, 0));
  AssignLine(FromProfile("no/such/file.ini"));
  EXPECT_EQ(settings_.CropPixelNum, 200);
}

}  // namespace
}  // namespace vorlanepic::testing
