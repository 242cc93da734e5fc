// A finding for programs and for people.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "vorlane/vorlane.h"

namespace vorlane::finding {

// angle, confidence, cutConfidence, corners, by, evidence, expected and reasons, as the manual page
// lists them. A refused page has its confidence and reasons only.
nlohmann::ordered_json FactsOf(const vorlane_finding& finding);

// The reasons in words, with their values.
std::string ReasonWords(const vorlane_finding& finding);

// "-1.23 deg, sure: four sides agree ...", without line end.
std::string FindingWords(const vorlane_finding& finding);

}  // namespace vorlane::finding
