#include "app/services/verdict.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "app/finding/finding_facts.h"
#include "app/services/page_geometry.h"
#include "engine/judge/service_opinion.h"

namespace vorlane::services {
namespace {

std::string Percent(double share) {
  std::array<char, 16> text{};
  (void)std::snprintf(text.data(), text.size(), "%.1f %%", share * 100);
  return text.data();
}

std::string WordsOf(const judge::DoubtReport& report, const vorlane_finding& found) {
  switch (report.doubt) {
    case judge::Doubt::kUnconfirmed:
      return "nothing bears the turn out: " + finding::ReasonWords(found);
    case judge::Doubt::kOnItsSide:
      return "the page would come out on its side: it wants a turn of " +
             finding::DegreesWords(found.turn);
    case judge::Doubt::kTurnedApart:
      return "the page wants a turn of " + finding::DegreesWords(found.turn);
    case judge::Doubt::kLikelyEvidence:
      return finding::ReasonWords(found);
    case judge::Doubt::kCutUnconfirmed:
      return "where the page ends was not found, and the cut leaves out " + Percent(report.value) +
             " of the picture";
    case judge::Doubt::kCutsPage:
      return "the cut leaves out " + Percent(report.value) + " of the page";
    default:
      return Percent(report.value) + " of the cut lie outside the page";
  }
}

judge::Finding EngineFinding(const vorlane_finding& found) {
  judge::Finding finding;
  finding.angleConfidence = static_cast<judge::Confidence>(found.turn_confidence);
  finding.cutConfidence = static_cast<judge::Confidence>(found.cut_confidence);
  finding.turnDegrees = found.turn;
  std::ranges::transform(found.corners, finding.corners.begin(), [](const vorlane_point& corner) {
    return judge::Point{corner.x, corner.y};
  });
  return finding;
}

judge::ServiceResult ResultOf(const TurnOutcome& outcome, int32_t height) {
  judge::ServiceResult result;
  result.turnDegrees = outcome.degrees;
  const std::vector<Place> corners = SeenCutCorners(outcome, height);
  if (corners.empty()) return result;
  std::ranges::transform(corners, result.cut.emplace().begin(), [](const Place& corner) {
    return judge::Point{corner.x, corner.y};
  });
  return result;
}

}  // namespace

Verdict VerdictOn(const TurnOutcome& outcome, const ImageRec& image) {
  const judge::Opinion opinion = judge::JudgeService(
      EngineFinding(outcome.finding), ResultOf(outcome, image.height), image.width, image.height);
  Verdict verdict;
  verdict.confidence = opinion.confidence;
  for (const judge::DoubtReport& report : opinion.view()) {
    verdict.reasons.push_back({judge::NameOf(report.doubt), WordsOf(report, outcome.finding)});
  }
  return verdict;
}

bool IsBetter(const TurnOutcome& a, const TurnOutcome& b) {
  const bool aWorked = a.status == STATUS_OK;
  const bool bWorked = b.status == STATUS_OK;
  if (!aWorked || !bWorked) return aWorked && !bWorked;
  return a.verdict.confidence > b.verdict.confidence;
}

}  // namespace vorlane::services
