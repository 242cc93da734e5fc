// vorlane straighten: pruned rotation of every page.
#include <memory>

#include "app/commands/commands.h"
#include "app/judge/page_geometry.h"
#include "app/judge/service_runs.h"
#include "frame/trigonometry.h"

namespace vorlane::commands {
namespace {

struct StraightenOptions {
  batch::BatchRequest batch;
  TurnReport report;
  ThresholdOptions threshold;
  int32_t interpolation = INTERP_BICUBIC;
  int32_t background = 0;
};

judging::TurnOutcome Straighten(const StraightenOptions& options, const ImageRec& image,
                                int32_t threshold) {
  judging::TurnOutcome outcome;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  double radians = 0;
  outcome.milliseconds = Timed([&] {
    constexpr uint8_t kBlack[3] = {0, 0, 0};
    outcome.status =
        judging::RunPruned(image, {options.interpolation, threshold, options.background, 0, kBlack},
                           &radians, outcome.result.rec(), outcome.page.get());
  });
  outcome.threshold = outcome.page->threshold;
  if (outcome.status != STATUS_OK) return outcome;
  outcome.degrees = judging::NormalDegrees(radians * vorlanepic::frame::kDegreesPerRadian);
  outcome.verdict = judging::Judge(outcome, image);
  return outcome;
}

}  // namespace

CommandRun AddStraighten(CLI::App* app) {
  auto options = std::make_shared<StraightenOptions>();
  CLI::App* command = app->add_subcommand(
      "straighten", "Find the page on a darker background, turn it upright and cut it out");
  AddBatchOptions(command, &options->batch, &options->report);
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
      "  vorlane straighten scan.tif -o straight.tif --overlay found.png\n"
      "  vorlane straighten box/*.jpg -o out/ --try-thresholds\n"
      "  vorlane straighten book.tif -o 'pages/{name}-{page}.png' --json\n"
      "The angle is the turn that was made, in degrees, clockwise positive.");
  return [options, command] {
    FinishRequest(*command, &options->batch);
    const auto service = ServiceOf(options->report, [&](const files::Page& page) {
      return RunThresholds(options->threshold, 0, *page.image.rec(), [&](int32_t threshold) {
        return Straighten(*options, *page.image.rec(), threshold);
      });
    });
    return batch::RunBatch(options->batch, service);
  };
}

}  // namespace vorlane::commands
