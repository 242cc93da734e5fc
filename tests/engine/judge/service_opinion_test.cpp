// How far the turn and the cut of another search are trusted.
#include "engine/judge/service_opinion.h"

#include <string>

#include <gtest/gtest.h>

namespace vorlane::judge {
namespace {

constexpr Confidence kSure = Confidence::kSure;
constexpr Confidence kLikely = Confidence::kLikely;
constexpr Confidence kDoubtful = Confidence::kDoubtful;

// A turn and a cut of width x height about (600, 700) of a picture of 1200 x 1400, held against a
// finding without turn and with a cut of 800 x 1000 about the same place.
struct OpinionCase {
  const char* name;
  double turn;
  double width;
  double height;
  Confidence turnFound;
  Confidence cutFound;
  Confidence expected;
  std::string doubt;  // the first; empty: none
};

class ServiceOpinionTest : public ::testing::TestWithParam<OpinionCase> {};

TEST_P(ServiceOpinionTest, HoldsTheResultAgainstTheFinding) {
  const OpinionCase& held = GetParam();
  Finding found;
  found.angleConfidence = held.turnFound;
  found.cutConfidence = held.cutFound;
  found.corners = {Point{200, 200}, {1000, 200}, {1000, 1200}, {200, 1200}};
  const double left = 600 - held.width / 2;
  const double top = 700 - held.height / 2;
  ServiceResult result{held.turn,
                       CornersOfCut({left - 599.5, top - 699.5, held.width + left - 599.5,
                                     held.height + top - 699.5},
                                    held.turn, 1200, 1400)};
  const Opinion opinion = JudgeService(found, result, 1200, 1400);
  EXPECT_EQ(opinion.confidence, held.expected);
  EXPECT_EQ(opinion.doubtCount == 0 ? "" : NameOf(opinion.doubts[0].doubt), held.doubt);
}

INSTANTIATE_TEST_SUITE_P(
    Results, ServiceOpinionTest,
    ::testing::Values(
        OpinionCase{"Alike", 0.1, 800, 1000, kSure, kSure, kSure, ""},
        OpinionCase{"SomePixelsInside", 0, 792, 992, kSure, kSure, kSure, ""},
        OpinionCase{"Near", 0.3, 800, 1000, kSure, kSure, kLikely, "contradicted"},
        OpinionCase{"Off", -0.8, 800, 1000, kSure, kSure, kDoubtful, "contradicted"},
        OpinionCase{"OnItsSide", 90, 1000, 800, kSure, kSure, kDoubtful, "quarter-turn"},
        OpinionCase{"CutsALittle", 0, 780, 1000, kSure, kSure, kLikely, "cuts-page"},
        OpinionCase{"CutsMuch", 0, 700, 1000, kSure, kSure, kDoubtful, "cuts-page"},
        OpinionCase{"LeavesSurround", 0, 900, 1000, kSure, kSure, kLikely, "surround-left"},
        OpinionCase{"EvidenceIsLikely", 0, 800, 1000, kLikely, kLikely, kLikely, "likely-evidence"},
        OpinionCase{"CutOfUnknownPage", 0, 900, 1100, kSure, kDoubtful, kDoubtful,
                    "cut-unconfirmed"},
        OpinionCase{"WholeOfUnknownPage", 0, 1200, 1400, kSure, kDoubtful, kLikely,
                    "cut-unconfirmed"},
        OpinionCase{"EvidenceIsDoubtful", 0, 800, 1000, kDoubtful, kDoubtful, kDoubtful,
                    "unconfirmed"}),
    [](const auto& held) { return held.param.name; });

}  // namespace
}  // namespace vorlane::judge
