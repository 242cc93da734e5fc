#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/settings.h"
#include "omr/bar_records.h"
#include "omr/mark_sheets.h"
#include "support/failing_heap.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;

TEST(MarkSheetAngleTest, ALevelBarGivesExactlyNothing) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, 10);
  double angle = 1;
  ASSERT_EQ(sheet.Angle(&angle), 0);
  EXPECT_EQ(angle, 0.0);
}

TEST(MarkSheetAngleTest, ABarThatDescendsGivesItsSlopesAngle) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 6, 10);
  double angle = 0;
  ASSERT_EQ(sheet.Angle(&angle), 0);
  EXPECT_NEAR(angle, std::atan(0.01), 3e-4);  // six steps are a coarse line
}

TEST(MarkSheetAngleTest, AnUprightBarGivesARightAngle) {
  MarkSheet sheet;
  sheet.Fill(300, 60, 309, 430, 10);
  double angle = 0;
  ASSERT_EQ(sheet.Angle(&angle), 0);
  EXPECT_EQ(angle, 1.5707963267948966);
}

TEST(MarkSheetAngleTest, AWedgesEdgesDisagree) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, [](int32_t i) { return 6 + i / 50; });  // 0.02 radian
  double angle = 7;
  EXPECT_EQ(sheet.Angle(&angle), -1);
  EXPECT_EQ(angle, 7);
}

// The verdicts on the bars of a sheet, and whether it has an angle.
struct Judgement {
  std::vector<BarVerdict> verdicts;
  int32_t status = 0;
  BarStage stage = BarStage::kNothing;
};

Judgement Judge(MarkSheet& sheet) {
  BarRecords records;
  settings.barRecords = &records;
  double angle = 0;
  Judgement judgement;
  judgement.status = sheet.Angle(&angle);
  settings.barRecords = nullptr;
  judgement.stage = records.stage;
  for (size_t i = 0; i < records.barCount; ++i) {
    judgement.verdicts.push_back(records.bars[i].verdict);
  }
  double unrecorded = 0;
  EXPECT_EQ(sheet.Angle(&unrecorded), judgement.status);
  EXPECT_EQ(unrecorded, angle);
  return judgement;
}

struct BarCase {
  const char* name;
  void (*draw)(MarkSheet* sheet);
  BarVerdict verdict;
};

class BarJudgementTest : public ::testing::TestWithParam<BarCase> {};

TEST_P(BarJudgementTest, OneBar) {
  MarkSheet sheet;
  GetParam().draw(&sheet);
  const Judgement judgement = Judge(sheet);
  EXPECT_THAT(judgement.verdicts, ElementsAre(GetParam().verdict));
  const bool isChosen = GetParam().verdict == BarVerdict::kChosen;
  EXPECT_EQ(judgement.status, isChosen ? 0 : -1);
  EXPECT_EQ(judgement.stage, isChosen ? BarStage::kAngle : BarStage::kSheet);
}

// Bars are sampled at columns 5, 20, 35, ... The sheet is found in columns 40..759 and
// rows 30..468: its upper limits are looked for from below at every second place.
INSTANTIATE_TEST_SUITE_P(
    Bars, BarJudgementTest,
    ::testing::Values(
        BarCase{"ThinAsAllowed", [](MarkSheet* s) { s->DrawWideBar(100, 200, 400, 0, 4); },
                BarVerdict::kChosen},
        BarCase{"TooThin", [](MarkSheet* s) { s->DrawWideBar(100, 200, 400, 0, 3); },
                BarVerdict::kThickness},
        BarCase{"ThickAsAllowed", [](MarkSheet* s) { s->DrawWideBar(100, 200, 400, 0, 20); },
                BarVerdict::kChosen},
        BarCase{"TooThick", [](MarkSheet* s) { s->DrawWideBar(100, 200, 400, 0, 21); },
                BarVerdict::kThickness},
        BarCase{"SixPixelsFromTheTop", [](MarkSheet* s) { s->DrawWideBar(100, 36, 400, 0, 8); },
                BarVerdict::kChosen},
        BarCase{"FivePixelsFromTheTop", [](MarkSheet* s) { s->DrawWideBar(100, 35, 400, 0, 8); },
                BarVerdict::kMargin},
        BarCase{"SixPixelsFromTheLeft", [](MarkSheet* s) { s->DrawWideBar(46, 200, 400, 0, 8); },
                BarVerdict::kChosen},
        BarCase{"FivePixelsFromTheLeft", [](MarkSheet* s) { s->DrawWideBar(45, 200, 400, 0, 8); },
                BarVerdict::kMargin},
        BarCase{"ThicknessVariesByNineteen",
                [](MarkSheet* s) {
                  s->DrawWideBar(100, 200, 400, 0, [](int32_t i) { return i == 50 ? 27 : 8; });
                },
                BarVerdict::kChosen},
        BarCase{"ThicknessVariesByTwenty",
                [](MarkSheet* s) {
                  s->DrawWideBar(100, 200, 400, 0, [](int32_t i) { return i == 50 ? 28 : 8; });
                },
                BarVerdict::kUneven},
        BarCase{"ABumpBetweenSamplesIsNotSeen",
                [](MarkSheet* s) {
                  s->DrawWideBar(100, 200, 400, 0, [](int32_t i) { return i == 51 ? 60 : 8; });
                },
                BarVerdict::kChosen}),
    [](const auto& bar) { return bar.param.name; });

