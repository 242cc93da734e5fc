#include "engine/api/words.h"

#include <algorithm>
#include <iterator>

#include "engine/judge/reason_words.h"
#include "vorlane/vorlane.h"

namespace {

using vorlane::judge::Reason;

constexpr const char* kUnknown = "unknown";

// In the order of the codes.
constexpr const char* kStatusTexts[] = {
    "done",
    "an argument is null, or a record was not initialised",
    "the image has no size, an unknown format, or a stride shorter than a row",
    "an option is out of its range",
    "the finding is of another page, holds what is no number, or cuts everything off",
    "the page has an edge of more than 46,340 pixels, or takes more than 2^31 - 1 bytes",
    "the turn is larger than the options allow",
    "the result is larger, compared with the page, than the options allow",
    "the result does not fit the memory that was given for it",
    "the finding is less sure than the options ask for",
    "there is no memory",
    "another call is using the context",
    "the library has failed"};
static_assert(std::size(kStatusTexts) == VORLANE_INTERNAL + 1);

struct ReasonCode {
  int32_t code;
  Reason reason;
};

constexpr ReasonCode kReasonCodes[] = {
    {VORLANE_REASON_NONE, Reason::kNone},
    {VORLANE_REASON_SIDES_AND_PRINT_AGREE, Reason::kSidesAndPrintAgree},
    {VORLANE_REASON_SIDES_AGREE, Reason::kSidesAgree},
    {VORLANE_REASON_PRINT_ALONE, Reason::kPrintAlone},
    {VORLANE_REASON_BAR_AGREES, Reason::kBarAgrees},
    {VORLANE_REASON_ASKED_FOR, Reason::kAskedFor},
    {VORLANE_REASON_PRINT_OFF_PAPER, Reason::kPrintOffPaper},
    {VORLANE_REASON_PRINT_TOO_STEEP, Reason::kPrintTooSteep},
    {VORLANE_REASON_SIDES_AND_PRINT_DIFFER, Reason::kSidesAndPrintDiffer},
    {VORLANE_REASON_ONLY_RIM_SEEN, Reason::kOnlyRimSeen},
    {VORLANE_REASON_SEVERAL_DIRECTIONS, Reason::kSeveralDirections},
    {VORLANE_REASON_CURVED_SIDES, Reason::kCurvedSides},
    {VORLANE_REASON_SIDES_NOT_PARALLEL, Reason::kSidesNotParallel},
    {VORLANE_REASON_FEW_SIDES, Reason::kFewSides},
    {VORLANE_REASON_WEAK_PRINT, Reason::kWeakPrint},
    {VORLANE_REASON_NOTHING_SEEN, Reason::kNothingSeen},
    {VORLANE_REASON_NO_CONTRAST, Reason::kNoContrast},
    {VORLANE_REASON_TOO_SMALL, Reason::kTooSmall},
    {VORLANE_REASON_TOO_STEEP, Reason::kTooSteep},
    {VORLANE_REASON_PRINT_OUTSIDE_CUT, Reason::kPrintOutsideCut},
    {VORLANE_REASON_LIGHT_OUTSIDE_CUT, Reason::kLightOutsideCut},
    {VORLANE_REASON_SIDE_UNSEEN, Reason::kSideUnseen},
    {VORLANE_REASON_SIDE_RUNS_OFF_FRAME, Reason::kSideRunsOffFrame},
    {VORLANE_REASON_CUT_WIDENED, Reason::kCutWidened},
    {VORLANE_REASON_KEPT_WHOLE, Reason::kKeptWhole},
    {VORLANE_REASON_NOT_TURNED, Reason::kNotTurned},
    {VORLANE_REASON_BELOW_CONFIDENCE, Reason::kBelowConfidence},
    {VORLANE_REASON_NO_BAR, Reason::kNoBar},
};
static_assert(std::size(kReasonCodes) == static_cast<size_t>(Reason::kNoBar) + 1);

// The words of a reason, or null for a code that there is not.
const vorlane::judge::ReasonWords* WordsOf(int32_t code) {
  const auto* found = std::ranges::find(kReasonCodes, code, &ReasonCode::code);
  return found != std::end(kReasonCodes) ? &vorlane::judge::WordsOf(found->reason) : nullptr;
}

}  // namespace

int32_t vorlane::api::CodeOf(judge::Reason reason) {
  const auto* found = std::ranges::find(kReasonCodes, reason, &ReasonCode::reason);
  return found != std::end(kReasonCodes) ? found->code : VORLANE_REASON_NONE;
}

const char* vorlane_status_text(vorlane_status status) noexcept {
  return status >= 0 && status <= VORLANE_INTERNAL ? kStatusTexts[status] : kUnknown;
}

const char* vorlane_confidence_name(int32_t confidence) noexcept {
  if (confidence < VORLANE_REFUSED || confidence > VORLANE_SURE) return kUnknown;
  return vorlane::judge::NameOf(static_cast<vorlane::judge::Confidence>(confidence));
}

const char* vorlane_evidence_name(int32_t place) noexcept {
  if (place < 0 || place >= VORLANE_EVIDENCE_KINDS) return kUnknown;
  return vorlane::judge::NameOf(static_cast<vorlane::judge::EvidenceKind>(place));
}

const char* vorlane_reason_name(int32_t code) noexcept {
  const auto* words = WordsOf(code);
  return words != nullptr ? words->name : kUnknown;
}

const char* vorlane_reason_text(int32_t code) noexcept {
  const auto* words = WordsOf(code);
  return words != nullptr ? words->words : kUnknown;
}

const char* vorlane_reason_unit(int32_t code) noexcept {
  const auto* words = WordsOf(code);
  return words != nullptr ? words->unit : kUnknown;
}

int32_t vorlane_version(void) noexcept { return VORLANE_VERSION_NUMBER; }
