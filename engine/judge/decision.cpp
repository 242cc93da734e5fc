#include "engine/judge/decision.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace vorlane::judge {
namespace {

using evidence::PaperSides;
using evidence::PrintStrength;
using evidence::Side;
using evidence::SideGroup;

// Degrees.
constexpr double kAgreeing = 0.25;
constexpr double kAgreeingRim = 0.06;  // a frame lies at 0, where many pages do
constexpr double kRivalApart = 0.4;
constexpr double kPrintOffPaper = 2.0;
constexpr double kSteepPrint = 15.0;
constexpr double kStraightSpread = 0.45;
constexpr double kWeakAgreeing = 0.4;
constexpr double kWeakSideAgreeing = 0.3;
constexpr double kBarAgreeing = 0.3;

constexpr double kRivalSpread = 0.15;  // by which a rival's sides may lie further apart
constexpr double kParallel = 0.15;

constexpr double kStraightShare = 0.4;
constexpr double kLoneStraightShare = 0.6;  // without print
// Sides so straight and so alike tell the angle better than print does, and print of such
// confidence better than other sides.
constexpr double kExactDeviation = 0.1;
constexpr double kExactConfidence = 8.0;
constexpr double kExactShare = 0.8;
// A side that is whole, and one that runs on the picture's frame.
constexpr double kWholeShare = 0.95;
constexpr double kOnFrame = 0.6;
constexpr double kWhollyOnFrame = 0.9;
constexpr double kSharpContrast = 30.0;
constexpr double kSteepConfidence = 6.0;
constexpr double kLoneConfidence = 5.0;
constexpr double kHintConfidence = 1.3;

class Judge {
 public:
  explicit Judge(const Evidence& evidence)
      : sides_(evidence.sides), print_(evidence.print), bars_(evidence.bars) {}

  Decision Decide(By by) const {
    switch (by) {
      case By::kPaper:
        return DecidePaper();
      case By::kPrint:
        return DecidePrint();
      case By::kBar:
        return DecideBar();
      default:
        return DecideAuto();
    }
  }

 private:
  Decision DecideAuto() const {
    const bool hasPrint = print_.strength >= PrintStrength::kFair;
    const Decision decision = hasPrint ? DecideWithPrint() : DecideWithoutPrint();
    return decision.confidence == Confidence::kDoubtful && sides_.hasQuad ? DecideQuad(decision)
                                                                          : decision;
  }

  // The paper is to stand straight, however the print lies on it.
  Decision DecidePaper() const {
    Decision decision = DecideAuto();
    if (decision.group == nullptr) decision = DecideWithoutPrint();
    if (decision.group == nullptr) return Refused(Reason::kFewSides);
    decision.degrees = decision.group->degrees;
    return decision;
  }

  Decision DecidePrint() const {
    if (print_.strength == PrintStrength::kNone) return Refused(Reason::kWeakPrint);
    const ReasonReport reason{Reason::kPrintAlone, print_.whole.confidence};
    if (print_.strength == PrintStrength::kWeak) return ByPrint(Confidence::kDoubtful, reason);
    const Decision decision = DecideWithPrint();
    const bool isSame = std::abs(decision.degrees - PrintDegrees()) <= kAgreeing;
    Decision print = ByPrint(Confidence::kLikely, isSame ? decision.reason : reason);
    if (isSame) print.confidence = decision.confidence;
    print.group = decision.group;
    return print;
  }

  // Sure when every bar and the print lie alike.
  Decision DecideBar() const {
    if (bars_.count == 0) return Refused(Reason::kNoBar);
    Decision decision = DecideAuto();
    const bool hasPrint = print_.strength >= PrintStrength::kFair;
    const bool agrees = hasPrint && std::abs(PrintDegrees() - bars_.degrees) <= kBarAgreeing;
    if (bars_.spread > kBarAgreeing || (hasPrint && !agrees)) {
      decision.confidence = Confidence::kDoubtful;
    } else {
      decision.confidence = agrees ? Confidence::kSure : Confidence::kLikely;
    }
    decision.degrees = bars_.degrees;
    decision.reason = {Reason::kBarAgrees, static_cast<double>(bars_.count)};
    return decision;
  }

  static Decision Refused(Reason reason) {
    Decision decision;
    decision.reason = {reason, 0.0};
    return decision;
  }

  double PrintDegrees() const { return print_.whole.degrees; }
  double OffPrint(const SideGroup& group) const { return std::abs(group.degrees - PrintDegrees()); }
  bool IsStrong() const { return print_.strength == PrintStrength::kStrong; }

  template <typename Test>
  const SideGroup* First(Test test) const {
    const auto groups = sides_.view();
    const auto found = std::ranges::find_if(groups, test);
    return found == groups.end() ? nullptr : &*found;
  }

  bool Agrees(const SideGroup& group) const {
    return OffPrint(group) <= (group.isRim ? kAgreeingRim : kAgreeing);
  }

  static bool IsStraight(const SideGroup& group) {
    return group.spread <= kStraightSpread && group.straight >= kStraightShare;
  }

