// vorlane crop and vorlane angle: deskew and crop by parameters or profile.
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

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
  TurnReport report;
  ThresholdOptions threshold;
  DeskewOptions deskew;
  int32_t interpolation = INTERP_BICUBIC;
  int32_t corner = 0;
  FillColour fill;
  bool oneGeometry = false;
};

void ReleaseAll(std::vector<ImageRec>* images) {
  for (ImageRec& image : *images) {
    if (image.pixels != nullptr) Imgbuf_Destory(&image);
    image = ImageRec{};
  }
}

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
  if (outcome.status != STATUS_OK) ReleaseAll(results);
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

// The pages of a file with the first one's geometry: one outcome, told of each with its own picture.
std::vector<batch::PageOutcome> CropTogether(const CropOptions& options,
                                             const std::vector<files::Page>& pages) {
  const ImageRec& first = *pages[0].image.rec();
  std::vector<ImageRec> records;
  for (const files::Page& page : pages) {
    const ImageRec& image = *page.image.rec();
    if (image.width != first.width || image.height != first.height ||
        image.bitsPerPixel != first.bitsPerPixel) {
      throw files::FileError(page.file + ": page " + std::to_string(page.number) +
                             " differs from the first in size or depth; run it without "
                             "--one-geometry");
    }
    records.push_back(image);
  }
  const int32_t given = options.threshold.threshold;
  std::vector<ImageRec> results(pages.size());
  const auto outcome = std::make_shared<judging::TurnOutcome>(
      CropSet(options, records, given >= 0 ? given : Preferred(options, first), &results));
  std::vector<batch::PageOutcome> outcomes;
  for (size_t i = 0; i < pages.size(); ++i) {
    *outcome->result.rec() = std::exchange(results[i], ImageRec{});
    outcomes.push_back(OutcomeOf(options.report, pages[i], outcome));
    (void)outcome->result.Release();
  }
  return outcomes;
}

int RunCrop(const std::shared_ptr<CropOptions>& options) {
  CheckProfile(*options);
  if (options->oneGeometry) {
    std::mutex turns;
    return batch::RunPageSets(options->batch, [&](const std::vector<files::Page>& pages) {
      const std::lock_guard lock(turns);
      return CropTogether(*options, pages);
    });
  }
  const auto service = ServiceOf(options->report, [&](const files::Page& page) {
    return RunThresholds(
        options->threshold, Preferred(*options, *page.image.rec()), *page.image.rec(),
        [&](int32_t threshold) { return CropPage(*options, *page.image.rec(), threshold); });
  });
  return batch::RunBatch(options->batch, service);
}

}  // namespace

CommandRun AddCrop(CLI::App* app) {
  auto options = std::make_shared<CropOptions>();
  CLI::App* command =
      app->add_subcommand("crop", "Deskew and crop by a chosen method, settings or a profile");
  AddBatchOptions(command, &options->batch, &options->report);
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
  return [options, command] {
    FinishRequest(*command, &options->batch);
    return RunCrop(options);
  };
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
  return [options, command] {
    FinishRequest(*command, &options->batch);
    options->report.makesPages = false;
    CheckProfile(*options);
    const auto service = ServiceOf(options->report, [&](const files::Page& page) {
      return RunThresholds(
          options->threshold, Preferred(*options, *page.image.rec()), *page.image.rec(),
          [&](int32_t threshold) { return MeasureAngle(*options, *page.image.rec(), threshold); });
    });
    return batch::RunBatch(options->batch, service);
  };
}

}  // namespace vorlane::commands
