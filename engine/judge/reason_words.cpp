#include "engine/judge/reason_words.h"

#include <iterator>

namespace vorlane::judge {
namespace {

// In the order of Reason.
constexpr ReasonWords kReasonWords[] = {
    {"none", "no reason", ""},
    {"sides-and-print-agree", "sides of the paper and print agree", "degrees"},
    {"sides-agree", "sides of the paper agree", "sides"},
    {"print-alone", "the print alone speaks", ""},
    {"bar-agrees", "the reference bar gives the angle", ""},
    {"asked-for", "the evidence that was asked for", ""},
    {"print-off-paper", "the print lies off the paper", "degrees"},
    {"print-too-steep", "the print lies too steep to be believed alone", "degrees"},
    {"sides-and-print-differ", "sides of the paper and print disagree", "degrees"},
    {"only-rim-seen", "only the picture's rim is seen", ""},
    {"several-directions", "sides of several directions", "degrees"},
    {"curved-sides", "the sides are not straight", ""},
    {"sides-not-parallel", "the sides are not parallel", "degrees"},
    {"few-sides", "too few sides are seen", "sides"},
    {"weak-print", "the print is too weak", "confidence"},
    {"nothing-seen", "neither sides nor print are seen", ""},
    {"no-contrast", "the picture has no contrast", ""},
    {"too-small", "the picture is too small", ""},
    {"too-steep", "the page lies steeper than asked for", "degrees"},
    {"print-outside-cut", "print lies outside the cut", "share"},
    {"light-outside-cut", "light lies outside the cut", "share"},
    {"side-unseen", "the cut ends where the light ends", "sides"},
    {"side-runs-off-frame", "the page runs off the picture", "sides"},
    {"cut-widened", "the cut was widened to keep the sheet", "share"},
    {"kept-whole", "only the angle is believed, the picture is kept whole", ""},
    {"not-turned", "too little off to be turned", "degrees"},
    {"below-confidence", "less sure than was asked for", ""},
    {"no-bar", "no reference bar is seen", ""},
};
static_assert(std::size(kReasonWords) == static_cast<size_t>(Reason::kNoBar) + 1);

constexpr const char* kEvidenceNames[] = {"top", "right", "bottom", "left", "print", "bar", "vote"};
static_assert(std::size(kEvidenceNames) == kEvidenceKinds);

constexpr const char* kConfidenceNames[] = {"refused", "doubtful", "likely", "sure"};

}  // namespace

const ReasonWords& WordsOf(Reason reason) {
  const auto i = static_cast<size_t>(reason);
  return kReasonWords[i < std::size(kReasonWords) ? i : 0];
}

const char* NameOf(EvidenceKind kind) { return kEvidenceNames[static_cast<size_t>(kind)]; }

const char* NameOf(Confidence confidence) {
  return kConfidenceNames[static_cast<size_t>(confidence)];
}

}  // namespace vorlane::judge
