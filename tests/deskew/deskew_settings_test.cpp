#include "deskew/deskew_settings.h"

#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "frame/settings.h"
#include "support/profile_file.h"

namespace vorlanepic {
namespace {

using testing::ProfileOnDisk;

constexpr DeskewCropParam kParam{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 50, 2.0};

DeskewCropParam FromProfile(const char* path) {
  DeskewCropParam param{};  // nothing of it counts
  param.profilePath = path;
  param.useProfile = 1;
  param.DeskewMethod = 1;
  return param;
}

class DeskewSettingsTest : public ::testing::Test {
 protected:
  void SetUp() override { settings = {}; }
  void TearDown() override { settings = {}; }
};

TEST_F(DeskewSettingsTest, TheMethodComesFromTheProfileWhenOneIsUsed) {
  const ProfileOnDisk file("[ImageDeskew]\nDeskewMethod=3\n");
  EXPECT_EQ(ChosenMethod(FromProfile(file.path())), 3);
  EXPECT_EQ(ChosenMethod(FromProfile("no/such/file.ini")), 2);
  EXPECT_EQ(ChosenMethod(FromProfile(nullptr)), 0);
  DeskewCropParam param = FromProfile(file.path());
  param.useProfile = 2;
  EXPECT_EQ(ChosenMethod(param), 1);
}

TEST_F(DeskewSettingsTest, EachMethodAssignsItsOwnOnly) {
  settings.SegmentLen = 77;
  settings.CropPixelFlag = 78;
  settings.ImageNum = 80;
  EXPECT_TRUE(AssignPrunedRotationSettings(kParam, 3));
  EXPECT_EQ(settings.SegmentMaxGap, 6);
  EXPECT_EQ(settings.SegmentPointNum, 6);
  EXPECT_EQ(settings.SegmentMinPointNum, 4);
  EXPECT_EQ(settings.BorderMethod, 3);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 1.0);
  EXPECT_EQ(settings.SegmentLen, 77);
  EXPECT_EQ(settings.CropPixelFlag, 78);

  settings.ToLineMixDis = 79;
  EXPECT_TRUE(AssignDeskewCropSettings(kParam));
  EXPECT_EQ(settings.SegmentMaxGap, 1);
  EXPECT_EQ(settings.SegmentPointNum, 1);
  EXPECT_EQ(settings.SegmentMinPointNum, 1);
  EXPECT_EQ(settings.SegmentLen, 10);
  EXPECT_EQ(settings.CropPixelFlag, 0);
  EXPECT_EQ(settings.BorderMethod, 3);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 1.0);
  EXPECT_EQ(settings.ToLineMixDis, 79);
  EXPECT_EQ(settings.ImageNum, 80);
  EXPECT_TRUE(AssignPrunedRotationSettings(kParam, 1));
  EXPECT_EQ(settings.BorderMethod, 1);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 0.0);
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
    EXPECT_EQ(AssignDeskewCropSettings(FromProfile(file.path())), c.good) << c.text;
    EXPECT_EQ(settings.GroupAngle, c.value) << c.text;
  }
}

// No path is not an unreadable file: every key is then 0.
TEST_F(DeskewSettingsTest, AMissingPathGivesZeros) {
  settings.SegmentLen = 10;
  settings.GroupAngle = 2.0;
  EXPECT_FALSE(AssignDeskewCropSettings(FromProfile(nullptr)));
  EXPECT_EQ(settings.SegmentLen, 0);
  EXPECT_EQ(settings.GroupAngle, 0.0);
}

TEST_F(DeskewSettingsTest, ChecksTheRanges) {
  struct Case {
    int32_t DeskewCropParam::*field;
    int32_t smallest;
    int32_t largest;
    bool pruned;
    bool crop;
  };
  const Case cases[] = {
      {&DeskewCropParam::SearchBorderPixelNum, 1, 10, true, true},
      {&DeskewCropParam::ToLineDistance, 1, 20, true, true},
      {&DeskewCropParam::ToLineMixDis, 1, 20, true, false},
      {&DeskewCropParam::SegmentLen, 5, 50, false, true},
      {&DeskewCropParam::SearchLimitNum, 1, 10, false, true},
      {&DeskewCropParam::PixelNum, 1, 20, false, true},
      {&DeskewCropParam::CropPixelNum, 1, INT32_MAX, false, true},
  };
  for (const Case& c : cases) {
    const auto check = [&](int32_t value, bool good) {
      DeskewCropParam param = kParam;
      param.*c.field = value;
      EXPECT_EQ(AssignPrunedRotationSettings(param, 1), good || !c.pruned) << value;
      EXPECT_EQ(AssignDeskewCropSettings(param), good || !c.crop) << value;
    };
    check(c.smallest, true);
    check(c.smallest - 1, false);
    check(c.largest, true);
    if (c.largest < INT32_MAX) check(c.largest + 1, false);
  }
}

TEST_F(DeskewSettingsTest, ChecksTheRangesOfRealNumbers) {
  for (const double value : {-0.001, 5.001, std::nan(""), 0.999}) {
    for (const auto field : {&DeskewCropParam::parallel, &DeskewCropParam::perpendicular}) {
      DeskewCropParam param = kParam;
      param.*field = value;
      EXPECT_EQ(AssignPrunedRotationSettings(param, 1), value == 0.999) << value;
    }
    DeskewCropParam param = kParam;
    param.GroupAngle = value;
    EXPECT_FALSE(AssignDeskewCropSettings(param)) << value;
  }
}

TEST_F(DeskewSettingsTest, TheLineGuidedServiceChecksNothing) {
  DeskewCropParam param = kParam;
  param.PixelNum = -4;
  param.SearchLimitNum = 0;
  BarLimits limits = AssignLineGuidedSettings(param);
  EXPECT_EQ(limits.minLength, 600);
  EXPECT_EQ(limits.minThickness, 4);
  EXPECT_EQ(limits.maxThickness, 20);
  EXPECT_EQ(settings.PixelNum, -4);

  const ProfileOnDisk file("[ImageDeskewLine]\nLineMinThickness=7\nCropPixelNum=-3\n");
  limits = AssignLineGuidedSettings(FromProfile(file.path()));
  EXPECT_EQ(limits.minLength, 500);
  EXPECT_EQ(limits.minThickness, 7);
  EXPECT_EQ(settings.PixelNum, 5);
  EXPECT_EQ(settings.CropPixelNum, 0);
  AssignLineGuidedSettings(FromProfile("no/such/file.ini"));
  EXPECT_EQ(settings.CropPixelNum, 200);
}

}  // namespace
}  // namespace vorlanepic
