// How far a service's result is trusted.
#include "app/judge/judgement.h"

#include <cmath>
#include <numbers>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/judge/threshold_choice.h"
#include "support/page_drawing.h"

namespace vorlane::testing {
namespace {

using judging::Confidence;
using vorlanepic::testing::FillRectangle;
using vorlanepic::testing::TestImage;

// A service that turned by `turn` and cut width x height about (600, 700), held against a finding
// without turn and with a cut of 800 x 1000 about the same place.
struct JudgedCase {
  const char* name;
  double turn;
  int32_t width;
  int32_t height;
  int32_t turnConfidence;
  int32_t cutConfidence;
  Confidence expected;
  std::string code;  // of the first reason; empty: none
};

class JudgementTest : public ::testing::TestWithParam<JudgedCase> {};

TEST_P(JudgementTest, HoldsTheServiceAgainstTheFinding) {
  const JudgedCase& judged = GetParam();
  const TestImage image(1200, 1400, 8);
  judging::TurnOutcome outcome;
  outcome.degrees = judged.turn;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  outcome.page->stage = vorlanepic::deskew::PageStage::kCorners;
  outcome.page->geometry.center = {600, 700};
  outcome.page->geometry.angle = judged.turn * std::numbers::pi / 180;
  outcome.page->geometry.outWidth = judged.width;
  outcome.page->geometry.outHeight = judged.height;
  outcome.finding.turn_confidence = judged.turnConfidence;
  outcome.finding.cut_confidence = judged.cutConfidence;
  const vorlane_point corners[4] = {{200, 200}, {1000, 200}, {1000, 1200}, {200, 1200}};
  std::copy(std::begin(corners), std::end(corners), outcome.finding.corners);

  const judging::Verdict verdict = judging::Judge(outcome, *image.rec());
  EXPECT_EQ(verdict.confidence, judged.expected);
  EXPECT_EQ(verdict.reasons.empty() ? "" : verdict.reasons[0].code, judged.code);
}

constexpr int32_t kSure = VORLANE_SURE;

INSTANTIATE_TEST_SUITE_P(
    Pages, JudgementTest,
    ::testing::Values(
        JudgedCase{"Alike", 0.1, 800, 1000, kSure, kSure, Confidence::kSure, ""},
        JudgedCase{"SomePixelsInside", 0, 792, 992, kSure, kSure, Confidence::kSure, ""},
        JudgedCase{"Near", 0.3, 800, 1000, kSure, kSure, Confidence::kLikely, "contradicted"},
        JudgedCase{"Off", -0.8, 800, 1000, kSure, kSure, Confidence::kDoubtful, "contradicted"},
        JudgedCase{"OnItsSide", 90, 1000, 800, kSure, kSure, Confidence::kDoubtful, "quarter-turn"},
        JudgedCase{"CutsALittle", 0, 780, 1000, kSure, kSure, Confidence::kLikely, "cuts-page"},
        JudgedCase{"CutsMuch", 0, 700, 1000, kSure, kSure, Confidence::kDoubtful, "cuts-page"},
        JudgedCase{"LeavesSurround", 0, 900, 1000, kSure, kSure, Confidence::kLikely,
                   "surround-left"},
        JudgedCase{"EvidenceIsLikely", 0, 800, 1000, VORLANE_LIKELY, VORLANE_LIKELY,
                   Confidence::kLikely, "likely-evidence"},
        JudgedCase{"EndOfPageUnknown", 0, 100, 100, kSure, VORLANE_DOUBTFUL, Confidence::kLikely,
                   "cut-unconfirmed"},
        JudgedCase{"EvidenceIsDoubtful", 0, 800, 1000, VORLANE_DOUBTFUL, VORLANE_DOUBTFUL,
                   Confidence::kDoubtful, "unconfirmed"}),
    [](const auto& judged) { return judged.param.name; });

// Half the pixels at 40, half at 200: any level from 40 to 199 parts them, the middle is taken.
TEST(SplitLevelTest, PartsDarkAndLight) {
  TestImage image(80, 80, 8);
  FillRectangle(&image, 0, 0, 39, 79, 40);
  FillRectangle(&image, 40, 0, 79, 79, 200);
  EXPECT_EQ(judging::SplitLevel(*image.rec()), 119);
  // The left margin alone would estimate (40 + 40 + 200 + 200) / 4 = 120: the ground is not dark.
  EXPECT_EQ(judging::PageThreshold(*image.rec()), 120);
  image.Fill(30);
  EXPECT_EQ(judging::PageThreshold(*image.rec()), 80);
}

}  // namespace
}  // namespace vorlane::testing
