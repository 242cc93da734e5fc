#include "omr/mark_sheet_angle.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dib_image.h"
#include "support/failing_heap.h"
#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {

using namespace omr;
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;

// A light sheet on a dark scanner background, with dark bars. It covers columns 40..760 and rows
// 30..469 of 800 x 500, so that the column and the row behind those where it is found are light.
class MarkSheet {
 public:
  MarkSheet() : image_(800, 500, 8) { Fill(40, 30, 760, 469, 230); }

  // Columns and rows are inclusive.
  void Fill(int32_t left, int32_t top, int32_t right, int32_t bottom, uint8_t grey) {
    for (int32_t y = top; y <= bottom; ++y) {
      for (int32_t x = left; x <= right; ++x) image_.Set(x, y, grey);
    }
  }

  // A bar whose edges go down by `descent` rows over its length, `thickness(i)` thick at column i.
  template <typename Thickness>
  void DrawVariedBar(int32_t left, int32_t top, int32_t length, double descent,
                     Thickness thickness) {
    for (int32_t i = 0; i < length; ++i) {
      const auto y = top + static_cast<int32_t>(descent * i / length);
      Fill(left + i, y, left + i, y + thickness(i) - 1, 10);
    }
  }
  void DrawWideBar(int32_t left, int32_t top, int32_t length, double descent, int32_t thickness) {
    DrawVariedBar(left, top, length, descent, [=](int32_t) { return thickness; });
  }

  const TestImage& image() const { return image_; }

  // Limits of 300 pixels and 4..20 of thickness unless told otherwise.
  int32_t Angle(double* angle, int32_t threshold = 128, int32_t minLength = 300,
                int32_t minThickness = 4, int32_t maxThickness = 20) const {
    return get_angle_omr(image_.rec()->pixels, 500, 800, threshold, minLength, minThickness,
                         maxThickness, angle);
  }

  int32_t Measure(BarRecords* records, double* angle) const {
    return MeasureBar({image_.rec()->pixels, 500, 800}, 128, {300, 4, 20}, records, angle);
  }

 private:
  TestImage image_;
};

TEST(MarkSheetAngleTest, IsTheBarsAngle) {
  MarkSheet level;
  level.DrawWideBar(100, 200, 600, 0, 10);
  BarRecords records;
  double angle = 1;
  ASSERT_EQ(level.Measure(&records, &angle), BAR_FOUND);
  EXPECT_EQ(angle, 0.0);
  EXPECT_THAT(records.sheet, FieldsAre(40, 759, 30, 468));
  ASSERT_EQ(records.samples.size(), 600U);
  EXPECT_THAT(records.samples[3], FieldsAre(200, 209, 103));

  MarkSheet upright;
  upright.Fill(300, 60, 309, 430, 10);
  ASSERT_EQ(upright.Angle(&angle), 0);
  EXPECT_EQ(angle, 1.5707963267948966);
  MarkSheet wedge;  // of 0.02 radian, so that its edges disagree
  wedge.DrawVariedBar(100, 200, 600, 0, [](int32_t i) { return 6 + i / 50; });
  angle = 7;
  EXPECT_EQ(wedge.Angle(&angle), -1);
  EXPECT_EQ(angle, 7);
}

// The verdicts on the bars of a sheet, and whether it has an angle.
struct Judgement {
  std::vector<BarVerdict> verdicts;
  int32_t status = 0;
  BarStage stage = BarStage::kNothing;
};

Judgement Judge(const MarkSheet& sheet) {
  BarRecords records;
  double angle = 0;
  Judgement judgement;
  judgement.status = sheet.Measure(&records, &angle);
  judgement.stage = records.stage;
  for (size_t i = 0; i < records.barCount; ++i) {
    judgement.verdicts.push_back(records.bars[i].verdict);
  }
  double unrecorded = 0;
  EXPECT_EQ(sheet.Angle(&unrecorded), judgement.status);
  EXPECT_EQ(unrecorded, angle);
  return judgement;
}

// Bars are sampled at columns 5, 20, 35, ... The sheet is found in columns 40..759 and
// rows 30..468: its upper limits are looked for from below at every second place.
TEST(MarkSheetAngleTest, ASingleBarIsJudged) {
  struct Case {
    int32_t left;
    int32_t top;
    int32_t thickness;
    BarVerdict verdict;
    int32_t bumpAt = 0;  // one column that is `bump` thick
    int32_t bump = 0;
  };
  for (const Case& c :
       {Case{100, 200, 4, BarVerdict::kChosen}, Case{100, 200, 3, BarVerdict::kThickness},
        Case{100, 200, 20, BarVerdict::kChosen}, Case{100, 200, 21, BarVerdict::kThickness},
        // Six pixels from the sheet's top and left, and five.
        Case{100, 36, 8, BarVerdict::kChosen}, Case{100, 35, 8, BarVerdict::kMargin},
        Case{46, 200, 8, BarVerdict::kChosen}, Case{45, 200, 8, BarVerdict::kMargin},
        // The thickness may vary by 19, and by any number between samples.
        Case{100, 200, 8, BarVerdict::kChosen, 50, 27},
        Case{100, 200, 8, BarVerdict::kUneven, 50, 28},
        Case{100, 200, 8, BarVerdict::kChosen, 51, 60}}) {
    MarkSheet sheet;
    sheet.DrawVariedBar(c.left, c.top, 400, 0, [&](int32_t i) {
      return i == c.bumpAt && c.bump > 0 ? c.bump : c.thickness;
    });
    const Judgement judgement = Judge(sheet);
    EXPECT_THAT(judgement.verdicts, ElementsAre(c.verdict))
        << c.left << ", " << c.top << ", " << c.thickness << ", " << c.bump;
    const bool isChosen = c.verdict == BarVerdict::kChosen;
    EXPECT_EQ(judgement.status, isChosen ? 0 : -1);
    EXPECT_EQ(judgement.stage, isChosen ? BarStage::kAngle : BarStage::kSheet);
  }
}

