// A finding for programs and for people.
#pragma once

#include <span>
#include <string>

#include <nlohmann/json.hpp>

#include "vorlane/vorlane.h"

namespace vorlane::finding {

// angle, confidence, cutConfidence, corners, by, evidence, expected and reasons, as the manual page
// lists them. A refused page has its confidence, evidence and reasons only.
nlohmann::ordered_json FactsOf(const vorlane_finding& finding);

// Whether a piece of evidence was seen to lie in some direction.
bool HasTurn(const vorlane_evidence& evidence);

std::span<const vorlane_reason> ReasonsOf(const vorlane_finding& finding);

// The names of the evidence that agreed on the turn.
nlohmann::ordered_json AgreeingNames(const vorlane_finding& finding);

// "not-looked-at", "unseen", "believed", "disagrees", "too-weak" or "frame".
const char* VerdictName(int32_t verdict);

// A reason in words, with its value: "the print lies off the paper (0.70 deg)".
std::string WordsOf(const vorlane_reason& reason);

// All reasons in words.
std::string ReasonWords(const vorlane_finding& finding);

// "-1.23 deg".
std::string DegreesWords(double degrees);

}  // namespace vorlane::finding
