#include "app/overlay/finding_overlay.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "app/finding/finding_facts.h"

namespace vorlane::overlay {
namespace {

constexpr Colour kBelieved{20, 190, 70};
constexpr Colour kDisagrees{240, 50, 50};
constexpr Colour kWeak{255, 170, 0};
constexpr Colour kUnseen{215, 220, 230};
constexpr Colour kWayUp{255, 0, 200};
constexpr Colour kLabel{255, 255, 255};

Colour ColourOf(int32_t verdict) {
  switch (verdict) {
    case VORLANE_BELIEVED:
      return kBelieved;
    case VORLANE_DISAGREES:
      return kDisagrees;
    case VORLANE_TOO_WEAK:
      return kWeak;
    default:
      return kUnseen;
  }
}

std::vector<Place> CornersOf(const vorlane_finding& finding) {
  std::vector<Place> corners;
  for (const vorlane_point& corner : finding.corners) corners.push_back({corner.x, corner.y});
  return corners;
}

Place Between(Place from, Place to, double share) {
  return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

// Where the picture's own edge is the cut's, the stroke is moved in so that it can be seen.
Place MovedIn(const OverlayCanvas& canvas, Place p) {
  const double inset = 3 * canvas.unit();
  const auto within = [inset](double at, double size) {
    if (at < inset && at > -inset) return inset;
    return at > size - inset && at < size + inset ? size - inset : at;
  };
  return {within(p.x, canvas.width()), within(p.y, canvas.height())};
}

std::string EvidenceWords(int32_t place, const vorlane_evidence& evidence) {
  std::array<char, 96> text{};
  const char* name = vorlane_evidence_name(place);
  const char* verdict = finding::VerdictName(evidence.verdict);
  if (!finding::HasTurn(evidence)) {
    (void)std::snprintf(text.data(), text.size(), "%s: %s", name, verdict);
  } else {
    (void)std::snprintf(text.data(), text.size(), "%s: turn %+.2f deg, strength %.2f, %s", name,
                        evidence.turn, evidence.strength, verdict);
  }
  return text.data();
}

}  // namespace

void DrawWayUp(OverlayCanvas* canvas, const std::vector<Place>& corners, const std::string& label,
               Colour colour) {
  const Place center = Between(corners[0], corners[2], 0.5);
  const Place top = Between(corners[0], corners[1], 0.5);
  const double height = std::hypot(top.x - center.x, top.y - center.y);
  if (!(height > 0)) return;
  const double unit = canvas->unit();
  const Place up{(top.x - center.x) / height, (top.y - center.y) / height};
  const Place tip{center.x + 60 * unit * up.x, center.y + 60 * unit * up.y};
  canvas->Line(center, tip, 1.2, colour);
  for (const double side : {-6 * unit, 6 * unit}) {
    const Place barb{tip.x - 10 * unit * up.x - side * up.y,
                     tip.y - 10 * unit * up.y + side * up.x};
    canvas->Line(barb, tip, 1.2, colour);
  }
  canvas->Cross(center, 8, 1.2, colour);
  canvas->Label({center.x + 12 * unit, center.y - 4 * unit}, label, kLabel);
}

void DrawFoundOutline(OverlayCanvas* canvas, const vorlane_finding& finding) {
  if (finding.turn_confidence == VORLANE_REFUSED) return;
  const std::vector<Place> corners = CornersOf(finding);
  for (size_t side = 0; side < corners.size(); ++side) {
    canvas->Line(MovedIn(*canvas, corners[side]), MovedIn(*canvas, corners[(side + 1) % 4]), 2.5,
                 ColourOf(finding.evidence[side].verdict));
  }
}

void AddFindingCaption(const vorlane_finding& finding, std::vector<CaptionLine>* lines) {
  if (finding.turn_confidence == VORLANE_REFUSED) {
    lines->push_back({"nothing found, the page is left as it is"});
  } else {
    lines->push_back({"turn " + finding::DegreesWords(finding.turn) + " (clockwise is positive): " +
                      vorlane_confidence_name(finding.turn_confidence) +
                      "; cut: " + vorlane_confidence_name(finding.cut_confidence)});
  }
  for (const vorlane_reason& reason : finding::ReasonsOf(finding)) {
    lines->push_back({"- " + finding::WordsOf(reason)});
  }
  for (int32_t place = 0; place < VORLANE_EVIDENCE_KINDS; ++place) {
    const vorlane_evidence& evidence = finding.evidence[place];
    if (evidence.verdict == VORLANE_NOT_LOOKED_AT) continue;
    lines->push_back({EvidenceWords(place, evidence), true, ColourOf(evidence.verdict)});
  }
}

files::PixPtr DrawFindingOverlay(const files::Page& page, const vorlane_finding& finding) {
  OverlayCanvas canvas(*page.image.rec());
  DrawFoundOutline(&canvas, finding);
  if (finding.turn_confidence != VORLANE_REFUSED) {
    DrawWayUp(&canvas, CornersOf(finding), "turn " + finding::DegreesWords(finding.turn), kWayUp);
  }
  std::vector<CaptionLine> caption;
  AddFindingCaption(finding, &caption);
  return canvas.WithCaption(caption);
}

}  // namespace vorlane::overlay
