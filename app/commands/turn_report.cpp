#include "app/commands/turn_report.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include "app/judge/judgement.h"
#include "app/judge/status_words.h"
#include "app/overlay/page_overlay.h"

namespace vorlane::commands {
namespace {

using batch::PageFate;
using judging::Confidence;

std::string Size(const ImageRec& image) {
  return std::to_string(image.width) + " x " + std::to_string(image.height);
}

template <typename... Values>
std::string Format(const char* format, Values... values) {
  std::array<char, 64> text{};
  (void)std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

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

PageFate FateOf(const TurnReport& report, const judging::TurnOutcome& outcome) {
  if (outcome.status != STATUS_OK) return PageFate::kFailed;
  const bool isDoubtful = outcome.verdict.confidence == Confidence::kDoubtful;
  if (isDoubtful && !report.acceptsDoubtful) return PageFate::kDoubtful;
  return report.makesPages ? PageFate::kStraightened : PageFate::kMeasured;
}

// Angle, sizes, time and confidence of a page on which the service succeeded.
std::string FoundWords(const files::Page& page, const judging::TurnOutcome& outcome) {
  std::string words = Format("%+.2f deg, ", outcome.degrees) + Size(*page.image.rec());
  if (outcome.result.rec()->pixels != nullptr) words += " -> " + Size(*outcome.result.rec());
  words += Format(", %.1f ms, ", outcome.milliseconds);
  words += judging::ConfidenceName(outcome.verdict.confidence);
  const char* before = ": ";
  for (const std::string& reason : outcome.verdict.reasons) {
    words += std::exchange(before, "; ") + reason;
  }
  return words;
}

nlohmann::ordered_json FactsOf(const files::Page& page, const judging::TurnOutcome& outcome) {
  const ImageRec& before = *page.image.rec();
  const ImageRec& after = *outcome.result.rec();
  nlohmann::ordered_json facts = {{"status", outcome.status},
                                  {"width", before.width},
                                  {"height", before.height},
                                  {"depth", before.bitsPerPixel}};
  facts["dpi"] = {page.metadata.resolution.x, page.metadata.resolution.y};
  facts["threshold"] = outcome.threshold;
  if (outcome.status == STATUS_OK) {
    facts["angle"] = outcome.degrees;
    facts["confidence"] = judging::ConfidenceName(outcome.verdict.confidence);
    facts["reasons"] = outcome.verdict.reasons;
  } else {
    facts["reasons"] = {judging::FailureWords(outcome)};
  }
  if (after.pixels != nullptr) {
    facts["newWidth"] = after.width;
    facts["newHeight"] = after.height;
  }
  return facts;
}

}  // namespace

batch::PageOutcome OutcomeOf(const TurnReport& report, const files::Page& page,
                             const std::shared_ptr<judging::TurnOutcome>& outcome) {
  batch::PageOutcome result;
  result.fate = FateOf(report, *outcome);
  const bool isFound = outcome->status == STATUS_OK;
  if (isFound) result.trust = TrustOf(outcome->verdict.confidence);
  result.words = isFound ? FoundWords(page, *outcome)
                         : judging::FailureWords(*outcome) + " [" +
                               std::to_string(outcome->status) + "]";
  result.facts = FactsOf(page, *outcome);
  result.notes = outcome->notes;
  if (result.fate == PageFate::kStraightened) result.image = std::move(outcome->result);
  result.draw = [outcome](const files::Page& drawn) {
    return overlay::DrawOverlay(drawn, *outcome);
  };
  return result;
}

batch::PageService ServiceOf(const TurnReport& report, const TurnService& service) {
  auto turns = std::make_shared<std::mutex>();
  return [report, service, turns](const files::Page& page) {
    auto outcome = std::make_shared<judging::TurnOutcome>();
    {
      const std::lock_guard lock(*turns);
      *outcome = service(page);
    }
    return OutcomeOf(report, page, outcome);
  };
}

}  // namespace vorlane::commands
