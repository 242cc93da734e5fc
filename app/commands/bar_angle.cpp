// vorlane bar-angle: the angle of a mark sheet by its reference bar.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/dib_image.h"
#include "app/commands/page_facts.h"
#include "app/overlay/bar_overlay.h"
#include "app/services/bar_words.h"
#include "app/services/threshold_choice.h"
#include "omr/mark_sheet_angle.h"

namespace vorlane::commands {
namespace {

// The form service's limits at 200 dots per inch.
constexpr int32_t kBaseDpi = 200;
constexpr int32_t kBarLength = 600;
constexpr int32_t kBarMinThickness = 4;
constexpr int32_t kBarMaxThickness = 20;

struct BarOptions {
  batch::BatchRequest batch;
  int32_t threshold = -1;
  int32_t dpi = 0;
  int32_t minLength = 0;  // 0: scaled to the page's resolution, also below
  int32_t minThickness = 0;
  int32_t maxThickness = 0;
};

// Values of one call.
struct BarCall {
  int32_t threshold = 0;
  int32_t minLength = 0;
  int32_t minThickness = 0;
  int32_t maxThickness = 0;
  int32_t status = 0;
  double degrees = 0;  // how far the sheet is turned clockwise as seen
  double milliseconds = 0;
  vorlanepic::omr::BarRecords records;
};

int32_t Scaled(int32_t given, int32_t atBaseDpi, int32_t dpi) {
  return given > 0 ? given : std::max(1, atBaseDpi * dpi / kBaseDpi);
}

void Measure(const BarOptions& options, const files::Page& page, BarCall* call) {
  const ImageRec& image = *page.image.rec();
  const int32_t known = options.dpi > 0 ? options.dpi : page.Dpi();
  const int32_t dpi = known > 0 ? known : kBaseDpi;
  call->threshold = options.threshold >= 0 ? options.threshold : services::SplitLevel(image);
  call->minLength = Scaled(options.minLength, kBarLength, dpi);
  call->minThickness = Scaled(options.minThickness, kBarMinThickness, dpi);
  call->maxThickness = Scaled(options.maxThickness, kBarMaxThickness, dpi);
  ScratchDib dib;
  call->status = MakeDib(image, dpi, RowOrder::kBottomFirst, &dib);
  if (call->status != STATUS_OK) return;
  double radians = 0;
  call->milliseconds = Timed([&] {
    call->status = vorlanepic::omr::MeasureBarOfDib(
        dib.rec(), call->threshold, {call->minLength, call->minThickness, call->maxThickness},
        &call->records, &radians);
  });
  call->degrees = radians * 57.29577951308232;
}

nlohmann::ordered_json CandidateJson(const vorlanepic::omr::ExaminedBar& bar) {
  return {{"left", bar.box.left},
          {"top", bar.box.top},
          {"right", bar.box.right},
          {"bottom", bar.box.bottom},
          {"length", bar.length},
          {"thickness", bar.thickness},
          {"thinnest", bar.thinnest},
          {"thickest", bar.thickest},
          {"verdict", services::BarVerdictName(bar.verdict)}};
}

std::string Words(const BarCall& call) {
  char text[160];
  const bool found = call.status == STATUS_OK;
  std::snprintf(text, sizeof(text), " (threshold %d, bar of %d and more by %d..%d pixels)",
                call.threshold, call.minLength, call.minThickness, call.maxThickness);
  const std::string limits = text;
  if (!found) return services::BarFailureWords(call.records) + limits;
  std::snprintf(text, sizeof(text), "sheet turned %+.3f deg clockwise, %.1f ms", call.degrees,
                call.milliseconds);
  return text + limits;
}

nlohmann::ordered_json Facts(const BarCall& call) {
  nlohmann::ordered_json facts = {{"status", call.status},
                                  {"threshold", call.threshold},
                                  {"minLength", call.minLength},
                                  {"minThickness", call.minThickness},
                                  {"maxThickness", call.maxThickness}};
  if (call.status == STATUS_OK) {
    facts["sheetAngle"] = call.degrees;
  } else {
    facts["reasons"] = {ReasonFacts("no-bar", services::BarFailureWords(call.records))};
  }
  facts["candidates"] = nlohmann::ordered_json::array();
  for (const vorlanepic::omr::ExaminedBar& bar :
       call.records.bars.span().first(call.records.barCount)) {
    facts["candidates"].push_back(CandidateJson(bar));
  }
  return facts;
}

files::PixPtr DrawBarOverlay(const files::Page& page, const BarCall& call) {
  overlay::OverlayCanvas canvas(*page.image.rec());
  overlay::DrawBar(&canvas, call.records);
  char text[64];
  std::snprintf(text, sizeof(text), "sheet turned %+.3f deg clockwise", call.degrees);
  std::vector<overlay::CaptionLine> caption = {
      {call.status == STATUS_OK ? std::string(text)
                                : "FAILED: " + services::BarFailureWords(call.records)}};
  overlay::AddBarCaption(call.records, &caption);
  return canvas.WithCaption(caption);
}

batch::PageOutcome MeasurePage(const BarOptions& options, const files::Page& page) {
  const auto call = std::make_shared<BarCall>();
  Measure(options, page, call.get());
  batch::PageOutcome outcome;
  outcome.fate = call->status == STATUS_OK ? batch::PageFate::kMeasured : batch::PageFate::kRefused;
  outcome.words = Words(*call);
  outcome.facts = Facts(*call);
  outcome.draw = [call](const files::Page& drawn) { return DrawBarOverlay(drawn, *call); };
  return outcome;
}

}  // namespace

CommandRun AddBarAngle(CLI::App* app) {
  auto options = std::make_shared<BarOptions>();
  CLI::App* command = app->add_subcommand(
      "bar-angle", "Measure how far a mark sheet is turned, by its reference bar");
  AddMeasureOptions(command, &options->batch);
  AddBarPageOptions(command, &options->threshold, &options->dpi);
  command
      ->add_option("--min-length", options->minLength,
                   "Shortest bar in pixels, along its diagonal [600 at 200 dpi]")
      ->check(CLI::Range(20, 100000));
  command
      ->add_option("--min-thickness", options->minThickness,
                   "Least mean thickness in pixels [4 at 200 dpi]")
      ->check(CLI::Range(1, 10000));
  command
      ->add_option("--max-thickness", options->maxThickness,
                   "Largest mean thickness in pixels [20 at 200 dpi]")
      ->check(CLI::Range(1, 10000));
  command->footer(
      "The angle is positive where the sheet is turned clockwise: a wide bar descends to the\n"
      "right. A tall bar gives an angle near 90 or -90.\n"
      "Examples:\n"
      "  vorlane bar-angle sheet.png --overlay bar.png\n"
      "  vorlane bar-angle photo.jpg --min-length 400 --min-thickness 6 --max-thickness 14");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    return batch::RunBatch(options->batch,
                           [&](const files::Page& page) { return MeasurePage(*options, page); });
  };
}

}  // namespace vorlane::commands
