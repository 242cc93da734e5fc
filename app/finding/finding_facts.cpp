#include "app/finding/finding_facts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace vorlane::finding {
namespace {

using Json = nlohmann::ordered_json;

std::string Format(const char* format, double value) {
  std::array<char, 48> text{};
  (void)std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

// As many digits as mean something.
double Rounded(double value, double perUnit) { return std::round(value * perUnit) / perUnit + 0.0; }

// Angle and corners are told to the last digit, so that a page made of them is the same page.
Json CornersOf(const vorlane_finding& finding) {
  Json corners = Json::array();
  for (const vorlane_point& corner : finding.corners) {
    corners.push_back({corner.x, corner.y});
  }
  return corners;
}

Json EvidenceOf(const vorlane_finding& finding) {
  Json all = Json::object();
  for (int32_t place = 0; place < VORLANE_EVIDENCE_KINDS; ++place) {
    const vorlane_evidence& evidence = finding.evidence[place];
    if (evidence.verdict == VORLANE_NOT_LOOKED_AT) continue;
    Json one = {{"verdict", VerdictName(evidence.verdict)}};
    if (HasTurn(evidence)) {
      one["angle"] = Rounded(evidence.turn, 1e4);
      one["strength"] = Rounded(evidence.strength, 1e3);
    }
    all[vorlane_evidence_name(place)] = one;
  }
  return all;
}

Json ReasonFacts(const vorlane_finding& finding) {
  Json reasons = Json::array();
  for (const vorlane_reason& reason : ReasonsOf(finding)) {
    Json one = {{"code", vorlane_reason_name(reason.code)},
                {"words", vorlane_reason_text(reason.code)}};
    const std::string_view unit = vorlane_reason_unit(reason.code);
    if (!unit.empty()) {
      one["value"] = Rounded(reason.value, 1e4);
      one["unit"] = unit;
    }
    reasons.push_back(one);
  }
  return reasons;
}

std::string ValueWords(const vorlane_reason& reason) {
  const std::string_view unit = vorlane_reason_unit(reason.code);
  if (unit.empty()) return "";
  if (unit == "degrees") return Format(" (%.2f deg)", reason.value);
  if (unit == "share") return Format(" (%.1f %%)", reason.value * 100);
  if (unit == "sides")
    return Format(reason.value == 1 ? " (%.0f side)" : " (%.0f sides)", reason.value);
  return " (" + std::string(unit) + Format(" %.3g)", reason.value);
}

}  // namespace

bool HasTurn(const vorlane_evidence& evidence) {
  return evidence.verdict != VORLANE_NOT_LOOKED_AT && evidence.strength > 0;
}

std::span<const vorlane_reason> ReasonsOf(const vorlane_finding& finding) {
  return {finding.reasons, static_cast<size_t>(finding.reason_count)};
}

const char* VerdictName(int32_t verdict) {
  static constexpr std::array kNames = {"not-looked-at", "unseen",   "believed",
                                        "disagrees",     "too-weak", "frame"};
  return kNames.at(static_cast<size_t>(verdict));
}

Json AgreeingNames(const vorlane_finding& finding) {
  Json names = Json::array();
  for (int32_t place = 0; place < VORLANE_EVIDENCE_KINDS; ++place) {
    if ((finding.by >> place & 1U) != 0) names.push_back(vorlane_evidence_name(place));
  }
  return names;
}

Json FactsOf(const vorlane_finding& finding) {
  Json facts = Json::object();
  if (finding.turn_confidence != VORLANE_REFUSED) {
    facts["angle"] = finding.turn;
    // Where the cut is not believed, the page is turned and kept whole: its corners are not known.
    const bool isCutBelieved = finding.cut_confidence >= VORLANE_LIKELY;
    facts["corners"] = isCutBelieved ? CornersOf(finding) : Json(nullptr);
    facts["by"] = AgreeingNames(finding);
    facts["cutConfidence"] = vorlane_confidence_name(finding.cut_confidence);
    facts["expected"] = Rounded(finding.expected, 1e3);
  }
  facts["confidence"] = vorlane_confidence_name(finding.turn_confidence);
  facts["evidence"] = EvidenceOf(finding);
  facts["reasons"] = ReasonFacts(finding);
  return facts;
}

std::string WordsOf(const vorlane_reason& reason) {
  return vorlane_reason_text(reason.code) + ValueWords(reason);
}

std::string ReasonWords(const vorlane_finding& finding) {
  std::string words;
  for (const vorlane_reason& reason : ReasonsOf(finding)) {
    words += (words.empty() ? "" : "; ") + WordsOf(reason);
  }
  return words;
}

std::string DegreesWords(double degrees) { return Format("%+.2f deg", degrees); }

}  // namespace vorlane::finding