TEST(MarkSheetAngleTest, TheThickestOfSeveralBarsIsUsed) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 100, 400, 0, 8);
  sheet.DrawWideBar(100, 200, 400, 8, 12);
  sheet.DrawWideBar(100, 300, 400, 0, 12);
  EXPECT_THAT(Judge(sheet).verdicts,
              ElementsAre(BarVerdict::kNotThickest, BarVerdict::kChosen, BarVerdict::kNotThickest));
  double angle = 0;
  ASSERT_EQ(sheet.Angle(&angle), 0);
  EXPECT_NEAR(angle, std::atan(0.02), 4e-4);
}

TEST(MarkSheetAngleTest, OfSeveralBarsOnlyThinOnesCount) {
  // 300 / 20 is 15: 330 / 20 is 16, 310 / 20 is 15, each in whole numbers.
  MarkSheet sheet;
  sheet.DrawWideBar(100, 100, 310, 0, 20);
  sheet.DrawWideBar(100, 200, 310, 0, 20);
  const Judgement judgement = Judge(sheet);
  EXPECT_THAT(judgement.verdicts, ElementsAre(BarVerdict::kRatio, BarVerdict::kRatio));
  EXPECT_EQ(judgement.status, -1);
  sheet.DrawWideBar(100, 300, 330, 0, 20);
  EXPECT_THAT(Judge(sheet).verdicts,
              ElementsAre(BarVerdict::kRatio, BarVerdict::kRatio, BarVerdict::kChosen));
}

TEST(MarkSheetAngleTest, RecordsTellTheRoad) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, 10);
  BarRecords records;
  settings.barRecords = &records;
  double angle = 0;
  ASSERT_EQ(sheet.Angle(&angle), 0);
  settings.barRecords = nullptr;
  EXPECT_THAT(records.sheet, FieldsAre(30, 468, 40, 759));
  EXPECT_FALSE(records.isTall);
  ASSERT_EQ(records.samples.size(), 600U);
  EXPECT_THAT(records.samples[3], FieldsAre(200, 209, 103));
  EXPECT_EQ(records.lines.second.intercept, 209.0F);
  EXPECT_EQ(records.bars[0].length, 600);
  EXPECT_EQ(records.bars[0].thickness, 10);
}

TEST(MarkSheetAngleTest, ArgumentsThatCannotBeUsedGiveNoAngle) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, 10);
  double angle = 7;
  const auto measure = [&](const uint8_t* pixels, int32_t height, int32_t width, double* result) {
    return get_angle_omr(pixels, height, width, 128, 300, 4, 20, result);
  };
  const int32_t width = MarkSheet::kWidth;
  EXPECT_EQ(measure(nullptr, 500, width, &angle), -1);
  EXPECT_EQ(measure(sheet.pixels(), 0, width, &angle), -1);
  EXPECT_EQ(measure(sheet.pixels(), 500, -1, &angle), -1);
  EXPECT_EQ(measure(sheet.pixels(), 500, width, nullptr), -1);
  EXPECT_EQ(measure(sheet.pixels(), 1, width, &angle), -1);
  // Nothing is lighter than 256, although its low 8 bits are 0.
  for (const int32_t threshold : {255, 256, INT32_MAX}) {
    EXPECT_EQ(sheet.Angle(&angle, threshold), -1) << threshold;
  }
  EXPECT_EQ(sheet.Angle(&angle, 128, 300, 11), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 300, 4, 9), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 300, 4, INT32_MIN), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 700), -1);
  EXPECT_EQ(sheet.Angle(&angle, 128, 2000), -1);  // no line holds 1000 light pixels
  EXPECT_EQ(sheet.Angle(&angle, 128, INT32_MAX), -1);
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
  double expected = 0;
  ASSERT_EQ(sheet.Angle(&expected), 0);
  int32_t status = 0;
  double angle = 0;
  int32_t failures = 0;
  ForEachHeapFailure(
      [&] {
        angle = 0;
        status = sheet.Angle(&angle);
      },
      [&](int32_t) {
        ++failures;
        EXPECT_EQ(status, -1);
        EXPECT_EQ(angle, 0.0);
      });
  EXPECT_GT(failures, 10);
  EXPECT_EQ(angle, expected);
}