  // Another group that could as well be the page.
  const SideGroup* RivalOf(const SideGroup& group) const {
    return First([&](const SideGroup& other) {
      return !other.isRim && (other.count >= 3 || other.HasOpposites()) &&
             std::abs(other.degrees - group.degrees) > kRivalApart &&
             other.spread <= group.spread + kRivalSpread;
    });
  }

  Decision ByGroup(const SideGroup& group, Confidence confidence, ReasonReport reason) const {
    Decision decision;
    decision.confidence = confidence;
    decision.degrees = group.degrees;
    decision.group = &group;
    decision.reason = reason;
    return decision;
  }

  Decision ByPrint(Confidence confidence, ReasonReport reason) const {
    Decision decision;
    decision.confidence = confidence;
    decision.degrees = PrintDegrees();
    decision.reason = reason;
    return decision;
  }

  Decision DecideWithPrint() const {
    const SideGroup* agreeing =
        First([this](const SideGroup& group) { return group.count >= 2 && Agrees(group); });
    if (agreeing != nullptr) {
      const bool isSure =
          (agreeing->count >= 3 || IsStrong()) && IsStraight(*agreeing) && !agreeing->isRim;
      return ByBoth(*agreeing, isSure ? Confidence::kSure : Confidence::kLikely);
    }
    const SideGroup* single = First([this](const SideGroup& group) { return Agrees(group); });
    if (single != nullptr) {
      const bool isSure = IsStrong() && !single->isRim && !IsCornerApart();
      return ByBoth(*single, isSure ? Confidence::kSure : Confidence::kLikely);
    }
    return DecideApart();
  }

  // Whether a corner of the paper lies off the print: its sides are curved, or of another sheet.
  bool IsCornerApart() const {
    return First([this](const SideGroup& group) {
             return group.HasBothDirections() && !group.isRim && OffPrint(group) > kRivalApart;
           }) != nullptr;
  }

  // Sides and print agree: whichever tells the angle better gives it, or both.
  Decision ByBoth(const SideGroup& group, Confidence confidence) const {
    Decision decision = ByGroup(group, confidence, {Reason::kSidesAndPrintAgree, OffPrint(group)});
    const bool isExact =
        group.count >= 3 && group.deviation <= kExactDeviation && group.straight >= kExactShare;
    if (isExact) return decision;
    const bool isPrintExact = print_.whole.confidence >= kExactConfidence;
    decision.degrees = isPrintExact ? PrintDegrees() : std::midpoint(group.degrees, PrintDegrees());
    return decision;
  }

  // Nothing else is believed, but four sides close around a page: it is seen in perspective.
  Decision DecideQuad(const Decision& doubtful) const {
    double low = INFINITY;
    double high = -INFINITY;
    for (const evidence::SideLine& line : sides_.SidesOf(sides_.quad)) {
      low = std::min(low, line.degrees);
      high = std::max(high, line.degrees);
    }
    const ReasonReport reason{Reason::kSidesNotParallel, high - low};
    if (print_.strength < PrintStrength::kFair) {
      return ByGroup(sides_.quad, Confidence::kLikely, reason);
    }
    if (PrintDegrees() < low - kAgreeing || PrintDegrees() > high + kAgreeing) return doubtful;
    Decision decision = ByPrint(Confidence::kLikely, reason);
    decision.group = &sides_.quad;
    return decision;
  }

  // No side agrees with the print.
  Decision DecideApart() const {
    const SideGroup* paper = First([this](const SideGroup& group) {
      return group.count >= 3 && group.HasBothDirections() && !group.isRim &&
             OffPrint(group) <= kPrintOffPaper;
    });
    if (paper != nullptr && RivalOf(*paper) == nullptr) {
      return ByGroup(*paper, Confidence::kLikely, {Reason::kPrintOffPaper, OffPrint(*paper)});
    }
    const double confidence = print_.whole.confidence;
    if (std::abs(PrintDegrees()) > kSteepPrint && confidence < kSteepConfidence) {
      return ByPrint(Confidence::kDoubtful, {Reason::kPrintTooSteep, PrintDegrees()});
    }
    if (IsStrong()) {
      const bool isAlone = sides_.groupCount == 0 && confidence >= kLoneConfidence;
      return ByPrint(isAlone ? Confidence::kSure : Confidence::kLikely,
                     {Reason::kPrintAlone, confidence});
    }
    const SideGroup* other =
        First([](const SideGroup& group) { return group.count >= 2 && !group.isRim; });
    if (other != nullptr) {
      return ByPrint(Confidence::kDoubtful, {Reason::kSidesAndPrintDiffer, OffPrint(*other)});
    }
    return ByPrint(Confidence::kLikely, {Reason::kPrintAlone, confidence});
  }

  bool WeakPrintAgrees(const SideGroup& group, double within) const {
    return print_.strength == PrintStrength::kWeak && OffPrint(group) <= within;
  }
  bool WeakPrintContradicts(const SideGroup& group) const {
    return print_.strength == PrintStrength::kWeak && OffPrint(group) > kWeakAgreeing;
  }

