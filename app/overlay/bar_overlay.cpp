#include "app/overlay/bar_overlay.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/services/bar_words.h"

namespace vorlane::overlay {
namespace {

constexpr Colour kSheet{40, 130, 255};
constexpr Colour kChosen{20, 190, 70};
constexpr Colour kRejected{240, 50, 50};
constexpr Colour kFirstEdge{255, 0, 200};
constexpr Colour kSecondEdge{255, 140, 0};

// Captions name the longest candidates only.
constexpr size_t kMostNamed = 8;

std::span<const vorlanepic::omr::ExaminedBar> BarsOf(const vorlanepic::omr::BarRecords& bar) {
  return bar.bars.span().first(bar.barCount);
}

void DrawCandidate(OverlayCanvas* canvas, const vorlanepic::omr::ExaminedBar& bar, size_t number) {
  const bool isChosen = bar.verdict == vorlanepic::omr::BarVerdict::kChosen;
  const Colour colour = isChosen ? kChosen : kRejected;
  const double gap = 3 * canvas->unit();
  canvas->Box(bar.box.left - gap, bar.box.top - gap, bar.box.right + gap, bar.box.bottom + gap, 1.2,
              colour);
  canvas->Label({bar.box.left - gap, bar.box.top - 2 * gap},
                std::to_string(number) + " " + services::BarVerdictName(bar.verdict), colour);
}

// A line y = slope * x + intercept along the bar; a tall bar's slope may be infinite.
void DrawEdge(OverlayCanvas* canvas, const vorlanepic::omr::BarRecords& bar,
              const vorlanepic::omr::BarLine& line, bool isFirst) {
  const auto samples = bar.samples.span();
  if (samples.empty()) return;
  const double from = samples.front().position;
  const double to = samples.back().position;
  const Colour colour = isFirst ? kFirstEdge : kSecondEdge;
  const double slope = line.slope;
  const double intercept = line.intercept;
  if (!bar.isTall) {
    canvas->Line({from, slope * from + intercept}, {to, slope * to + intercept}, 0.7, colour);
  } else if (std::isfinite(slope) && slope != 0) {
    canvas->Line({(from - intercept) / slope, from}, {(to - intercept) / slope, to}, 0.7, colour);
  } else {
    const double x = isFirst ? samples.front().first : samples.front().last;
    canvas->Line({x, from}, {x, to}, 0.7, colour);
  }
}

}  // namespace

void DrawBar(OverlayCanvas* canvas, const vorlanepic::omr::BarRecords& bar) {
  if (bar.stage >= vorlanepic::omr::BarStage::kSheet) {
    canvas->Box(bar.sheet.left, bar.sheet.top, bar.sheet.right, bar.sheet.bottom, 1.4, kSheet);
  }
  size_t number = 0;
  for (const vorlanepic::omr::ExaminedBar& candidate : BarsOf(bar))
    DrawCandidate(canvas, candidate, ++number);
  if (bar.stage < vorlanepic::omr::BarStage::kFitted) return;
  DrawEdge(canvas, bar, bar.lines.first, true);
  DrawEdge(canvas, bar, bar.lines.second, false);
}

void AddBarCaption(const vorlanepic::omr::BarRecords& bar, std::vector<CaptionLine>* lines) {
  if (bar.stage >= vorlanepic::omr::BarStage::kSheet) lines->push_back({"sheet", true, kSheet});
  size_t number = 0;
  for (const vorlanepic::omr::ExaminedBar& c : BarsOf(bar)) {
    if (++number > kMostNamed) {
      lines->push_back({"and " + std::to_string(bar.barCount - kMostNamed) + " more"});
      break;
    }
    const bool isChosen = c.verdict == vorlanepic::omr::BarVerdict::kChosen;
    char text[128];
    std::snprintf(text, sizeof(text), "%zu: length %d, thickness %d (%d..%d): %s", number, c.length,
                  c.thickness, c.thinnest, c.thickest, services::BarVerdictName(c.verdict));
    lines->push_back({text, true, isChosen ? kChosen : kRejected});
  }
  if (bar.stage < vorlanepic::omr::BarStage::kFitted) return;
  lines->push_back({bar.isTall ? "left edge" : "top edge", true, kFirstEdge});
  lines->push_back({bar.isTall ? "right edge" : "bottom edge", true, kSecondEdge});
}

}  // namespace vorlane::overlay