TEST(MarkSheetAngleTest, OfSeveralBarsTheThickestThinOneIsUsed) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 100, 400, 0, 8);
  sheet.DrawWideBar(100, 200, 400, 8, 12);
  sheet.DrawWideBar(100, 300, 400, 0, 12);
  EXPECT_THAT(Judge(sheet).verdicts,
              ElementsAre(BarVerdict::kNotThickest, BarVerdict::kChosen, BarVerdict::kNotThickest));
  // 300 / 20 is 15: 330 / 20 is 16, 310 / 20 is 15, each in whole numbers.
  MarkSheet thick;
  thick.DrawWideBar(100, 100, 310, 0, 20);
  thick.DrawWideBar(100, 200, 310, 0, 20);
  EXPECT_EQ(Judge(thick).status, -1);
  thick.DrawWideBar(100, 300, 330, 0, 20);
  EXPECT_THAT(Judge(thick).verdicts,
              ElementsAre(BarVerdict::kRatio, BarVerdict::kRatio, BarVerdict::kChosen));
}

TEST(MarkSheetAngleTest, ArgumentsThatCannotBeUsedGiveNoAngle) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, 10);
  double angle = 7;
  EXPECT_EQ(get_angle_omr(sheet.image().rec()->pixels, 1, 800, 128, 300, 4, 20, &angle), -1);
  // Nothing is lighter than 256, although its low 8 bits are 0.
  for (const int32_t threshold : {255, 256, INT32_MAX}) {
    EXPECT_EQ(sheet.Angle(&angle, threshold), -1) << threshold;
  }
  EXPECT_EQ(sheet.Angle(&angle, 128, 300, 11), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 300, 4, 9), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 700), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 2000), -1);  // no line holds 1000 light pixels
  EXPECT_EQ(angle, 7);
  // Limits below the least sensible ones are worked with.
  for (const int32_t minLength : {19, 0, -5, INT32_MIN}) {
    EXPECT_EQ(sheet.Angle(&angle, 128, minLength, -5, 20), 0) << minLength;
    EXPECT_EQ(angle, 0.0);
  }
}

TEST(MarkSheetAngleTest, EveryHeapFailureIsSurvived) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 6, 10);
  sheet.Fill(300, 400, 305, 405, 10);
  double expected = 0;
  ASSERT_EQ(sheet.Angle(&expected), 0);
  int32_t status = 0;
  double angle = 0;
  int32_t failures = 0;
  int32_t measured = 0;
  ForEachHeapFailure(
      [&] {
        angle = 0;
        status = sheet.Angle(&angle);
      },
      [&](int32_t) {
        ++failures;
        // The bar can still be measured when it is marked and the marking fails behind it.
        measured += status == 0 ? 1 : 0;
        EXPECT_EQ(angle, status == 0 ? expected : 0.0);
      });
  EXPECT_GT(measured, 0);
  EXPECT_GT(failures, 10 + measured);
  EXPECT_EQ(angle, expected);
}

TEST(MarkSheetAngleTest, DeviceIndependentImagesAreReadAtEachDepth) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 6, 10);
  double expected = 0;
  ASSERT_EQ(sheet.Angle(&expected), 0);
  EXPECT_NEAR(expected, std::atan(0.01), 3e-4);  // six steps are a coarse line
  double angle = 0;
  for (const int32_t bits : {1, 8, 24}) {
    TestImage image(800, 500, bits);
    for (int32_t y = 0; y < 500; ++y) {
      for (int32_t x = 0; x < 800; ++x) {
        image.Set(x, y, sheet.image().Get(x, y));
        if (bits == 24) image.row(y)[3 * x] = image.row(y)[3 * x + 1] = 0;  // red alone tells
      }
    }
    TestDib dib(image);
    EXPECT_EQ(GetAngleOMR(dib.rec(), 128, 300, 4, 20, &angle), 0) << bits;
    EXPECT_EQ(angle, expected) << bits;
    for (const auto& [field, value] : {std::pair{4, 0}, {4, -1}, {8, 0}, {8, INT32_MIN}}) {
      TestDib sized(image);
      sized.SetField(field, value);
      EXPECT_EQ(GetAngleOMR(sized.rec(), 128, 300, 4, 20, &angle), -1) << field << " " << value;
    }
    dib.SetField(12, 16 << 16 | 1);
    EXPECT_EQ(GetAngleOMR(dib.rec(), 128, 300, 4, 20, &angle), -1);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
