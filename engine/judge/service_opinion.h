// How far a turn and a cut that another search made can be trusted, in the light of the engine's
// finding on the same picture.
//
// The image services do what they promise also where that is not what a person wants: a page that
// runs off the picture gives the picture's own angle, an even background passes for a page. Nothing
// of theirs is therefore trusted that the engine's evidence does not bear out.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/judge/finding.h"

namespace vorlane::judge {

struct ServiceResult {
  double turnDegrees = 0.0;  // clockwise positive, above -180 up to 180
  // Corners in the picture of what was cut out, clockwise from the upper left; none: not cut.
  std::optional<std::array<Point, 4>> cut;
};

// Why a result is not trusted further.
enum class Doubt : int32_t {
  kUnconfirmed,     // the engine has no answer that it acts on
  kOnItsSide,       // the page would come out turned by a quarter or a half
  kTurnedApart,     // value: degrees between the two turns
  kLikelyEvidence,  // the engine itself is not sure
  kCutUnconfirmed,  // where the page ends was not found; value: share of the picture left out
  kCutsPage,        // value: share of the page left out
  kSurroundLeft,    // value: share of the cut that lies outside the page
};

struct DoubtReport {
  Doubt doubt = Doubt::kUnconfirmed;
  double value = 0.0;
};

// kDoubtful at least; with kSure there is nothing to doubt.
struct Opinion {
  Confidence confidence = Confidence::kSure;
  std::array<DoubtReport, 4> doubts{};
  size_t doubtCount = 0;

  std::span<const DoubtReport> view() const { return std::span(doubts).first(doubtCount); }
};

// Of `found`, both confidences, the turn and the corners are looked at; the picture is of width x
// height.
Opinion JudgeService(const Finding& found, const ServiceResult& result, int32_t width,
                     int32_t height);

// "unconfirmed", "quarter-turn", "contradicted", ...: stable, for programs.
const char* NameOf(Doubt doubt);

}  // namespace vorlane::judge
