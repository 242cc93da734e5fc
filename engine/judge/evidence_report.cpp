#include "engine/judge/evidence_report.h"

#include <algorithm>
#include <cmath>

namespace vorlane::judge {
namespace {

using evidence::kSides;
using evidence::SideLine;

// Degrees off the answer up to which a piece of evidence speaks for it.
constexpr double kSideAgreeing = 0.45;
constexpr double kPrintAgreeing = 0.25;
constexpr double kBarAgreeing = 0.3;
constexpr double kVoteAgreeing = 0.25;
// Above this share of its trace on the picture's edge an unseen side is the frame's.
constexpr double kOnFrame = 0.5;
// A print's confidence of so much is full strength.
constexpr double kFullConfidence = 10.0;

Verdict VerdictOf(double off, double agreeing) {
  return std::abs(off) <= agreeing ? Verdict::kBelieved : Verdict::kDisagrees;
}

EvidenceReport ReportSide(const SideLine& line, double degrees) {
  if (!line.isSeen) {
    return {0.0, 0.0, line.onFrame >= kOnFrame ? Verdict::kFrame : Verdict::kUnseen};
  }
  const Verdict verdict =
      line.isFrameLike ? Verdict::kFrame : VerdictOf(line.degrees - degrees, kSideAgreeing);
  return {line.degrees, line.filled * line.straight, verdict};
}

EvidenceReport ReportPrint(const evidence::PrintSkew& print, double degrees) {
  if (print.whole.confidence <= 0.0) return {0.0, 0.0, Verdict::kUnseen};
  EvidenceReport report;
  report.degrees = print.whole.degrees;
  report.strength = std::min(print.whole.confidence / kFullConfidence, 1.0);
  report.verdict = print.strength == evidence::PrintStrength::kNone
                       ? Verdict::kTooWeak
                       : VerdictOf(print.whole.degrees - degrees, kPrintAgreeing);
  return report;
}

EvidenceReport ReportBars(const evidence::FormBars& bars, double degrees) {
  if (bars.count == 0) return {0.0, 0.0, Verdict::kUnseen};
  if (bars.spread > kBarAgreeing) return {bars.degrees, 0.0, Verdict::kTooWeak};
  return {bars.degrees, 1.0, VerdictOf(bars.degrees - degrees, kBarAgreeing)};
}

EvidenceReport ReportVote(const evidence::PaperSides& sides, double degrees) {
  if (!sides.hasVote) return {0.0, 0.0, Verdict::kUnseen};
  return {sides.voteDegrees, 1.0, VerdictOf(sides.voteDegrees - degrees, kVoteAgreeing)};
}

}  // namespace

void ReportEvidence(const Evidence& evidence, const Decision& decision, bool wasPrintLookedAt,
                    bool wereBarsLookedAt, Finding* finding) {
  const auto at = [finding](EvidenceKind kind) -> EvidenceReport& {
    return finding->evidence[static_cast<size_t>(kind)];
  };
  const size_t threshold = decision.group != nullptr       ? decision.group->threshold
                           : evidence.sides.groupCount > 0 ? evidence.sides.groups[0].threshold
                                                           : 0;
  for (size_t i = 0; i < kSides; ++i) {
    finding->evidence[i] = ReportSide(evidence.sides.sets[threshold][i], decision.degrees);
  }
  if (wasPrintLookedAt) at(EvidenceKind::kPrint) = ReportPrint(evidence.print, decision.degrees);
  if (wereBarsLookedAt) at(EvidenceKind::kBar) = ReportBars(evidence.bars, decision.degrees);
  at(EvidenceKind::kVote) = ReportVote(evidence.sides, decision.degrees);
  finding->by = 0;
  for (size_t i = 0; i < kEvidenceKinds; ++i) {
    Verdict& verdict = finding->evidence[i].verdict;
    const bool hasAnswer = decision.confidence != Confidence::kRefused;
    if (!hasAnswer && (verdict == Verdict::kBelieved || verdict == Verdict::kDisagrees)) {
      verdict = Verdict::kTooWeak;
    }
    if (verdict == Verdict::kBelieved) finding->by |= uint32_t{1} << i;
  }
}

}  // namespace vorlane::judge
