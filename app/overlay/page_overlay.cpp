#include "app/overlay/page_overlay.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/judge/judgement.h"
#include "app/judge/page_geometry.h"
#include "app/judge/status_words.h"
#include "app/overlay/bar_overlay.h"

namespace vorlane::overlay {
namespace {

constexpr Colour kOutline{255, 0, 200};
constexpr Colour kContent{255, 210, 0};
constexpr Colour kDropped{250, 250, 250};

constexpr Colour ColourOf(judging::Side side) {
  switch (side) {
    case judging::Side::kLeft:
      return {240, 50, 50};
    case judging::Side::kRight:
      return {40, 130, 255};
    case judging::Side::kTop:
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

void DrawSupport(OverlayCanvas* canvas, const std::vector<vorlanepic::frame::PixelPoint>& points,
                 Colour colour) {
  for (const vorlanepic::frame::PixelPoint& p : points) canvas->Dot(At(p), 2.2, {0, 0, 0});
  for (const vorlanepic::frame::PixelPoint& p : points) canvas->Dot(At(p), 1.6, colour);
}

// Where the content's upper edge went, from the centre upwards as it stands on the turned page.
void DrawCenter(OverlayCanvas* canvas, const judging::CutRect& cut, double degrees) {
  const double reach = 60 * canvas->unit();
  canvas->Line(cut.center, cut.ToSource(0, -reach), 1.2, kOutline);
  canvas->Line(cut.ToSource(-6 * canvas->unit(), -reach + 10 * canvas->unit()),
               cut.ToSource(0, -reach), 1.2, kOutline);
  canvas->Line(cut.ToSource(6 * canvas->unit(), -reach + 10 * canvas->unit()),
               cut.ToSource(0, -reach), 1.2, kOutline);
  canvas->Cross(cut.center, 8, 1.2, kOutline);
  char text[40];
  std::snprintf(text, sizeof(text), "turn %+.2f deg", degrees);
  canvas->Label({cut.center.x + 12 * canvas->unit(), cut.center.y - 4 * canvas->unit()}, text,
                {255, 255, 255});
}

std::string SideCaption(const judging::TurnOutcome& outcome, const ImageRec& image,
                        judging::Side side) {
  const judging::SideMeasure measure = judging::MeasureSide(outcome, image, side);
  const vorlanepic::analysis::SideTrace& trace = judging::TraceOf(*outcome.page, side);
  char text[160];
  int length = std::snprintf(text, sizeof(text), "%-6s %4d points, %4d kept",
                             judging::SideName(side), trace.pointCount, measure.points);
  std::string caption(text, static_cast<size_t>(std::max(length, 0)));
  if (outcome.kind == judging::TurnKind::kBorderVote) {
    const auto index = static_cast<size_t>(side);
    const vorlanepic::deskew::BorderVote& vote = outcome.page->votes[index];
    if (!vote.hasAngle) return caption + ", no vote";
    length =
        std::snprintf(text, sizeof(text), ", %d votes for %.2f deg%s", vote.votes, vote.angle,
                      outcome.page->bestBorder == static_cast<int32_t>(index) ? " (wins)" : "");
    caption.append(text, static_cast<size_t>(std::max(length, 0)));
    return caption;
  }
  if (measure.points < 2) return caption;
  length =
      std::snprintf(text, sizeof(text), ", leans %+.2f deg%s", measure.leanDegrees,
                    measure.onFrameShare > judging::kMostOnFrame ? ", on the picture's edge" : "");
  caption.append(text, static_cast<size_t>(std::max(length, 0)));
  return caption;
}

void DrawSides(OverlayCanvas* canvas, const judging::TurnOutcome& outcome) {
  const vorlanepic::deskew::PageRecords& records = *outcome.page;
  for (const judging::Side side : judging::kSides)
    DrawTrace(canvas, judging::TraceOf(records, side), kDropped);
  if (outcome.kind == judging::TurnKind::kPruned) {
    if (records.stage >= vorlanepic::deskew::PageStage::kCorners) {
      for (const judging::Side side : judging::kSides) {
        DrawLine(canvas, judging::EdgeOf(records, side).line, 0.8, ColourOf(side));
      }
    }
  } else {
    for (const judging::Side side : judging::kSides) {
      const auto index = static_cast<size_t>(side);
      if (!records.votes[index].hasAngle) continue;
      const bool wins = records.bestBorder == static_cast<int32_t>(index);
      DrawLine(canvas, records.votes[index].line, wins ? 1.8 : 0.5, ColourOf(side));
    }
  }
  for (const judging::Side side : judging::kSides) {
    DrawSupport(canvas, judging::SupportOf(outcome, side), ColourOf(side));
  }
}

void DrawContent(OverlayCanvas* canvas, const judging::TurnOutcome& outcome) {
  const vorlanepic::deskew::PageRecords& records = *outcome.page;
  if (records.stage < vorlanepic::deskew::PageStage::kContent) return;
  const double last = canvas->height() - 1;
  const vorlanepic::frame::PixelRect& c = records.content;
  const double top = outcome.isFlipped ? last - c.bottom : c.top;
  const double bottom = outcome.isFlipped ? last - c.top : c.bottom;
  canvas->Box(c.left, top, c.right, bottom, 1.2, kContent);
}

// The cut as seen: records whose rows count from the bottom are turned over.
std::vector<Place> SeenCorners(const judging::TurnOutcome& outcome, const judging::CutRect& cut,
                               double last) {
  std::vector<Place> corners = cut.Corners();
  if (outcome.isFlipped) {
    for (Place& p : corners) p.y = last - p.y;
  }
  return corners;
}

std::string ResultCaption(const files::Page& page, const judging::TurnOutcome& outcome) {
  if (outcome.status != STATUS_OK) {
    return "FAILED (" + std::to_string(outcome.status) + "): " + judging::FailureWords(outcome);
  }
  const bool isGrey = page.image.rec()->bitsPerPixel != 1;
  char text[96];
  std::snprintf(text, sizeof(text), "turn %+.2f deg (clockwise is positive), %s%s%s",
                outcome.degrees, isGrey ? "threshold " : "",
                isGrey ? (std::to_string(outcome.threshold) + ", ").c_str() : "",
                judging::ConfidenceName(outcome.verdict.confidence));
  return text;
}

std::vector<CaptionLine> Caption(const files::Page& page, const judging::TurnOutcome& outcome) {
  std::vector<CaptionLine> lines;
  lines.push_back({ResultCaption(page, outcome)});
  for (const std::string& reason : outcome.verdict.reasons) lines.push_back({"- " + reason});
  if (outcome.kind != judging::TurnKind::kBar) {
    for (const judging::Side side : judging::kSides) {
      if (judging::TraceOf(*outcome.page, side).pointCount == 0) continue;
      lines.push_back({SideCaption(outcome, *page.image.rec(), side), true, ColourOf(side)});
    }
    if (outcome.page->stage >= vorlanepic::deskew::PageStage::kRowScan) {
      lines.push_back({"border points that no line rests on", true, kDropped});
    }
  } else if (outcome.bar) {
    AddBarCaption(*outcome.bar, &lines);
  }
  if (outcome.kind != judging::TurnKind::kPruned &&
      outcome.page->stage >= vorlanepic::deskew::PageStage::kContent) {
    lines.push_back({"content found before the turn", true, kContent});
  }
  if (judging::CutOf(outcome).isKnown)
    lines.push_back({"the cut, its centre and way up", true, kOutline});
  return lines;
}

}  // namespace

files::PixPtr DrawOverlay(const files::Page& page, const judging::TurnOutcome& outcome) {
  OverlayCanvas canvas(*page.image.rec());
  judging::CutRect cut = judging::CutOf(outcome);
  const double last = canvas.height() - 1;
  // The outline lies on the borders: what they rest on is drawn over it.
  if (cut.isKnown) canvas.Polygon(SeenCorners(outcome, cut, last), 5, kOutline);
  if (outcome.kind != judging::TurnKind::kPruned) DrawContent(&canvas, outcome);
  if (outcome.kind == judging::TurnKind::kBar) {
    if (outcome.bar) DrawBar(&canvas, *outcome.bar);
  } else {
    DrawSides(&canvas, outcome);
  }
  if (cut.isKnown) {
    if (outcome.isFlipped) {
      cut.center.y = last - cut.center.y;
      cut.radians = -cut.radians;
    }
    DrawCenter(&canvas, cut, outcome.degrees);
  }
  return canvas.WithCaption(Caption(page, outcome));
}

}  // namespace vorlane::overlay
