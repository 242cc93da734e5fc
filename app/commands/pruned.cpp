// vorlane pruned: pruned rotation of every page, as the library's service does it.
#include <memory>

#include "app/commands/commands.h"
#include "app/services/page_geometry.h"
#include "app/services/service_runs.h"
#include "app/services/verdict.h"
#include "frame/trigonometry.h"

namespace vorlane::commands {
namespace {

struct PrunedOptions {
  batch::BatchRequest batch;
  TurnReport report;
  ThresholdOptions threshold;
  int32_t interpolation = INTERP_BICUBIC;
  int32_t background = 0;
};

services::TurnOutcome TurnPruned(const PrunedOptions& options, const ImageRec& image,
                                 const vorlane_finding& found, int32_t threshold) {
  services::TurnOutcome outcome;
  outcome.finding = found;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  double radians = 0;
  constexpr uint8_t kBlack[3] = {0, 0, 0};
  outcome.status =
      services::RunPruned(image, {options.interpolation, threshold, options.background, 0, kBlack},
                          &radians, outcome.result.rec(), outcome.page.get());
  outcome.threshold = outcome.page->threshold;
  if (outcome.status != STATUS_OK) return outcome;
  outcome.degrees = services::NormalDegrees(radians * vorlanepic::frame::kDegreesPerRadian);
  outcome.verdict = services::VerdictOn(outcome, image);
  return outcome;
}

}  // namespace

CommandRun AddPruned(CLI::App* app) {
  auto options = std::make_shared<PrunedOptions>();
  CLI::App* command = app->add_subcommand(
      "pruned", "Turn and cut by pruned rotation, the library's own search for four borders");
  AddBatchOptions(command, &options->batch);
  AddDoubtfulOption(command, &options->report);
  AddInterpolationOption(command, &options->interpolation);
  AddThresholdOptions(command, &options->threshold);
  command
      ->add_option("--background", options->background,
                   "0: the page is what is at or above the threshold; 255: what lies within 9 "
                   "levels of it, for grey pages on a white background")
      ->check(CLI::IsMember({0, 255}))
      ->capture_default_str();
  command->footer(
      "Examples:\n"
      "  vorlane pruned scan.tif -o straight.tif --overlay found.png\n"
      "  vorlane pruned box/*.jpg -o out/ --try-thresholds\n"
      "The angle is the turn that was made, in degrees, clockwise positive.");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    const auto service =
        ServiceOf(options->report, [&](const files::Page& page, const vorlane_finding& found) {
          const ImageRec& image = *page.image.rec();
          return RunThresholds(options->threshold, 0, image, [&](int32_t threshold) {
            return TurnPruned(*options, image, found, threshold);
          });
        });
    return batch::RunBatch(options->batch, service);
  };
}

}  // namespace vorlane::commands