  Decision DecideWithoutPrint() const {
    if (sides_.groupCount == 0) return DecideNothing();
    const SideGroup& best = sides_.groups[0];
    if (best.isRim && !WeakPrintAgrees(best, kWeakAgreeing)) {
      return ByGroup(best, Confidence::kDoubtful, {Reason::kOnlyRimSeen, 0.0});
    }
    if (const SideGroup* rival = RivalOf(best); rival != nullptr) return DecideRivals(best, *rival);
    switch (best.count) {
      case 4:
      case 3:
        return DecideManySides(best);
      case 2:
        return DecideTwoSides(best);
      default:
        return DecideOneSide(best);
    }
  }

  Decision DecideRivals(const SideGroup& best, const SideGroup& rival) const {
    for (const SideGroup* group : {&best, &rival}) {
      if (WeakPrintAgrees(*group, kWeakAgreeing)) {
        return ByGroup(*group, Confidence::kLikely,
                       {Reason::kSidesAndPrintAgree, OffPrint(*group)});
      }
    }
    return ByGroup(best, Confidence::kDoubtful,
                   {Reason::kSeveralDirections, std::abs(best.degrees - rival.degrees)});
  }

  int32_t SidesSeen(const SideGroup& group) const {
    return static_cast<int32_t>(
        std::ranges::count_if(sides_.SidesOf(group), &evidence::SideLine::isSeen));
  }

  Decision DecideManySides(const SideGroup& best) const {
    const bool isWhole =
        best.count == 4 || WeakPrintAgrees(best, kWeakAgreeing) || SidesSeen(best) == best.count;
    const bool isSure = isWhole && IsStraight(best) && best.straight >= kLoneStraightShare &&
                        !WeakPrintContradicts(best);
    return ByGroup(best, isSure ? Confidence::kSure : Confidence::kLikely,
                   {Reason::kSidesAgree, static_cast<double>(best.count)});
  }

  // Whether the page runs off the picture on every side that is not in `group`.
  bool OthersRunOff(const SideGroup& group, double share) const {
    const evidence::SideSet& set = sides_.SidesOf(group);
    return std::ranges::all_of(evidence::kAllSides, [&](Side side) {
      return group.Has(side) || set[static_cast<size_t>(side)].onFrame >= share;
    });
  }

  Decision DecideTwoSides(const SideGroup& best) const {
    const bool isCorner =
        best.HasBothDirections() && (WeakPrintAgrees(best, kWeakAgreeing) || SidesSeen(best) == 2);
    const bool isStrip = best.HasOpposites() && best.spread <= kParallel &&
                         best.straight >= kExactShare && OthersRunOff(best, kOnFrame);
    const bool isConfirmed = best.HasOpposites() && WeakPrintAgrees(best, kWeakSideAgreeing);
    const bool isLikely = isCorner || isStrip || isConfirmed;
    return ByGroup(best, isLikely ? Confidence::kLikely : Confidence::kDoubtful,
                   {isLikely ? Reason::kSidesAgree : Reason::kFewSides, 2.0});
  }

  // The one side of a group of one.
  const evidence::SideLine& LineOf(const SideGroup& group) const {
    const auto side = std::ranges::find_if(evidence::kAllSides,
                                           [&](Side candidate) { return group.Has(candidate); });
    return sides_.SidesOf(group)[static_cast<size_t>(*side)];
  }

  // A whole, sharp side that nothing contradicts: of a page that runs off the picture everywhere
  // else, or of one whose print, too weak to be believed by itself, lies alike.
  bool IsLoneEdge(const SideGroup& best) const {
    const evidence::SideLine& line = LineOf(best);
    if (best.isRim || line.straight < kWholeShare || line.filled < kWholeShare ||
        line.contrast < kSharpContrast) {
      return false;
    }
    const bool isHinted = print_.whole.confidence >= kHintConfidence &&
                          OffPrint(best) <= kWeakSideAgreeing && SidesSeen(best) == 1;
    return isHinted || OthersRunOff(best, kWhollyOnFrame);
  }

  Decision DecideOneSide(const SideGroup& best) const {
    const bool isLikely = WeakPrintAgrees(best, kWeakSideAgreeing) || IsLoneEdge(best);
    return ByGroup(best, isLikely ? Confidence::kLikely : Confidence::kDoubtful,
                   {Reason::kFewSides, 1.0});
  }

  Decision DecideNothing() const {
    if (print_.strength == PrintStrength::kNone) return Refused(Reason::kNothingSeen);
    return ByPrint(Confidence::kDoubtful, {Reason::kWeakPrint, print_.whole.confidence});
  }

  const PaperSides& sides_;
  const evidence::PrintSkew& print_;
  const evidence::FormBars& bars_;
};

}  // namespace

Decision Decide(const Evidence& evidence, By by) { return Judge(evidence).Decide(by); }

}  // namespace vorlane::judge
