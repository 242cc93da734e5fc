// vorlane bar-angle: the angle of a mark sheet by its reference bar.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/batch/exit_codes.h"
#include "app/batch/report.h"
#include "app/commands/commands.h"
#include "app/commands/dib_image.h"
#include "app/judge/bar_words.h"
#include "app/judge/threshold_choice.h"
#include "app/overlay/bar_overlay.h"
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
  call->threshold = options.threshold >= 0 ? options.threshold : judging::SplitLevel(image);
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
          {"verdict", judging::BarVerdictName(bar.verdict)}};
}

void Print(const BarOptions& options, const files::Page& page, const BarCall& call) {
  const bool found = call.status == STATUS_OK;
  if (!options.batch.json) {
    if (found) {
      std::printf(
          "%s: sheet turned %+.3f deg clockwise, %.1f ms (threshold %d, bar of %d and more "
          "by %d..%d pixels)\n",
          batch::NameOf(page).c_str(), call.degrees, call.milliseconds, call.threshold,
          call.minLength, call.minThickness, call.maxThickness);
    } else {
      std::printf("%s: FAILED, %s (threshold %d, bar of %d and more by %d..%d pixels)\n",
                  batch::NameOf(page).c_str(), judging::BarFailureWords(call.records).c_str(),
                  call.threshold, call.minLength, call.minThickness, call.maxThickness);
    }
    return;
  }
  nlohmann::ordered_json json = batch::JsonHead("bar-angle", page, found ? "measured" : "failed");
  json["status"] = call.status;
  json["threshold"] = call.threshold;
  json["minLength"] = call.minLength;
  json["minThickness"] = call.minThickness;
  json["maxThickness"] = call.maxThickness;
  json["milliseconds"] = call.milliseconds;
  if (found) {
    json["sheetAngle"] = call.degrees;
  } else {
    json["reasons"] = {judging::BarFailureWords(call.records)};
  }
  json["candidates"] = nlohmann::ordered_json::array();
  for (const vorlanepic::omr::ExaminedBar& bar :
       call.records.bars.span().first(call.records.barCount)) {
    json["candidates"].push_back(CandidateJson(bar));
  }
  batch::PrintJson(json);
}

files::PixPtr DrawBarOverlay(const files::Page& page, const BarCall& call) {
  overlay::OverlayCanvas canvas(*page.image.rec());
  overlay::DrawBar(&canvas, call.records);
  char text[64];
  std::snprintf(text, sizeof(text), "sheet turned %+.3f deg clockwise", call.degrees);
  std::vector<overlay::CaptionLine> caption = {
      {call.status == STATUS_OK ? std::string(text)
                                : "FAILED: " + judging::BarFailureWords(call.records)}};
  overlay::AddBarCaption(call.records, &caption);
  return canvas.WithCaption(caption);
}

int RunFile(const BarOptions& options, const files::PlannedInput& input) {
  int exit = batch::kExitAllDone;
  batch::ForEachPage(input, [&](const files::Page& page) {
    BarCall call;
    Measure(options, page, &call);
    if (call.status != STATUS_OK) exit = batch::kExitPagesLeft;
    (void)batch::WriteOverlay(options.batch, input, page,
                              [&] { return DrawBarOverlay(page, call); });
    Print(options, page, call);
  });
  return exit;
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
  return [options] {
    options->batch.command = "bar-angle";
    return batch::ForEachFile(
        options->batch, [&](const files::PlannedInput& input) { return RunFile(*options, input); });
  };
}

}  // namespace vorlane::commands
