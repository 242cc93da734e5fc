#include "app/judge/judgement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "app/finding/finding_facts.h"
#include "app/judge/convex_area.h"
#include "app/judge/page_geometry.h"

namespace vorlane::judging {
namespace {

// Collects reasons and keeps the worst confidence.
class Judging {
 public:
  void Lower(Confidence to, const char* code, std::string words) {
    verdict_.confidence = std::max(verdict_.confidence, to);
    verdict_.reasons.push_back({code, std::move(words)});
  }
  // Larger is worse.
  void Above(double value, const Limits& limits, const char* code, const std::string& words) {
    if (!(value > limits.likely)) return;
    Lower(value > limits.doubtful ? Confidence::kDoubtful : Confidence::kLikely, code, words);
  }
  Verdict verdict() const { return verdict_; }

 private:
  Verdict verdict_;
};

std::string Percent(double share) {
  std::array<char, 16> text{};
  (void)std::snprintf(text.data(), text.size(), "%.1f %%", share * 100);
  return text.data();
}

void JudgeTurn(double degrees, const vorlane_finding& found, Judging* judge) {
  const double off = degrees - found.turn;
  const std::string turn = finding::DegreesWords(found.turn);
  if (std::abs(off) > 45) {
    judge->Lower(Confidence::kDoubtful, "quarter-turn",
                 "the page would come out on its side: it wants a turn of " + turn);
  } else {
    judge->Above(std::abs(off), kApart, "contradicted", "the page wants a turn of " + turn);
  }
  if (found.turn_confidence == VORLANE_LIKELY) {
    judge->Lower(Confidence::kLikely, "likely-evidence", finding::ReasonWords(found));
  }
}

std::vector<Place> PictureCorners(const ImageRec& image) {
  const double right = image.width - 0.5;
  const double bottom = image.height - 0.5;
  return {{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}};
}

std::vector<Place> FoundCorners(const vorlane_finding& found) {
  std::vector<Place> corners;
  for (const vorlane_point& corner : found.corners) corners.push_back({corner.x, corner.y});
  return corners;
}

void JudgeCut(const std::vector<Place>& cut, const ImageRec& image, const vorlane_finding& found,
              Judging* judge) {
  if (found.cut_confidence < VORLANE_LIKELY) {
    judge->Lower(Confidence::kLikely, "cut-unconfirmed", "where the page ends was not found");
    return;
  }
  const std::vector<Place> picture = PictureCorners(image);
  const std::vector<Place> sheet = Common(MovedOut(FoundCorners(found), -kCutSlack), picture);
  const double kept = Area(Common(sheet, cut));
  const double lost = 1 - kept / std::max(1.0, Area(sheet));
  judge->Above(lost, kLost, "cuts-page", "the cut leaves out " + Percent(lost) + " of the page");
  const std::vector<Place> wide = MovedOut(FoundCorners(found), kCutSlack);
  const double surround = 1 - Area(Common(wide, cut)) / std::max(1.0, Area(cut));
  if (surround > kMostSurround) {
    judge->Lower(Confidence::kLikely, "surround-left",
                 Percent(surround) + " of the cut lie outside the page");
  }
}

}  // namespace

Verdict Judge(const TurnOutcome& outcome, const ImageRec& image) {
  const vorlane_finding& found = outcome.finding;
  Judging judge;
  if (found.turn_confidence < VORLANE_LIKELY) {
    judge.Lower(Confidence::kDoubtful, "unconfirmed",
                "nothing bears the turn out: " + finding::ReasonWords(found));
    return judge.verdict();
  }
  JudgeTurn(outcome.degrees, found, &judge);
  const std::vector<Place> cut = SeenCutCorners(outcome, image.height);
  if (!cut.empty()) JudgeCut(cut, image, found, &judge);
  return judge.verdict();
}

bool IsBetter(const TurnOutcome& a, const TurnOutcome& b) {
  const bool aWorked = a.status == STATUS_OK;
  const bool bWorked = b.status == STATUS_OK;
  if (!aWorked || !bWorked) return aWorked && !bWorked;
  return a.verdict.confidence < b.verdict.confidence;
}

const char* ConfidenceName(Confidence confidence) {
  static constexpr const char* kNames[] = {"sure", "likely", "doubtful"};
  return kNames[static_cast<int>(confidence)];
}

}  // namespace vorlane::judging