// A device-independent image of a sheet, bottom row first.
class SheetDib {
 public:
  SheetDib(MarkSheet* sheet, int32_t bits) {
    Put(4, MarkSheet::kWidth);
    Put(8, MarkSheet::kHeight);
    info_[14] = static_cast<uint8_t>(bits);
    const size_t lineBytes = (MarkSheet::kWidth * static_cast<size_t>(bits) + 31) / 32 * 4;
    rows_.resize(lineBytes * MarkSheet::kHeight);
    for (int32_t y = 0; y < MarkSheet::kHeight; ++y) {
      uint8_t* row = rows_.data() + lineBytes * static_cast<size_t>(MarkSheet::kHeight - 1 - y);
      for (int32_t x = 0; x < MarkSheet::kWidth; ++x) SetPixel(row, x, bits, sheet->At(x, y));
    }
    rec_ = {file_, info_, nullptr, rows_.data()};
  }

  void Put(size_t at, int32_t value) { std::memcpy(info_ + at, &value, sizeof(value)); }
  DibRec* rec() { return &rec_; }
  uint8_t* file() { return file_; }

  int32_t Angle(double* angle) const { return GetAngleOMR(&rec_, 128, 300, 4, 20, angle); }

 private:
  // At 24 bits only red, the third byte, tells anything.
  static void SetPixel(uint8_t* row, int32_t x, int32_t bits, uint8_t grey) {
    if (bits == 1 && grey > 128) row[x / 8] = static_cast<uint8_t>(row[x / 8] | 0x80 >> (x % 8));
    if (bits == 8) row[x] = grey;
    if (bits == 24) row[3 * x + 2] = grey;
  }

  uint8_t file_[14] = {0x42, 0x4D};
  uint8_t info_[40] = {};
  std::vector<uint8_t> rows_;
  DibRec rec_{};
};

TEST(MarkSheetAngleTest, DeviceIndependentImagesAreReadAtEachDepth) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 6, 10);
  double expected = 0;
  ASSERT_EQ(sheet.Angle(&expected), 0);
  for (const int32_t bits : {1, 8, 24}) {
    double angle = 0;
    EXPECT_EQ(SheetDib(&sheet, bits).Angle(&angle), 0) << bits;
    EXPECT_EQ(angle, expected) << bits;
  }
  for (const int32_t bits : {0, 4, 16, 32}) {
    double angle = 0;
    EXPECT_EQ(SheetDib(&sheet, bits).Angle(&angle), -1) << bits;
  }
}

TEST(MarkSheetAngleTest, IncompleteDeviceIndependentImagesGiveNoAngle) {
  MarkSheet sheet;
  sheet.DrawWideBar(100, 200, 600, 0, 10);
  double angle = 7;
  EXPECT_EQ(GetAngleOMR(nullptr, 128, 300, 4, 20, &angle), -1);
  SheetDib dib(&sheet, 8);
  EXPECT_EQ(dib.Angle(nullptr), -1);
  for (const size_t at : {size_t{4}, size_t{8}}) {
    for (const int32_t size : {0, -1, INT32_MIN}) {
      SheetDib sized(&sheet, 8);
      sized.Put(at, size);
      EXPECT_EQ(sized.Angle(&angle), -1) << at << " " << size;
    }
  }
  dib.file()[1] = 0x4E;
  EXPECT_EQ(dib.Angle(&angle), -1);
  dib.file()[1] = 0x4D;
  const DibRec whole = *dib.rec();
  dib.rec()->fileHeader = nullptr;
  EXPECT_EQ(dib.Angle(&angle), -1);
  *dib.rec() = whole;
  dib.rec()->infoHeader = nullptr;
  EXPECT_EQ(dib.Angle(&angle), -1);
  *dib.rec() = whole;
  dib.rec()->bits = nullptr;
  EXPECT_EQ(dib.Angle(&angle), -1);
  EXPECT_EQ(angle, 7);
}

}  // namespace
}  // namespace vorlanepic::testing
