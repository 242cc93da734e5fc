#include "app/commands/run_options.h"

#include <chrono>
#include <map>
#include <utility>

#include "app/judge/threshold_choice.h"

namespace vorlane::commands {
namespace {

void AddOverwriteOptions(CLI::App* app, batch::BatchRequest* request) {
  app->add_flag("--overwrite", request->overwriting.outputs, "Replace output files that exist");
  app->add_flag("--overwrite-inputs", request->overwriting.inputs,
                "Let an output replace the input file itself");
}

}  // namespace

void AddBatchOptions(CLI::App* app, batch::BatchRequest* request) {
  AddMeasureOptions(app, request);
  app->add_option("-o,--output", request->output,
                  "File, folder, or pattern with {name}, {ext} and {page}. The extension chooses "
                  "the format; 1-bit TIFF is written as G4; a TIFF of several pages stays one")
      ->required();
  app->add_option("--quality", request->jpegQuality,
                  "Quality of JPEG outputs [that of the input; 92 for others]")
      ->check(CLI::Range(1, 100));
  app->add_flag("--accept-doubtful", request->acceptDoubtful,
                "Write doubtful results too; otherwise such a page is left as it is");
}

void AddMeasureOptions(CLI::App* app, batch::BatchRequest* request) {
  app->add_option("INPUT", request->inputs,
                  "Image files: TIFF (any number of pages), PNG, JPEG, "
                  "BMP, PNM")
      ->required();
  app->add_option("--overlay", request->overlay,
                  "Draw what was found over the page: a .png file, folder or pattern");
  app->add_flag("--json", request->json, "One JSON object a line instead of text");
  AddOverwriteOptions(app, request);
}

void AddBarPageOptions(CLI::App* app, int32_t* threshold, int32_t* dpi) {
  app->add_option("--threshold", *threshold,
                  "Grey level: the bar is at or below it, paper above [where the picture's levels "
                  "part best]")
      ->check(CLI::Range(0, 255));
  app->add_option("--dpi", *dpi,
                  "Dots per inch, instead of what the file says; 200 when it says nothing")
      ->check(CLI::Range(1, 4800));
}

void AddInterpolationOption(CLI::App* app, int32_t* interpolation) {
  static const std::map<std::string, int32_t> kNames = {
      {"bicubic", INTERP_BICUBIC}, {"bilinear", INTERP_BILINEAR}, {"nearest", INTERP_NEAREST}};
  app->add_option_function<std::string>(
         "--interpolation",
         [interpolation](const std::string& name) { *interpolation = kNames.at(name); },
         "How pixels between pixels are sampled [bicubic]; 1-bit pages always take the nearest")
      ->check(CLI::IsMember({"bicubic", "bilinear", "nearest"}));
}

void AddThresholdOptions(CLI::App* app, ThresholdOptions* options) {
  app->add_option("--threshold", options->threshold,
                  "Grey level from which a pixel counts as page, 1..255; 0: the library's estimate "
                  "from the picture's left and right margin [0; for method 2, whose estimate takes "
                  "an even background for page, at least 80]")
      ->check(CLI::Range(0, 255));
  app->add_flag("--try-thresholds", options->tryOthers,
                "Where that finds nothing, or something doubtful, try levels that the picture "
                "suggests");
}

judging::TurnOutcome RunThresholds(const ThresholdOptions& options, int32_t preferred,
                                   const ImageRec& image, const ThresholdCall& call) {
  judging::TurnOutcome best = call(options.threshold >= 0 ? options.threshold : preferred);
  if (!options.tryOthers) return best;
  for (const int32_t threshold : judging::ThresholdsToTry(image)) {
    if (best.status == STATUS_OK && best.verdict.confidence != judging::Confidence::kDoubtful)
      break;
    judging::TurnOutcome other = call(threshold);
    if (!judging::IsBetter(other, best)) continue;
    other.notes.push_back("threshold " + std::to_string(threshold) + " found by trying");
    best = std::move(other);
  }
  return best;
}

double Timed(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return taken.count();
}

}  // namespace vorlane::commands
