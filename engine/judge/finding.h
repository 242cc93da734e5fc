// What the engine found on a picture: the turn, the cut, how sure of each, and why.
//
// Picture coordinates are pixels, x to the right and y down; the middle of the first pixel is
// (0, 0), so the whole picture reaches from -0.5 to width - 0.5.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vorlane::judge {

struct Point {
  double x;
  double y;
};

// How far an answer may be trusted. The order is that of trust.
enum class Confidence : int32_t {
  kRefused,   // nothing speaks: there is no answer
  kDoubtful,  // an answer that nobody should act on unseen
  kLikely,
  kSure,
};

// Evidence that can speak for an angle. The values are places in Finding::evidence and, as
// 1 << value, bits of Finding::by.
enum class EvidenceKind : int32_t {
  kTopSide,
  kRightSide,
  kBottomSide,
  kLeftSide,
  kPrint,
  kBar,
  kVote,  // the vote of the traced borders
};
inline constexpr size_t kEvidenceKinds = 7;

// What became of one piece of evidence.
enum class Verdict : int32_t {
  kNotLookedAt,
  kUnseen,     // looked for and not there
  kBelieved,   // speaks for the angle that was given
  kDisagrees,  // speaks for another angle
  kTooWeak,    // not enough of it
  kFrame,      // it is the picture's own frame, not the page's
};

// One piece of evidence.
struct EvidenceReport {
  double degrees = 0.0;   // by which it lies turned clockwise; 0 where unseen
  double strength = 0.0;  // 0..1: share of the side that is straight and complete; the print's
                          // confidence over 10
  Verdict verdict = Verdict::kNotLookedAt;
};

// Why an answer is what it is. The words and the published name of each are in reason_words.h.
enum class Reason : int32_t {
  kNone,
  kSidesAndPrintAgree,
  kSidesAgree,
  kPrintAlone,
  kBarAgrees,
  kAskedFor,             // the caller chose the evidence
  kPrintOffPaper,        // value: degrees
  kPrintTooSteep,        // value: degrees
  kSidesAndPrintDiffer,  // value: degrees
  kOnlyRimSeen,
  kSeveralDirections,  // value: degrees between the two best
  kCurvedSides,
  kSidesNotParallel,  // perspective; value: degrees between the sides
  kFewSides,          // value: sides seen
  kWeakPrint,         // value: its confidence
  kNothingSeen,
  kNoContrast,
  kTooSmall,
  kTooSteep,          // beyond the largest turn asked for; value: degrees
  kPrintOutsideCut,   // value: share
  kLightOutsideCut,   // value: share
  kSideUnseen,        // value: sides of the cut that are bounded by where the light ends
  kSideRunsOffFrame,  // value: sides of the cut that are the frame
  kCutWidened,        // value: share of the sheet that would have been lost
  kKeptWhole,         // the angle alone is believed
  kNotTurned,         // under the smallest turn worth resampling for; value: degrees
  kBelowConfidence,   // found, but under the confidence asked for
  kNoBar,             // the caller chose the bar, and none is seen
};

struct ReasonReport {
  Reason reason = Reason::kNone;
  double value = 0.0;
};
inline constexpr size_t kMostReasons = 8;

// A rectangle of the turned page, in pixels: the picture turned about its middle, whose middle is
// (0, 0) here. Edges are the pixels' outer edges, so right - left is the width.
struct CutRect {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

// The answer for one picture. Plain data, nothing to release.
struct Finding {
  Confidence angleConfidence = Confidence::kRefused;
  Confidence cutConfidence = Confidence::kRefused;
  double turnDegrees = 0.0;        // the turn to make, clockwise positive, -45..45
  CutRect cut;                     // what to keep; the whole picture where the cut is not believed
  std::array<Point, 4> corners{};  // those of `cut` in the picture, clockwise from the upper left
  uint32_t by = 0;                 // evidence that agreed: bits 1 << EvidenceKind
  double expected = 0.0;  // share of right answers that the published table gives this evidence
  std::array<EvidenceReport, kEvidenceKinds> evidence{};
  std::array<ReasonReport, kMostReasons> reasons{};  // the first reasonCount, most telling first
  size_t reasonCount = 0;
};

constexpr uint32_t Bit(EvidenceKind kind) { return uint32_t{1} << static_cast<uint32_t>(kind); }

// The corners in the picture of a cut of the page that is turned by `turnDegrees`, and the cut's
// bounding rectangle for corners that were moved.
std::array<Point, 4> CornersOfCut(const CutRect& cut, double turnDegrees, int32_t width,
                                  int32_t height);
CutRect CutAround(const std::array<Point, 4>& corners, double turnDegrees, int32_t width,
                  int32_t height);

}  // namespace vorlane::judge
