#include "engine/judge/expected_share.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace vorlane::judge {
namespace {

struct Kind {
  Confidence confidence;
  int32_t sides;
  bool hasPrint;
  int32_t right;
  int32_t answers;
};

constexpr Kind kKinds[] = {
#include "engine/judge/expected_rows.inc"
};

// Of a kind that no page was of, and of doubtful answers.
constexpr double kUnknown = 0.5;

constexpr uint32_t kSideBits = Bit(EvidenceKind::kTopSide) | Bit(EvidenceKind::kRightSide) |
                               Bit(EvidenceKind::kBottomSide) | Bit(EvidenceKind::kLeftSide);

}  // namespace

double ExpectedShare(uint32_t by, Confidence confidence) {
  if (confidence == Confidence::kRefused) return 0.0;
  const int32_t sides = std::popcount(by & kSideBits);
  const bool hasPrint = (by & Bit(EvidenceKind::kPrint)) != 0;
  const auto* kind = std::ranges::find_if(kKinds, [&](const Kind& candidate) {
    return candidate.confidence == confidence && candidate.sides == sides &&
           candidate.hasPrint == hasPrint;
  });
  if (kind == std::end(kKinds)) return kUnknown;
  // The rule of succession: a kind of few pages promises little.
  return (kind->right + 1.0) / (kind->answers + 2.0);
}

}  // namespace vorlane::judge
