#include "engine/judge/expected_share.h"

#include <algorithm>
#include <iterator>

namespace vorlane::judge {
namespace {

struct Share {
  Reason reason;
  double sure;
  double likely;
  double doubtful;
};

constexpr Share kShares[] = {
    {Reason::kSidesAndPrintAgree, 0.997, 0.99, 0.7},
    {Reason::kSidesAgree, 0.99, 0.96, 0.6},
    {Reason::kPrintAlone, 0.995, 0.98, 0.7},
    {Reason::kBarAgrees, 0.99, 0.9, 0.4},
    {Reason::kPrintOffPaper, 0.98, 0.98, 0.7},
    {Reason::kSidesNotParallel, 0.9, 0.9, 0.6},
    {Reason::kFewSides, 0.9, 0.9, 0.6},
};
constexpr Share kOther{Reason::kNone, 0.9, 0.8, 0.5};

}  // namespace

double ExpectedShare(Reason reason, Confidence confidence) {
  const auto* found = std::ranges::find(kShares, reason, &Share::reason);
  const Share& share = found == std::end(kShares) ? kOther : *found;
  switch (confidence) {
    case Confidence::kSure:
      return share.sure;
    case Confidence::kLikely:
      return share.likely;
    case Confidence::kDoubtful:
      return share.doubtful;
    default:
      return 0.0;
  }
}

}  // namespace vorlane::judge
