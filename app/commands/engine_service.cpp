#include "app/commands/engine_service.h"

#include <string>
#include <utility>

#include "app/commands/page_facts.h"
#include "app/finding/finding_facts.h"
#include "app/overlay/finding_overlay.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::commands {
namespace {

using batch::PageFate;
using batch::PageOutcome;

batch::Trust TrustOf(int32_t confidence) {
  switch (confidence) {
    case VORLANE_SURE:
      return batch::Trust::kSure;
    case VORLANE_LIKELY:
      return batch::Trust::kLikely;
    case VORLANE_DOUBTFUL:
      return batch::Trust::kDoubtful;
    default:
      return batch::Trust::kNone;
  }
}

// Whether a page that the engine does not take is left as it is, with the reason: any other status
// means that something went wrong.
bool IsBeyondLimits(vorlane_status status) {
  return status == VORLANE_TOO_LARGE || status == VORLANE_RESULT_TOO_LARGE;
}

// An outcome without a page. Throws FileError for what is no trait of the page.
PageOutcome LeaveFor(const files::Page& page, vorlane_status status) {
  const std::string words = vorlane_status_text(status);
  if (!IsBeyondLimits(status)) throw files::FileError(NameOf(page) + ": " + words);
  PageOutcome outcome;
  outcome.words = words;
  outcome.facts = PictureFacts(page);
  outcome.facts["confidence"] = vorlane_confidence_name(VORLANE_REFUSED);
  outcome.facts["reasons"] = {
      ReasonFacts(status == VORLANE_TOO_LARGE ? "too-large" : "result-too-large", words)};
  return outcome;
}

// The angle, the sizes and how sure both are.
std::string WordsOf(const vorlane_finding& found, const files::Page& page,
                    const PageOutcome& outcome) {
  if (found.turn_confidence == VORLANE_REFUSED) return finding::ReasonWords(found);
  std::string words = finding::DegreesWords(found.turn) + ", " + SizeWords(*page.image.rec());
  if (outcome.image.rec()->pixels != nullptr) words += " -> " + SizeWords(*outcome.image.rec());
  words += std::string(", ") + vorlane_confidence_name(found.turn_confidence);
  const std::string reasons = finding::ReasonWords(found);
  return reasons.empty() ? words : words + ": " + reasons;
}

void Tell(const vorlane_finding& found, const files::Page& page, PageOutcome* outcome) {
  outcome->trust = TrustOf(found.turn_confidence);
  outcome->words = WordsOf(found, page, *outcome);
  outcome->facts = PictureFacts(page);
  outcome->facts.update(finding::FactsOf(found));
  if (outcome->image.rec()->pixels != nullptr) PutNewSize(*outcome->image.rec(), &outcome->facts);
  outcome->draw = [found](const files::Page& drawn) {
    return overlay::DrawFindingOverlay(drawn, found);
  };
}

// Makes the page of a finding; *result stays empty on failure.
vorlane_status Make(finding::PageEngine* engine, const ImageRec& page, const vorlane_finding& found,
                    const vorlane_apply_options& options, files::PagePixels* result) {
  int32_t width = 0;
  int32_t height = 0;
  vorlane_status status = finding::ResultSize(page, found, options, &width, &height);
  if (status != VORLANE_OK) return status;
  files::PagePixels made;
  if (made.Make(width, height, page.bitsPerPixel) != STATUS_OK) return VORLANE_NO_MEMORY;
  status = engine->Apply(page, found, options, *made.rec());
  if (status == VORLANE_OK) *result = std::move(made);
  return status;
}

PageFate FateOf(const vorlane_finding& found, int32_t minConfidence) {
  if (found.turn_confidence == VORLANE_REFUSED) return PageFate::kRefused;
  return found.turn_confidence < minConfidence ? PageFate::kDoubtful : PageFate::kMeasured;
}

PageOutcome LookAt(finding::PageEngine* engine, const files::Page& page,
                   const EngineOptions& options, bool isMade) {
  PageOutcome outcome;
  vorlane_finding found = finding::EmptyFinding();
  const vorlane_detect_options look = LookOptionsFor(options, page, &outcome.notes);
  vorlane_status status = engine->Detect(*page.image.rec(), look, &found);
  if (status != VORLANE_OK) return LeaveFor(page, status);
  outcome.fate = FateOf(found, options.make.min_confidence);
  if (isMade && outcome.fate == PageFate::kMeasured) {
    status = Make(engine, *page.image.rec(), found, MakeOptionsOf(options), &outcome.image);
    if (status != VORLANE_OK) return LeaveFor(page, status);
    outcome.fate = PageFate::kStraightened;
  }
  Tell(found, page, &outcome);
  return outcome;
}

batch::PageService ServiceFor(const EngineOptions& options, bool isMade) {
  return [engine = std::make_shared<finding::PageEngine>(), options,
          isMade](const files::Page& page) { return LookAt(engine.get(), page, options, isMade); };
}

}  // namespace

batch::PageService LookService(const EngineOptions& options) { return ServiceFor(options, false); }

batch::PageService MakeService(const EngineOptions& options) { return ServiceFor(options, true); }

PageOutcome MakeDecided(finding::PageEngine* engine, const files::Page& page,
                        const PageDecision& decision, const EngineOptions& options) {
  constexpr double kAnyTurn = 180.0;
  const ImageRec& image = *page.image.rec();
  PageOutcome outcome;
  vorlane_finding decided = finding::EmptyFinding();
  vorlane_status status =
      vorlane_finding_decide(&decided, image.width, image.height, decision.turn,
                             decision.corners ? decision.corners->data() : nullptr);
  if (status == VORLANE_OK) {
    vorlane_apply_options make = MakeOptionsOf(options);
    make.max_turn = kAnyTurn;
    status = Make(engine, image, decided, make, &outcome.image);
  }
  if (status != VORLANE_OK) return LeaveFor(page, status);
  outcome.fate = PageFate::kStraightened;
  Tell(decided, page, &outcome);
  return outcome;
}

}  // namespace vorlane::commands
