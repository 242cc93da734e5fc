// vorlane crop and vorlane angle: deskew and crop by parameters or profile.
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "app/batch/page_set.h"
#include "app/commands/commands.h"
#include "app/commands/deskew_options.h"
#include "app/commands/fill_colour.h"
#include "app/judge/page_geometry.h"
#include "app/judge/service_runs.h"
#include "app/judge/threshold_choice.h"
#include "frame/trigonometry.h"

namespace vorlane::commands {
namespace {

struct CropOptions {
  batch::BatchRequest batch;
  ThresholdOptions threshold;
  DeskewOptions deskew;
  int32_t interpolation = INTERP_BICUBIC;
  int32_t corner = 0;
  FillColour fill;
  bool oneGeometry = false;
};

void FinishOutcome(int32_t method, double angle, const ImageRec& image,
                   judging::TurnOutcome* outcome) {
  outcome->kind = method == 2 ? judging::TurnKind::kBorderVote : judging::TurnKind::kPruned;
  outcome->threshold = outcome->page->threshold;
  if (outcome->status != STATUS_OK) return;
  outcome->degrees =
      judging::NormalDegrees(method == 2 ? angle : angle * vorlanepic::frame::kDegreesPerRadian);
  outcome->verdict = judging::Judge(*outcome, image);
}

// Runs the pages, exposures of one page, with the first one's geometry. `results` has as many empty
// records and receives the images, which the caller releases.
judging::TurnOutcome CropSet(const CropOptions& options, const std::vector<ImageRec>& pages,
                             int32_t threshold, std::vector<ImageRec>* results) {
  judging::TurnOutcome outcome;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  const DeskewCropParam param = ParamOf(options.deskew);
  const std::array<uint8_t, 3> fill = FillBytes(options.fill, pages[0].bitsPerPixel);
  double angle = 0;
  outcome.milliseconds = Timed([&] {
    outcome.status = judging::RunCrop(
        pages, {options.interpolation, threshold, options.corner, fill.data(), param, false},
        &angle, results->data(), outcome.page.get());
  });
  if (outcome.status != STATUS_OK) batch::ReleaseAll(results);
  FinishOutcome(MethodOf(options.deskew), angle, pages[0], &outcome);
  return outcome;
}

judging::TurnOutcome CropPage(const CropOptions& options, const ImageRec& image,
                              int32_t threshold) {
  std::vector<ImageRec> results(1);
  judging::TurnOutcome outcome = CropSet(options, {image}, threshold, &results);
  *outcome.result.rec() = results[0];
  return outcome;
}

judging::TurnOutcome MeasureAngle(const CropOptions& options, const ImageRec& image,
                                  int32_t threshold) {
  judging::TurnOutcome outcome;
  outcome.page = std::make_unique<vorlanepic::deskew::PageRecords>();
  const std::array<uint8_t, 3> fill{};
  ImageRec none{};
  double angle = 0;
  outcome.milliseconds = Timed([&] {
    outcome.status = judging::RunCrop(
        std::span(&image, 1),
        {INTERP_BILINEAR, threshold, 0, fill.data(), ParamOf(options.deskew), true}, &angle, &none,
        outcome.page.get());
  });
  FinishOutcome(MethodOf(options.deskew), angle, image, &outcome);
  return outcome;
}

int32_t Preferred(const CropOptions& options, const ImageRec& image) {
  return MethodOf(options.deskew) == 2 ? judging::PageThreshold(image) : 0;
}

void AddCropSettings(CLI::App* command, const std::shared_ptr<CropOptions>& options) {
  AddThresholdOptions(command, &options->threshold);
  AddDeskewOptions(command, &options->deskew);
}

// Checked before any page is touched; a profile's values are known to the library only.
void CheckProfile(const CropOptions& options) { (void)ParamOf(options.deskew); }

int RunCrop(const std::shared_ptr<CropOptions>& options) {
  options->batch.command = "crop";
  CheckProfile(*options);
  if (options->oneGeometry) {
    return batch::RunPageSets(options->batch, [&](const std::vector<ImageRec>& pages,
                                                  std::vector<ImageRec>* results) {
      const int32_t given = options->threshold.threshold;
      return CropSet(*options, pages, given >= 0 ? given : Preferred(*options, pages[0]), results);
    });
  }
  return batch::RunBatch(options->batch, [&](const files::Page& page) {
    return RunThresholds(
        options->threshold, Preferred(*options, *page.image.rec()), *page.image.rec(),
        [&](int32_t threshold) { return CropPage(*options, *page.image.rec(), threshold); });
  });
}

}  // namespace

CommandRun AddCrop(CLI::App* app) {
  auto options = std::make_shared<CropOptions>();
  CLI::App* command =
      app->add_subcommand("crop", "Deskew and crop by a chosen method, settings or a profile");
  AddBatchOptions(command, &options->batch);
  AddInterpolationOption(command, &options->interpolation);
  AddCropSettings(command, options);
  command
      ->add_option("--corner", options->corner,
                   "Methods 1 and 3: move every border outwards by twice this many pixels")
      ->check(CLI::Range(-1000, 1000))
      ->capture_default_str();
  AddFillOption(command, &options->fill);
  command->add_flag("--one-geometry", options->oneGeometry,
                    "Pages of a TIFF are exposures of one page: measure the first, turn and cut "
                    "all alike");
  command->footer(
      "Examples:\n"
      "  vorlane crop scan.png -o cut.png --method 2 --overlay votes.png\n"
      "  vorlane crop box/*.tif -o out/ --profile sample-profile.ini\n"
      "  vorlane crop exposures.tif -o cut.tif --one-geometry\n"
      "The angle is the turn that was made, in degrees, clockwise positive.");
  return [options] { return RunCrop(options); };
}

CommandRun AddAngle(CLI::App* app) {
  auto options = std::make_shared<CropOptions>();
  CLI::App* command =
      app->add_subcommand("angle", "Measure the turn that crop would make; no page is written");
  AddMeasureOptions(command, &options->batch);
  AddCropSettings(command, options);
  command->footer(
      "Examples:\n"
      "  vorlane angle scan.tif --method 1\n"
      "  vorlane angle box/*.png --json");
  return [options] {
    options->batch.command = "angle";
    CheckProfile(*options);
    return batch::RunBatch(options->batch, [&](const files::Page& page) {
      return RunThresholds(
          options->threshold, Preferred(*options, *page.image.rec()), *page.image.rec(),
          [&](int32_t threshold) { return MeasureAngle(*options, *page.image.rec(), threshold); });
    });
  };
}

}  // namespace vorlane::commands
