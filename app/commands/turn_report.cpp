#include "app/commands/turn_report.h"

#include <new>
#include <utility>

#include "app/commands/page_facts.h"
#include "app/finding/finding_facts.h"
#include "app/overlay/page_overlay.h"
#include "app/services/page_geometry.h"
#include "app/services/status_words.h"
#include "engine/judge/reason_words.h"

namespace vorlane::commands {
namespace {

using batch::PageFate;
using judge::Confidence;

batch::Trust TrustOf(Confidence confidence) {
  switch (confidence) {
    case Confidence::kSure:
      return batch::Trust::kSure;
    case Confidence::kLikely:
      return batch::Trust::kLikely;
    default:
      return batch::Trust::kDoubtful;
  }
}

PageFate FateOf(const TurnReport& report, const services::TurnOutcome& outcome) {
  if (outcome.status != STATUS_OK) return PageFate::kRefused;
  const bool isDoubtful = outcome.verdict.confidence == Confidence::kDoubtful;
  if (isDoubtful && !report.acceptsDoubtful) return PageFate::kDoubtful;
  return report.makesPages ? PageFate::kStraightened : PageFate::kMeasured;
}

// Angle, sizes and confidence of a page on which the service succeeded.
std::string FoundWords(const files::Page& page, const services::TurnOutcome& outcome) {
  std::string words = finding::DegreesWords(outcome.degrees) + ", " + SizeWords(*page.image.rec());
  if (outcome.result.rec()->pixels != nullptr) words += " -> " + SizeWords(*outcome.result.rec());
  words += std::string(", ") + judge::NameOf(outcome.verdict.confidence);
  const char* before = ": ";
  for (const services::Reason& reason : outcome.verdict.reasons) {
    words += std::exchange(before, "; ") + reason.words;
  }
  return words;
}

nlohmann::ordered_json ReasonsOf(const services::TurnOutcome& outcome) {
  nlohmann::ordered_json reasons = nlohmann::ordered_json::array();
  if (outcome.status != STATUS_OK) {
    reasons.push_back(ReasonFacts("service-failed", services::FailureWords(outcome)));
    return reasons;
  }
  for (const services::Reason& reason : outcome.verdict.reasons) {
    reasons.push_back(ReasonFacts(reason.code, reason.words));
  }
  return reasons;
}

nlohmann::ordered_json FactsOf(const files::Page& page, const services::TurnOutcome& outcome) {
  nlohmann::ordered_json facts = {{"status", outcome.status}};
  facts.update(PictureFacts(page));
  facts["threshold"] = outcome.threshold;
  if (outcome.status == STATUS_OK) {
    facts["angle"] = outcome.degrees;
    const auto corners = services::SeenCutCorners(outcome, page.image.rec()->height);
    for (const services::Place& p : corners) facts["corners"].push_back({p.x, p.y});
    facts["confidence"] = judge::NameOf(outcome.verdict.confidence);
  }
  facts["reasons"] = ReasonsOf(outcome);
  if (outcome.result.rec()->pixels != nullptr) PutNewSize(*outcome.result.rec(), &facts);
  return facts;
}

}  // namespace

batch::PageOutcome OutcomeOf(const TurnReport& report, const files::Page& page,
                             const std::shared_ptr<services::TurnOutcome>& outcome) {
  batch::PageOutcome result;
  result.fate = FateOf(report, *outcome);
  const bool isFound = outcome->status == STATUS_OK;
  if (isFound) result.trust = TrustOf(outcome->verdict.confidence);
  result.words =
      isFound ? FoundWords(page, *outcome)
              : services::FailureWords(*outcome) + " [" + std::to_string(outcome->status) + "]";
  result.facts = FactsOf(page, *outcome);
  result.notes = outcome->notes;
  if (result.fate == PageFate::kStraightened) result.image = std::move(outcome->result);
  result.draw = [outcome](const files::Page& drawn) {
    return overlay::DrawOverlay(drawn, *outcome);
  };
  return result;
}

vorlane_finding FindingFor(finding::PageEngine* engine, const TurnReport& report,
                           const ImageRec& image) {
  vorlane_detect_options look = finding::DefaultDetectOptions();
  look.is_form = report.isForm ? 1 : 0;
  vorlane_finding found = finding::EmptyFinding();
  const vorlane_status status = engine->Detect(image, look, &found);
  if (status == VORLANE_NO_MEMORY) throw std::bad_alloc();
  return status == VORLANE_OK ? found : finding::EmptyFinding();
}

namespace {

// The services' sums of squares wrap on such a page.
bool IsTooLarge(const ImageRec& image) {
  return image.width > VORLANE_MAX_EDGE || image.height > VORLANE_MAX_EDGE;
}

batch::PageOutcome TooLargeOutcome(const files::Page& page) {
  batch::PageOutcome outcome;
  outcome.words = vorlane_status_text(VORLANE_TOO_LARGE);
  outcome.facts = PictureFacts(page);
  outcome.facts["confidence"] = vorlane_confidence_name(VORLANE_REFUSED);
  outcome.facts["reasons"] = {ReasonFacts("too-large", outcome.words)};
  return outcome;
}

}  // namespace

batch::PageService ServiceOf(const TurnReport& report, const TurnService& service) {
  return [engine = std::make_shared<finding::PageEngine>(), report,
          service](const files::Page& page) {
    if (IsTooLarge(*page.image.rec())) return TooLargeOutcome(page);
    const vorlane_finding found = FindingFor(engine.get(), report, *page.image.rec());
    return OutcomeOf(report, page, std::make_shared<services::TurnOutcome>(service(page, found)));
  };
}

}  // namespace vorlane::commands
