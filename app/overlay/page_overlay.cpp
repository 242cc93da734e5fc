#include "app/overlay/page_overlay.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/finding/finding_facts.h"
#include "app/overlay/bar_overlay.h"
#include "app/overlay/finding_overlay.h"
#include "app/services/page_geometry.h"
#include "app/services/status_words.h"
#include "engine/judge/reason_words.h"

namespace vorlane::overlay {
namespace {

constexpr Colour kOutline{255, 0, 200};
constexpr Colour kContent{255, 210, 0};

constexpr Colour ColourOf(services::Side side) {
  switch (side) {
    case services::Side::kLeft:
      return {240, 50, 50};
    case services::Side::kRight:
      return {40, 130, 255};
    case services::Side::kTop:
      return {20, 190, 70};
    default:
      return {255, 140, 0};
  }
}

Place At(const vorlanepic::frame::PixelPoint& p) {
  return {static_cast<double>(p.x), static_cast<double>(p.y)};
}

// Across the whole page; the canvas clips it.
void DrawLine(OverlayCanvas* canvas, const vorlanepic::analysis::BorderLine& line, double width,
              Colour colour) {
  const double far = canvas->width() + canvas->height();
  switch (line.kind) {
    case vorlanepic::analysis::LineKind::kHorizontal:
      canvas->Line({-far, line.intercept}, {far, line.intercept}, width, colour);
      break;
    case vorlanepic::analysis::LineKind::kVertical:
      canvas->Line({line.intercept, -far}, {line.intercept, far}, width, colour);
      break;
    case vorlanepic::analysis::LineKind::kGeneral: {
      // From the page's middle row, so that a steep line keeps its precision.
      const double y = canvas->height() / 2.0;
      const double x = (y - line.intercept) / line.slope;
      const double reach = far / std::hypot(1.0, line.slope);
      const Place from = std::abs(line.slope) > 1 ? Place{x, y} : Place{0, line.intercept};
      canvas->Line({from.x - 2 * reach, from.y - 2 * reach * line.slope},
                   {from.x + 2 * reach, from.y + 2 * reach * line.slope}, width, colour);
      break;
    }
    default:
      break;
  }
}

void DrawTrace(OverlayCanvas* canvas, const vorlanepic::analysis::SideTrace& trace, Colour colour) {
  for (const vorlanepic::frame::PixelPoint& p :
       trace.points.span().first(static_cast<size_t>(trace.pointCount))) {
    canvas->Dot(At(p), 1.5, {0, 0, 0});
    canvas->Dot(At(p), 0.9, colour);
  }
}

void DrawSides(OverlayCanvas* canvas, const services::TurnOutcome& outcome) {
  const vorlanepic::deskew::PageRecords& records = *outcome.page;
  for (const services::Side side : services::kSides)
    DrawTrace(canvas, services::TraceOf(records, side), ColourOf(side));
  if (outcome.kind == services::TurnKind::kPruned) {
    if (records.stage >= vorlanepic::deskew::PageStage::kCorners) {
      for (const services::Side side : services::kSides) {
        DrawLine(canvas, services::EdgeOf(records, side).line, 0.8, ColourOf(side));
      }
    }
  } else {
    for (const services::Side side : services::kSides) {
      const auto index = static_cast<size_t>(side);
      if (!records.votes[index].hasAngle) continue;
      const bool wins = records.bestBorder == static_cast<int32_t>(index);
      DrawLine(canvas, records.votes[index].line, wins ? 1.8 : 0.5, ColourOf(side));
    }
  }
}

void DrawContent(OverlayCanvas* canvas, const services::TurnOutcome& outcome) {
  const vorlanepic::deskew::PageRecords& records = *outcome.page;
  if (records.stage < vorlanepic::deskew::PageStage::kContent) return;
  const double last = canvas->height() - 1;
  const vorlanepic::frame::PixelRect& c = records.content;
  const double top = outcome.isFlipped ? last - c.bottom : c.top;
  const double bottom = outcome.isFlipped ? last - c.top : c.bottom;
  canvas->Box(c.left, top, c.right, bottom, 1.2, kContent);
}

std::string ResultCaption(const files::Page& page, const services::TurnOutcome& outcome) {
  if (outcome.status != STATUS_OK) {
    return "FAILED (" + std::to_string(outcome.status) + "): " + services::FailureWords(outcome);
  }
  const bool isGrey = page.image.rec()->bitsPerPixel != 1;
  char text[96];
  std::snprintf(text, sizeof(text), "turn %+.2f deg (clockwise is positive), %s%s%s",
                outcome.degrees, isGrey ? "threshold " : "",
                isGrey ? (std::to_string(outcome.threshold) + ", ").c_str() : "",
                judge::NameOf(outcome.verdict.confidence));
  return text;
}

std::string SideCaption(const services::TurnOutcome& outcome, services::Side side) {
  std::string caption = std::string(services::SideName(side)) + ": " +
                        std::to_string(services::TraceOf(*outcome.page, side).pointCount) +
                        " border points";
  if (outcome.kind != services::TurnKind::kBorderVote) return caption;
  const auto index = static_cast<size_t>(side);
  const vorlanepic::deskew::BorderVote& vote = outcome.page->votes[index];
  if (!vote.hasAngle) return caption + ", no vote";
  char text[64];
  std::snprintf(text, sizeof(text), ", %d votes for %.2f deg%s", vote.votes, vote.angle,
                outcome.page->bestBorder == static_cast<int32_t>(index) ? " (wins)" : "");
  return caption + text;
}

std::vector<CaptionLine> Caption(const files::Page& page, const services::TurnOutcome& outcome,
                                 bool isCut) {
  std::vector<CaptionLine> lines;
  lines.push_back({ResultCaption(page, outcome)});
  for (const services::Reason& reason : outcome.verdict.reasons)
    lines.push_back({"- " + reason.words});
  if (outcome.kind != services::TurnKind::kBar) {
    for (const services::Side side : services::kSides) {
      if (services::TraceOf(*outcome.page, side).pointCount == 0) continue;
      lines.push_back({SideCaption(outcome, side), true, ColourOf(side)});
    }
  } else if (outcome.bar) {
    AddBarCaption(*outcome.bar, &lines);
  }
  if (outcome.kind != services::TurnKind::kPruned &&
      outcome.page->stage >= vorlanepic::deskew::PageStage::kContent) {
    lines.push_back({"content found before the turn", true, kContent});
  }
  if (isCut) lines.push_back({"the cut, its centre and way up", true, kOutline});
  lines.push_back({"The page engine, held against it:"});
  AddFindingCaption(outcome.finding, &lines);
  return lines;
}

}  // namespace

files::PixPtr DrawOverlay(const files::Page& page, const services::TurnOutcome& outcome) {
  OverlayCanvas canvas(*page.image.rec());
  const std::vector<Place> cut = services::SeenCutCorners(outcome, canvas.height());
  // The outline lies on the borders: what they rest on is drawn over it.
  if (!cut.empty()) canvas.Polygon(cut, 5, kOutline);
  if (outcome.kind != services::TurnKind::kPruned) DrawContent(&canvas, outcome);
  if (outcome.kind == services::TurnKind::kBar) {
    if (outcome.bar) DrawBar(&canvas, *outcome.bar);
  } else {
    DrawSides(&canvas, outcome);
  }
  DrawFoundOutline(&canvas, outcome.finding);
  if (!cut.empty())
    DrawWayUp(&canvas, cut, "turn " + finding::DegreesWords(outcome.degrees), kOutline);
  return canvas.WithCaption(Caption(page, outcome, !cut.empty()));
}

}  // namespace vorlane::overlay
